#include "faults_fixture.h"

#include "base/paths.h"
#include "data/error.h"
#include "data/recordset.h"
#include "database/store.h"
#include "net/engine_process.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QSet>
#include <QThread>
#include <csignal>
#include <sqlite3.h>
#include <unistd.h>

namespace {

const QString bin = QStringLiteral(QUORVANE_BIN);

QByteArray Machine(int devices) {
    QByteArray text;
    for (int i = 1; i <= devices; ++i) {
        const QByteArray number = QByteArray::number(i);
        text += "/devices/pci0000:00/0000:00:14.0/usb1/1-" + number +
                " @ bus/usb\n  idVendor = 1234\n  idProduct = " + number.rightJustified(4, '0') +
                "\n  bDeviceClass = 09\n  product = Gadget " + number +
                "\n  manufacturer = Maker\n  driver -> /bus/usb/drivers/usb\n";
    }
    return text;
}

QByteArray Packed(const QByteArray& database) {
    const QTemporaryDir work;
    QFile file(work.filePath("hwids.mdb"));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(database) == database.size());
    file.close();
    QProcess packer;
    packer.start(net::FindEngine(), {"a", "-bd", "-mx=1", work.filePath("made.7z"), file.fileName()});
    EXPECT_TRUE(packer.waitForFinished());
    QFile made(work.filePath("made.7z"));
    EXPECT_TRUE(made.open(QIODevice::ReadOnly));
    return made.readAll();
}

// All values of a column of what the query finds; fails the test where the query does.
QStringList Column(const QString& query, const QString& column) {
    QStringList values;
    data::Error error;
    EXPECT_TRUE(data::Ran(
        [&] {
            data::Recordset rows;
            for (rows.Open(query, database::DatabaseConnection()); !rows.Eof(); rows.MoveNext())
                values.append(rows.Value(column).toString());
        },
        &error))
        << query.toStdString() << ": " << error.Description().toStdString();
    return values;
}

bool HasOpen(qint64 process, const QString& path) {
    const QDir files(QStringLiteral("/proc/%1/fd").arg(process));
    for (const QString& name : files.entryList(QDir::System | QDir::Files)) {
        if (QFile::symLinkTarget(files.filePath(name)) == path)
            return true;
    }
    return false;
}

} // namespace

AtWork::AtWork(const QStringList& command, const QProcessEnvironment& environment) {
    // Of what cannot be done without a screen the platform plugin tells at length.
    QProcessEnvironment quiet = environment;
    quiet.insert("QT_LOGGING_RULES", "*.debug=false;qt.qpa.*=false;default.warning=false");
    quiet.insert("XDG_RUNTIME_DIR", QDir::tempPath());
    process_.setProcessEnvironment(quiet);
    process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process_.start(command.first(), command.mid(1));
    EXPECT_TRUE(process_.waitForStarted(Patience()));
}

AtWork::~AtWork() { Kill(); }

void AtWork::Read() {
    rest_ += process_.readAllStandardOutput();
    for (qsizetype end = 0; (end = rest_.indexOf('\n')) >= 0;) {
        lines_.append(QString::fromUtf8(rest_.first(end)));
        rest_.remove(0, end + 1);
    }
}

bool AtWork::Reaches(const QString& start) {
    const QDeadlineTimer deadline(Patience());
    while (Last(start).isNull()) {
        if (deadline.hasExpired() || process_.state() == QProcess::NotRunning)
            return false;
        process_.waitForReadyRead(100);
        Read();
    }
    return true;
}

bool AtWork::Ends(int milliseconds) {
    const bool ended = process_.state() == QProcess::NotRunning || process_.waitForFinished(milliseconds);
    if (!ended)
        Kill();
    Read();
    return ended;
}

void AtWork::Poll() {
    while (process_.waitForReadyRead(1)) {
    }
    Read();
}

void AtWork::Signal(int number) const { ::kill(pid_t(Id()), number); }

void AtWork::Kill() {
    if (process_.state() != QProcess::NotRunning) {
        process_.kill();
        process_.waitForFinished();
    }
    Read();
}

