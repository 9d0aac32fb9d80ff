// The tool as its user runs it: a process of its own, with its statuses and its text.
#include "database/database_builder.h"
#include "device_fixture.h"

#include <QCoreApplication>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <gtest/gtest.h>

namespace {

struct Result {
    int status;
    QString output;
    QString errors;
};

Result RunTool(const QStringList& arguments) {
    QProcess process;
    // No display may be needed.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        environment.remove(QString::fromLatin1(name));
    process.setProcessEnvironment(environment);
    process.start(QCoreApplication::applicationDirPath() + "/quorvane-list", arguments);
    EXPECT_TRUE(process.waitForFinished(60000));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

constexpr char Machine[] = R"(
/devices/pci0000:00/0000:00:00.0 @ bus/pci
  vendor = 0xfff0
  device = 0x0001
  class = 0x060000
  driver -> /bus/pci/drivers/own
/devices/pci0000:00/0000:00:02.0 @ bus/pci
  vendor = 0xfff0
  device = 0x0002
  class = 0x030000
)";

const QString Header = "Name,Manufacturer,Error Code,Class,Driver Version,Hardware IDs\r\n";
const QString Video = "Video Controller (VGA Compatible),Unknown,(28) Drivers are not installed,"
                      "Display adapters,Unknown,PCI\\VEN_FFF0&DEV_0002&SUBSYS_00000000|"
                      "PCI\\VEN_FFF0&DEV_0002&CC_030000|PCI\\VEN_FFF0&DEV_0002&CC_0300|"
                      "PCI\\VEN_FFF0&DEV_0002|\r\n";

} // namespace

TEST(QuorvaneList, PrintsTheListsOfATree) {
    const DeviceFixture fixture(Machine);
    const auto list = [&fixture](const char* name) {
        return RunTool({"--root", fixture.Root(), "--list", QString::fromLatin1(name)});
    };
    const Result hardware = RunTool({"--root=" + fixture.Root()});
    EXPECT_EQ(hardware.status, 0);
    EXPECT_TRUE(hardware.output.startsWith(Header + "PCI standard host CPU bridge,")) << Plain(hardware.output);
    EXPECT_TRUE(hardware.output.endsWith(Video));
    EXPECT_EQ(hardware.errors, QString());
    EXPECT_EQ(Plain(list("hardware").output), Plain(hardware.output));
    for (const char* name : {"nodrivers", "problems", "nosystem"})
        EXPECT_EQ(Plain(list(name).output), Plain(Header + Video)) << name;
    const QString all = list("all").output;
    EXPECT_TRUE(all.startsWith("All Hardware (2)\r\n" + hardware.output));
    EXPECT_TRUE(all.endsWith("All Except Standard System Devices (1)\r\n" + Header + Video));
}

// The device is found under its third ID, by two names; the database knows the vendor's other device alone under a
// longer one, which is not among the IDs.
TEST(QuorvaneList, AddsTheBestMatches) {
    const DeviceFixture fixture(Machine);
    database::DatabaseBuilder builder;
    for (const char* name : {"One", "Two"})
        builder.Add("pci\\ven_fff0&dev_0002&cc_0300", QString::fromLatin1(name), "Maker");
    builder.Add("PCI\\VEN_FFF0&DEV_0002", "Less", "Maker");
    builder.Add("PCI\\VEN_FFF0&DEV_0003&SUBSYS_00000000", "Other", QString());
    const QString path = fixture.Beside("own.mdb");
    QString error;
    ASSERT_TRUE(builder.Write(path, "1.0.0", &error)) << Plain(error);
    const auto run = [&](const QStringList& more) {
        return RunTool(QStringList{"--root", fixture.Root(), "--db", path} + more);
    };
    const Result json = run({"--list=all", "--format=json"});
    EXPECT_EQ(json.status, 0) << Plain(json.errors);
    const QJsonObject lists = QJsonDocument::fromJson(json.output.toUtf8()).object();
    EXPECT_EQ(lists.keys().join(u' ').toStdString(), "hardware nodrivers nosystem problems");
    const QJsonArray hardware = lists.value("hardware").toArray();
    ASSERT_EQ(hardware.size(), 2);
    const auto value = [&hardware](int row, const char* key) {
        return hardware[row].toObject().value(QLatin1String(key));
    };
    EXPECT_TRUE(value(0, "matches").toArray().isEmpty());
    EXPECT_EQ(value(1, "matches").toArray().size(), 2);
    EXPECT_EQ(value(1, "bus").toString() + value(1, "address").toString(), "pci0000:00:02.0");
    EXPECT_TRUE(value(1, "driver").isNull() && value(1, "module").isNull());
    EXPECT_EQ(value(0, "driver").toString(), "own");
    const QString csv = run({"--lookup", "--list", "problems"}).output;
    EXPECT_TRUE(csv.endsWith(
        Video.chopped(2) + ",One|Two|,Maker|Maker|,pci\\ven_fff0&dev_0002&cc_0300|pci\\ven_fff0&dev_0002&cc_0300|\r\n"))
        << Plain(csv);
    EXPECT_EQ(run({"--format=table"}).output.count(QLatin1Char('\n')), 3);
}

TEST(QuorvaneList, TellsWhatItIs) {
    for (const auto& [option, start] : {std::pair{"--help", "Usage: quorvane-list"}, {"--version", "quorvane-list "}}) {
        const Result result = RunTool({QString::fromLatin1(option)});
        EXPECT_EQ(result.status, 0);
        EXPECT_TRUE(result.output.startsWith(QLatin1String(start)));
    }
}

// A folder without devices in it is told from one that cannot hold any, which names the one beside it that can.
TEST(QuorvaneList, TellsWhichFolderIsMeant) {
    const DeviceFixture fixture;
    const auto list = [](const QString& root) { return RunTool({"--root", root}); };
    const Result none = list(fixture.Root());
    EXPECT_EQ(none.status, 2);
    EXPECT_TRUE(none.errors.endsWith("sys\" holds neither \"bus\" nor \"class\"\n")) << Plain(none.errors);
    ASSERT_TRUE(QDir().mkpath(fixture.Root() + "/class"));
    const Result empty = list(fixture.Root());
    EXPECT_EQ(empty.status, 0);
    EXPECT_EQ(Plain(empty.output), Plain(Header));
    const Result above = list(fixture.Beside({}));
    EXPECT_EQ(above.status, 2);
    EXPECT_TRUE(above.errors.contains(QStringLiteral("\"%1\" is probably meant").arg(fixture.Root())))
        << Plain(above.errors);
}

TEST(QuorvaneList, ReadsWhatItHasSaved) {
    const DeviceFixture fixture(Machine);
    const QString file = fixture.Beside("saved.tar.xz");
    const Result saved = RunTool({"--root", fixture.Root(), "--save", file});
    EXPECT_EQ(saved.status, 0) << Plain(saved.errors);
    EXPECT_EQ(Plain(saved.output), "");
    for (const char* format : {"csv", "json", "table"}) {
        const auto list = [format](const QString& root) {
            return RunTool({"--list=all", "--root", root, "--format", QString::fromLatin1(format)});
        };
        const Result of = list(file);
        EXPECT_EQ(of.status, 0) << Plain(of.errors);
        EXPECT_EQ(Plain(of.output), Plain(list(fixture.Root()).output));
    }
}
