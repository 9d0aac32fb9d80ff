// Made-up machines as text, with the rows that they must give beside them. machines/*.txt holds one file a bus; a new
// case is a few lines there.
//
//   machine TITLE            begins a machine; its tree follows in the fixture's form (device_fixture.h)
//   file ids/pci.ids         a file beside the tree, of the lines below that begin with "|", or of bytes. Files in
//     | 8086  Intel          modules/ make it a tree of the running kernel, cpuinfo is the processors' file
//     : 09 "0046" 0A
//   row CODE CLASS PATH      a device: problem code, short name of its class ("-" for none), instance path with "*" for
//     name = TEXT            any run of characters. Below it what else must hold: name, maker, version, driver, module,
//     ids = A | B | ...      place (bus and address), ids; "..." at the end lets more follow
//
// A machine gives its rows and no others, in any order, and so it does when it was saved. Lines that begin with "#" are
// comments.
#include "device_fixture.h"
#include "pnp/class_table.h"
#include "pnp/saved_machine.h"

#include <QDir>
#include <QFile>
#include <QMap>
#include <QRegularExpression>
#include <gtest/gtest.h>

namespace {

struct Row {
    QString head;
    QMap<QString, QString> fields;
};

struct Machine {
    QString title;
    QByteArray tree;
    QMap<QString, QByteArray> files;
    std::vector<Row> rows;
};

void PrintTo(const Machine& machine, std::ostream* out) { *out << Plain(machine.title); }

std::vector<Machine> ReadMachines() {
    std::vector<Machine> machines;
    const QDir folder(QStringLiteral(MACHINES_FOLDER));
    for (const QString& name : folder.entryList({QStringLiteral("*.txt")}, QDir::Files, QDir::Name)) {
        QFile file(folder.filePath(name));
        QString beside;
        if (!file.open(QIODevice::ReadOnly))
            continue;
        for (const QString& line : QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'))) {
            const QString text = line.trimmed();
            const auto rest = [&text](int from) { return text.mid(from).trimmed(); };
            if (text.isEmpty() || text.startsWith(QLatin1Char('#')))
                continue;
            if (text.startsWith(QStringLiteral("machine "))) {
                machines.push_back({name.chopped(4) + QStringLiteral(": ") + rest(8), {}, {}, {}});
                continue;
            }
            Machine& machine = machines.back();
            if (text.startsWith(QStringLiteral("file "))) {
                beside = rest(5);
                machine.files[beside];
            } else if (text.startsWith(QLatin1Char('|'))) {
                machine.files[beside] += line.mid(line.indexOf(QLatin1Char('|')) + 2).toUtf8() + '\n';
            } else if (text.startsWith(QStringLiteral(": "))) {
                machine.files[beside] += FixtureBytes(text);
            } else if (text.startsWith(QStringLiteral("row "))) {
                machine.rows.push_back({rest(4), {}});
            } else if (machine.rows.empty()) {
                machine.tree += line.toUtf8() + '\n';
            } else {
                const qsizetype equals = text.indexOf(QStringLiteral(" ="));
                machine.rows.back().fields[text.left(equals)] = rest(int(equals) + 2);
            }
        }
    }
    return machines;
}

QString ClassName(const QString& guid) {
    for (const pnp::SetupClass& entry : pnp::SetupClasses()) {
        if (guid == QString::fromUtf16(entry.guid))
            return QString::fromUtf16(entry.name);
    }
    return guid.isEmpty() ? QStringLiteral("-") : guid;
}

bool Fits(const QString& text, const QString& pattern) {
    QString expression = QRegularExpression::escape(pattern);
    expression.replace(QStringLiteral("\\*"), QStringLiteral(".*"));
    return QRegularExpression(QRegularExpression::anchoredPattern(expression)).match(text).hasMatch();
}

QMap<QString, QString> FieldsOf(const pnp::Device& device) {
    return {{QStringLiteral("name"), device.name},
            {QStringLiteral("maker"), device.manufacturer},
            {QStringLiteral("version"), device.driverVersion},
            {QStringLiteral("driver"), device.service},
            {QStringLiteral("module"), device.fittingModule},
            {QStringLiteral("place"), device.bus + QLatin1Char(' ') + device.address},
            {QStringLiteral("ids"), Joined(device.hardwareIds)}};
}

QString HeadOf(const pnp::Device& device) {
    return QStringLiteral("%1 %2 %3").arg(device.problemCode).arg(ClassName(device.classGuid), device.instancePath);
}

// As it would be written as a row.
QString Written(const pnp::Device& device) {
    QString text = QStringLiteral("row ") + HeadOf(device) + QLatin1Char('\n');
    const QMap<QString, QString> fields = FieldsOf(device);
    for (auto field = fields.begin(); field != fields.end(); ++field)
        text += QStringLiteral("  ") + field.key() + QStringLiteral(" = ") + field.value() + QLatin1Char('\n');
    return text;
}

// What can be seen of a saved machine: serial numbers and network interfaces are left out, and addresses are counted.
std::string WithoutIdentity(const std::vector<pnp::Device>& devices) {
    static const QRegularExpression address(
        QStringLiteral("\\b([0-9a-f]{2}([:-]))(?:[0-9a-f]{2}\\2){4}[0-9a-f]{2}\\b"));
    QString text;
    for (pnp::Device device : devices) {
        device.instancePath.truncate(device.instancePath.lastIndexOf(QLatin1Char('\\')));
        if (device.bus != QStringLiteral("net"))
            text += Written(device).toLower();
    }
    for (int i = 1; text.contains(address); ++i)
        text.replace(address.match(text).captured(), QStringLiteral("address %1").arg(i));
    return Plain(text);
}

// Fit for a text of parts that backslashes and bars divide.
void ExpectPlainParts(const pnp::Device& device) {
    EXPECT_EQ(device.instancePath.count(QLatin1Char('\\')), 2) << Plain(device.instancePath);
    EXPECT_FALSE((device.instancePath + device.hardwareIds.join(QString())).contains(QLatin1Char('|')));
}

// The machine as its file has it.
pnp::SavedMachine Saved(const pnp::Sources& sources) {
    pnp::SavedMachine machine = SaveMachine(sources);
    std::string all = FactsText(machine.facts);
    std::string complaint;
    machine.facts = {};
    EXPECT_TRUE(ParseFacts(all, machine.facts, complaint)) << complaint;
    machine.tree->ForEach([&all](const std::string& path, const pnp::SavedTree::Entry& entry) {
        all += path + "\n" + entry.bytes + "\n";
    });
    for (const char* secret : {"SECR", "ESRC", "5345 4352", "ab:cd:e", "AB-CD-EF"})
        EXPECT_EQ(all.find(secret), std::string::npos) << secret;
    return machine;
}

void ExpectFields(const pnp::Device& device, const Row& row) {
    const QMap<QString, QString> fields = FieldsOf(device);
    const QString more = QStringLiteral(" | ...");
    for (auto field = row.fields.begin(); field != row.fields.end(); ++field) {
        QString expected = field.value();
        QString given = fields.value(field.key(), QStringLiteral("no such field"));
        if (expected.endsWith(more)) {
            expected.chop(more.size());
            given.truncate(expected.size());
        }
        EXPECT_EQ(Plain(given), Plain(expected)) << Plain(field.key()) << " of " << Plain(device.instancePath);
    }
}

std::string CaseName(const testing::TestParamInfo<Machine>& machine) {
    static const QRegularExpression others(QStringLiteral("[^A-Za-z0-9]+"));
    QString name = machine.param.title;
    return Plain(name.replace(others, QStringLiteral("_"))) + "_" + std::to_string(machine.index);
}

class Machines : public testing::TestWithParam<Machine> {};

} // namespace