int AtWork::Status() const {
    return process_.exitStatus() == QProcess::CrashExit ? 128 + process_.exitCode() : process_.exitCode();
}

QString AtWork::Last(const QString& start) const {
    for (auto line = lines_.crbegin(); line != lines_.crend(); ++line) {
        if (line->startsWith(start))
            return line->mid(start.size() + 1) + QLatin1String(""); // not null where nothing stands behind it
    }
    return {};
}

SystemFaults::SystemFaults() : devices_(Machine(machineDevices)) {
    QString error;
    // Names are numbered from 1001 then: numbers of one length are no part of one another.
    database::DatabaseBuilder old;
    for (int i = 1; i <= 1000; ++i)
        old.Add(QStringLiteral("OLD\\%1").arg(i), QStringLiteral("Old %1").arg(i), "Maker old");
    EXPECT_TRUE(old.Write(Path("hwids.mdb"), "1.0.0", &error)) << error.toStdString();
    database::DatabaseBuilder newer;
    for (int i = 1; i <= newDevices; ++i)
        newer.Add(QStringLiteral("NEW\\%1").arg(i), QStringLiteral("New %1").arg(i), "Maker new");
    EXPECT_TRUE(newer.Write(Path("new"), "2.0.0", &error)) << error.toStdString();
    oldDatabase_ = Content(Path("hwids.mdb"));
    newDatabase_ = Content(Path("new"));
    QFile::remove(Path("new"));
    const QByteArray updates = "/files/updates/quorvane/";
    server_.SetAnswer(updates + "update.htm", support::Reply(200, "1.0.0"));
    server_.SetAnswer(updates + "database_v1.htm", support::Reply(200, "2.0.0"));
    server_.SetAnswer(updates + "hwids.7z", support::Reply(200, Packed(newDatabase_)));
    server_.SetAnswer("/files/hardware_ids/upload_hardware_id_v1.php", support::Reply(200, "ok"));
}

void SystemFaults::RestoreTheOldDatabase() const {
    QFile::remove(Path("hwids.mdb"));
    QFile database(Path("hwids.mdb"));
    EXPECT_TRUE(database.open(QIODevice::WriteOnly) && database.write(oldDatabase_) == oldDatabase_.size());
}

QByteArray SystemFaults::Content(const QString& path) const {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList SystemFaults::Command(const QStringList& job) const {
    return QStringList{bin + "/at_work", Folder()} + job;
}

std::unique_ptr<AtWork> SystemFaults::Start(const QStringList& job, const QStringList& variables) const {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("QUORVANE_TEST_SERVER", server_.Url());
    environment.insert("QUORVANE_TEST_DEVICES", devices_.Root());
    for (const QString& variable : variables)
        environment.insert(variable.section(u'=', 0, 0), variable.section(u'=', 1));
    const bool wrapped = job.first().startsWith(u'/');
    return std::make_unique<AtWork>(wrapped ? job : Command(job), environment);
}

void SystemFaults::ExpectThatTheProgramStarts() const {
    const QString program = Path("quorvane");
    const QString built = bin + "/quorvane";
    if (!QFile::exists(program) &&
        ::link(QFile::encodeName(built).constData(), QFile::encodeName(program).constData()) != 0) {
        ASSERT_TRUE(QFile::copy(built, program));
    }
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("HOME", Folder());
    AtWork process({program}, environment);
    const QDeadlineTimer deadline(AtWork::Patience());
    const QString database = Path("hwids.mdb");
    while (!HasOpen(process.Id(), database) && !deadline.hasExpired())
        QThread::msleep(5);
    EXPECT_FALSE(deadline.hasExpired()) << "the database is not open";
    process.Signal(SIGTERM);
    EXPECT_TRUE(process.Ends()) << "the program does not end";
    EXPECT_EQ(process.Status(), 0);
}

bool SystemFaults::MayMount() {
    static const bool may =
        QProcess::execute("unshare",
                          {"-rm", "sh", "-c", "mkdir -p \"$0\" && mount -t tmpfs none \"$0\"", QDir::tempPath()}) == 0;
    return may;
}

std::unique_ptr<AtWork> SystemFaults::StartOnSmallDisk(int kilobytes, const QString& script,
                                                       const QStringList& job) const {
    const QString shell = QStringLiteral(R"sh(set -e
folder=$1 size=$2; shift 2
prepare() { %1; }
saved=$(mktemp -d)
cp -a "$folder/." "$saved"
mount -t tmpfs -o size="${size}k" none "$folder"
cp -a "$saved/." "$folder"
cd "$folder" && prepare
status=0
"$@" || status=$?
mount -o remount,rw none "$folder"
rm -rf "$saved" "$folder/filler"
cp -a "$folder" "$saved"
cd / && umount "$folder"
find "$folder" -mindepth 1 -delete
cp -a "$saved/." "$folder"
rm -rf "$saved"
exit $status
)sh")
                              .arg(script);
    return Start(
        QStringList{"/usr/bin/unshare", "-rm", "bash", "-c", shell, "bash", Folder(), QString::number(kilobytes)} +
        Command(job));
}

namespace {

// By the store itself: the program's own connection reaches none of this.
std::string IntegrityOf(const QString& path) {
    std::string found;
    sqlite3* handle = nullptr;
    sqlite3_open(QFile::encodeName(path).constData(), &handle);
    const auto take = [](void* text, int, char** values, char**) {
        *static_cast<std::string*>(text) += values[0];
        return 0;
    };
    sqlite3_exec(handle, "PRAGMA integrity_check", take, &found, nullptr);
    sqlite3_close(handle);
    return found;
}

} // namespace

QString SystemFaults::CheckedVersion(const QString& path) const {
    data::Error error;
    if (!database::OpenDatabaseFile(base::NativePath(path), &error)) {
        ADD_FAILURE() << path.toStdString() << ": " << error.Description().toStdString();
        return {};
    }
    EXPECT_EQ(IntegrityOf(base::NativePath(path)), "ok");
    const QString version = Column("SELECT * FROM version", "dbversion").value(0);
    database::CloseDeviceDatabase();
    return version;
}

QList<int> SystemFaults::Additions(const QString& tag, int count) const {
    QList<int> found;
    EXPECT_TRUE(database::OpenDatabaseFile(Path("hwids.mdb")));
    for (int i = 0; i < count; ++i) {
        const QStringList infos =
            Column(QStringLiteral("SELECT * FROM hwids Where [hwids].[hwid] = '%1\\%2'").arg(tag).arg(i), "info");
        if (infos.isEmpty())
            continue;
        const QStringList ids = infos.first().trimmed().split(u',');
        EXPECT_EQ(infos.size(), 1);
        EXPECT_EQ(ids.size(), 2) << infos.first().toStdString();
        EXPECT_EQ(database::DeviceNameById(ids.value(0)), QStringLiteral("Name %1 %2").arg(tag).arg(i));
        EXPECT_EQ(database::ManufacturerById(ids.value(1)), "Maker " + tag);
        found.append(i);
    }
    database::CloseDeviceDatabase();
    return found;
}

void SystemFaults::ExpectEveryRowSent(qsizetype from) const {
    const auto process = Start({"submit"});
    EXPECT_TRUE(process->Ends());
    EXPECT_TRUE(process->Last("offered") == "0" || process->Last("submitted").contains("Successful"))
        << process->Text().toStdString();
    QSet<QByteArray> received;
    for (const QByteArray& request : server_.Requests().mid(from))
        for (const QByteArray& line : request.split('\n'))
            if (line.contains("|||"))
                received.insert(line.trimmed());
    EXPECT_EQ(received.size(), machineDevices * idsOfADevice);
    EXPECT_FALSE(QFile::exists(Path("new_hardware_unsent.txt")));
}

void SystemFaults::ExpectTheNewDatabase() const {
    EXPECT_EQ(CheckedVersion(), "2.0.0");
    EXPECT_TRUE(database::OpenDatabaseFile(Path("hwids.mdb")));
    int devices = 0;
    for (const QString& hwid : Column("SELECT * FROM hwids", "hwid"))
        devices += hwid.startsWith("NEW\\") ? 1 : 0;
    EXPECT_EQ(devices, newDevices);
    database::CloseDeviceDatabase();
}