TEST_P(Machines, GiveTheirRows) {
    const Machine& machine = GetParam();
    DeviceFixture fixture(machine.tree);
    pnp::Sources sources = pnp::CurrentSources();
    for (auto file = machine.files.begin(); file != machine.files.end(); ++file) {
        QDir().mkpath(QFileInfo(fixture.Beside(file.key())).path());
        QFile written(fixture.Beside(file.key()));
        ASSERT_TRUE(written.open(QIODevice::WriteOnly));
        written.write(file.value());
        if (file.key().startsWith(QStringLiteral("modules/"))) {
            sources.live = true;
            sources.kernelRelease = QStringLiteral("6.1.0-test");
            sources.modulesFolder = fixture.Beside(QStringLiteral("modules"));
            sources.modprobeFolders = {fixture.Beside(QStringLiteral("modprobe.d"))};
        }
    }
    sources.processorInfo = fixture.Beside(QStringLiteral("cpuinfo"));
    pnp::SetSources(sources);

    std::vector<pnp::Device> devices = fixture.Devices();
    const std::string before = WithoutIdentity(devices);
    std::for_each(devices.begin(), devices.end(), ExpectPlainParts);
    for (const Row& row : machine.rows) {
        const auto found = std::find_if(devices.begin(), devices.end(),
                                        [&row](const pnp::Device& device) { return Fits(HeadOf(device), row.head); });
        if (found == devices.end()) {
            ADD_FAILURE() << "missing: " << Plain(row.head);
            continue;
        }
        ExpectFields(*found, row);
        devices.erase(found);
    }
    for (const pnp::Device& device : devices)
        ADD_FAILURE() << "nobody expects:\n" << Plain(Written(device));

    pnp::Sources saved = SavedSources(Saved(sources), machine.title);
    saved.idFolder = sources.idFolder;
    pnp::SetSources(saved);
    EXPECT_EQ(WithoutIdentity(fixture.Devices()), before);
}

INSTANTIATE_TEST_SUITE_P(All, Machines, testing::ValuesIn(ReadMachines()), CaseName);
