// Every command of both tools in a broken surrounding: wrong options, files that are missing or of another kind, a full
// disk, a reader that went away. Each answers with one line and its status, and leaves the folder as it was.
#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDirIterator>
#include <QFile>
#include <QMap>
#include <QProcess>
#include <QTemporaryDir>
#include <algorithm>
#include <gtest/gtest.h>

namespace {

struct Result {
    int Status = -1;
    std::string Output;
    std::string Errors;
};

// What a word of a command stands for.
enum class Role { Plain, Database, Ids, Contributions, Jet, OutputFile, OutputFolder, SysFolder, Saved };

struct Word {
    const char* Name;
    Role As;
};

constexpr Word roles[] = {
    {"hwids.mdb", Role::Database},    {"pci.ids", Role::Ids},        {"new.txt", Role::Contributions},
    {"old.mdb", Role::Jet},           {"out.mdb", Role::OutputFile}, {"out.txt", Role::OutputFile},
    {"out", Role::OutputFolder},      {"sys", Role::SysFolder},      {"saved.tar.xz", Role::Saved},
    {"out.tar.xz", Role::OutputFile},
};

// What is put there instead, and must be refused.
struct Wrong {
    Role As;
    const char* Instead;
};

constexpr Wrong wrongs[] = {
    {Role::Database, "none.mdb"},
    {Role::Database, "."},
    {Role::Database, "text.txt"},
    {Role::Database, "empty"},
    {Role::Database, "other.db"},
    {Role::Database, "cut.mdb"},
    {Role::Database, "/dev/zero"},
    {Role::Ids, "none.ids"},
    {Role::Ids, "."},
    {Role::Ids, "text.txt"},
    {Role::Ids, "empty"},
    {Role::Ids, "hwids.mdb"},
    {Role::Ids, "/dev/zero"},
    {Role::Contributions, "none"},
    {Role::Contributions, "."},
    {Role::Contributions, "hwids.mdb"},
    {Role::Contributions, "/dev/zero"},
    {Role::Jet, "none.mdb"},
    {Role::Jet, "."},
    {Role::Jet, "empty"},
    {Role::OutputFile, "none/out"},
    {Role::OutputFile, "sys"},
    {Role::OutputFile, "text.txt/out"},
    {Role::OutputFile, "/dev/full"},
    {Role::OutputFolder, "text.txt"},
    {Role::OutputFolder, "text.txt/out"},
    {Role::OutputFolder, "/proc/out"},
    {Role::SysFolder, "none"},
    {Role::SysFolder, "text.txt"},
    {Role::SysFolder, "empty"},
    {Role::SysFolder, "bin"},
    {Role::Saved, "none.tar.xz"},
    {Role::Saved, "hwids.mdb"},
    {Role::Saved, "cut.tar.xz"},
    {Role::Saved, "plain.tar.xz"},
    {Role::Saved, "/dev/zero"},
};

struct Command {
    const char* Line;
    int Status = 0; // of a good run
};

// Each works as it stands.
constexpr Command commands[] = {
    {"quorvane-db build --output out.mdb --pci-ids pci.ids --usb-ids pci.ids"},
    {"quorvane-db info hwids.mdb"},
    {"quorvane-db export hwids.mdb"},
    {"quorvane-db export --output out.txt hwids.mdb"},
    {"quorvane-db check new.txt", 3},
    {"quorvane-db check --db hwids.mdb new.txt", 3},
    {"quorvane-db merge --dry-run hwids.mdb new.txt", 3},
    {"quorvane-db merge --version 3.0.0 hwids.mdb new.txt", 3},
    {"quorvane-db pack --output out hwids.mdb"},
    {"quorvane-db import-jet --output out.mdb old.mdb"},
    {"quorvane-list --root sys"},
    {"quorvane-list --root sys --format json --list all"},
    {"quorvane-list --root sys --format table --db hwids.mdb"},
    {"quorvane-list --root saved.tar.xz --list all"},
    {"quorvane-list --root sys --save out.tar.xz"},
    {"quorvane-db --help"},
    {"quorvane-db --version"},
    {"quorvane-list --help"},
    {"quorvane-list --version"},
};

constexpr char jetExport[] = "#!/bin/sh\n"
                             "[ -s \"$1\" ] || exit 1\n"
                             "case $2 in\n"
                             "hwids) printf 'hwid,info\\n\"PCI\\\\VEN_1\",\"7,3\\r\\n\"\\n';;\n"
                             "devicenames) printf 'ID,devicename\\n7,\"Seven\"\\n';;\n"
                             "mfgs) printf 'ID,mfg\\n3,\"Maker\"\\n';;\n"
                             "version) printf 'dbversion\\n\"3.2.1\"\\n';;\n"
                             "esac\n";
constexpr char jetCount[] = "#!/bin/sh\necho 1\n"; // of each table

Role RoleOf(const QString& word) {
    const auto* found = std::find_if(std::begin(roles), std::end(roles),
                                     [&word](const Word& role) { return word == QLatin1String(role.Name); });
    return found == std::end(roles) ? Role::Plain : found->As;
}

class FaultsTest : public testing::Test {
  protected:
    void SetUp() override {
        QByteArray ids = "1000  A\n";
        for (int i = 1000; i < 1060; ++i)
            ids += '\t' + QByteArray::number(i) + "  " + QByteArray(90, 'n') + QByteArray::number(i) + '\n';
        Write("pci.ids", ids);
        Write("text.txt", "nothing in here\n");
        Write("empty", "");
        Write("old.mdb", "jet");
        QByteArray contributions = "no contribution\r\n";
        for (int i = 0; i < 60; ++i)
            contributions += "USB\\VID_1234&PID_" + QByteArray::number(1000 + i) + "|||Adapter " + QByteArray(80, 'a') +
                             QByteArray::number(i) + "|||Maker\r\n";
        Write("new.txt", contributions);
        ASSERT_TRUE(QDir(Folder.path()).mkpath("sys/bus/pci/devices/0000:00:02.0"));
        ASSERT_TRUE(QDir(Folder.path()).mkpath("bin"));
        Write("bin/mdb-export", jetExport);
        Write("bin/mdb-count", jetCount);
        for (const char* program : {"bin/mdb-export", "bin/mdb-count"})
            QFile::setPermissions(Path(program), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        ASSERT_EQ(Run("quorvane-db build --output hwids.mdb --pci-ids pci.ids --usb-ids pci.ids").Status, 0);
        ASSERT_EQ(Run("sqlite3 other.db 'create table hwids (hwid, info)'").Status, 0);
        ASSERT_EQ(Run("head -c 5000 hwids.mdb >cut.mdb").Status, 0);
        ASSERT_EQ(Run("quorvane-list --root sys --save saved.tar.xz").Status, 0);
        ASSERT_EQ(Run("head -c 200 saved.tar.xz >cut.tar.xz && tar cJf plain.tar.xz sys").Status, 0);
    }

    QString Path(const char* name) const { return Folder.filePath(QLatin1String(name)); }

    void Write(const char* name, const QByteArray& bytes) const {
        QFile file(Path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }

    // A line of the shell, in the test's folder, with the tools on its path.
    Result Run(const QString& line) const {
        QProcess process;
        process.setWorkingDirectory(Folder.path());
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("PATH",
                           QCoreApplication::applicationDirPath() + QLatin1Char(':') + Path("bin") + ":/usr/bin:/bin");
        process.setProcessEnvironment(environment);
        process.start("/bin/sh", {"-c", line});
        EXPECT_TRUE(process.waitForFinished(60000)) << line.toStdString();
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit) << line.toStdString();
        return {process.exitCode(), process.readAllStandardOutput().toStdString(),
                process.readAllStandardError().toStdString()};
    }

    static void ExpectOneLine(const Result& result, const QString& line) {
        EXPECT_EQ(std::count(result.Errors.begin(), result.Errors.end(), '\n'), 1) << line.toStdString() << "\n"
                                                                                   << result.Errors;
        EXPECT_EQ(result.Errors.find(line.section(QLatin1Char(' '), 0, 0).toStdString() + ": "), 0U)
            << line.toStdString() << "\n"
            << result.Errors;
    }

    void ExpectRefused(const QString& line, int status) const {
        const auto before = Contents();
        const Result result = Run(line);
        EXPECT_EQ(result.Status, status) << line.toStdString() << "\n" << result.Errors;
        EXPECT_EQ(result.Output, "") << line.toStdString();
        ExpectOneLine(result, line);
        EXPECT_TRUE(Contents() == before) << line.toStdString();
    }

    // All that lies in the folder, with its bytes.
    QMap<QString, QByteArray> Contents() const {
        QMap<QString, QByteArray> contents;
        QDirIterator entries(Folder.path(), QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                             QDirIterator::Subdirectories);
        while (entries.hasNext()) {
            QFile file(entries.next());
            const bool read = entries.fileInfo().isFile() && file.open(QIODevice::ReadOnly);
            contents.insert(file.fileName(), read ? QCryptographicHash::hash(file.readAll(), QCryptographicHash::Md5)
                                                  : QByteArray("folder"));
        }
        return contents;
    }

    void RemoveOutputs() const {
        QFile::remove(Path("out.mdb"));
        QFile::remove(Path("out.txt"));
        QFile::remove(Path("out.tar.xz"));
        QDir(Path("out")).removeRecursively();
    }

    QTemporaryDir Folder;
};

} // namespace

TEST_F(FaultsTest, EveryCommandWorksAsItStands) {
    for (const Command& command : commands) {
        ASSERT_TRUE(QFile::copy(Path("hwids.mdb"), Path("kept.mdb")));
        EXPECT_EQ(Run(QLatin1String(command.Line)).Status, command.Status) << command.Line;
        QFile::remove(Path("hwids.mdb"));
        QFile::rename(Path("kept.mdb"), Path("hwids.mdb"));
        RemoveOutputs();
    }
}

TEST_F(FaultsTest, BadOptionsAreRefused) {
    for (const Command& command : commands) {
        const QString line = QLatin1String(command.Line);
        if (line.contains(QLatin1String("--help")) || line.contains(QLatin1String("--version")))
            continue;
        ExpectRefused(line + " --frobnicate", 2);
        ExpectRefused(line + " --output", 2);
        ExpectRefused(line + " -x", 2);
        // Without its arguments; a list needs none.
        if (!line.startsWith(QLatin1String("quorvane-list")))
            ExpectRefused(line.section(QLatin1Char(' '), 0, 1), 2);
    }
    for (const char* line :
         {"quorvane-db",
          "quorvane-db frobnicate",
          "quorvane-db info hwids.mdb hwids.mdb",
          "quorvane-db merge hwids.mdb",
          "quorvane-db export --output hwids.mdb hwids.mdb",
          "quorvane-db import-jet --output old.mdb ./old.mdb",
          "quorvane-db pack --output= hwids.mdb",
          "quorvane-db export --output= hwids.mdb",
          "quorvane-db merge --version 123456789.123456789.123456789.123456789.123456789.1 hwids.mdb new.txt",
          "quorvane-db build --output out.mdb --version 123456789.123456789.123456789.123456789.123456789.1",
          "quorvane-list extra",
          "quorvane-list --format",
          "quorvane-list --format xml",
          "quorvane-list --list",
          "quorvane-list --list=none",
          "quorvane-list --lookup=yes",
          "quorvane-list --db",
          "quorvane-list --db=",
          "quorvane-list --root",
          "quorvane-list --root=",
          "quorvane-list --root=/proc/self",
          "quorvane-list --root=/proc/self/status",
          "quorvane-list --root /nonexistent",
          "quorvane-list --save",
          "quorvane-list --save=",
          "quorvane-list --save=x --lookup"})
        ExpectRefused(QLatin1String(line), 2);
}

TEST_F(FaultsTest, WrongFilesAreRefused) {
    for (const Command& command : commands) {
        const QStringList words = QString::fromLatin1(command.Line).split(QLatin1Char(' '));
        for (qsizetype at = 1; at < words.size(); ++at) {
            for (const Wrong& wrong : wrongs) {
                if (wrong.As != RoleOf(words[at]))
                    continue;
                QStringList line = words;
                line[at] = QLatin1String(wrong.Instead);
                ExpectRefused(line.join(QLatin1Char(' ')),
                              wrong.As == Role::SysFolder || wrong.As == Role::Saved ? 2 : 1);
            }
        }
    }
}

// Standard output is full, its reader is gone, or it was closed: then the first file that a tool opens must not take
// its place. Only files that were made before the text stay.
TEST_F(FaultsTest, TextThatNobodyGetsIsAFailure) {
    const auto before = Contents();
    for (const Command& command : commands) {
        const QString line = QLatin1String(command.Line);
        if (line.contains(QLatin1String(" pack ")) || line.contains(QLatin1String("--output out.txt")) ||
            line.contains(QLatin1String("--save")))
            continue; // they print nothing
        // The last is a pipe that a reader has opened and closed.
        for (const char* output : {"%1 >/dev/full", "%1 >&- <&-",
                                   "mkfifo pipe; exec 3<>pipe 4>pipe 3<&-; %1 >&4; status=$?; rm pipe; exit $status"}) {
            const Result result = Run(QString::fromLatin1(output).arg(line));
            EXPECT_EQ(result.Status, 1) << line.toStdString() << " " << output;
            ExpectOneLine(result, line);
            if (QFile::exists(Path("out.mdb"))) {
                EXPECT_EQ(Run("quorvane-db info out.mdb").Status, 0);
            }
            RemoveOutputs();
            EXPECT_TRUE(Contents() == before) << line.toStdString() << " " << output;
        }
    }
}

// Disks of every size from nothing to enough: the command fails in one line and the disk is as it was, or it is done.
TEST_F(FaultsTest, AFullDiskLeavesNothingHalfWritten) {
    if (Run("unshare -m sh -c 'mkdir disk && mount -t tmpfs none disk'").Status != 0)
        GTEST_SKIP() << "no disk of a chosen size can be mounted";
    // A machine whose file fills more than the smallest disk.
    ASSERT_EQ(Run("for i in $(seq 300); do d=many/bus/pci/devices/0000:00:02.$i; mkdir -p $d;"
                  "head -c 40 /dev/urandom | od -An -tx1 | tr -d ' \\n' >$d/vendor; done")
                  .Status,
              0);
    const QString onDisk = "unshare -m sh -c 'mount -t tmpfs -o size=%1k none disk || exit 99;"
                           "%2 %3; s=$?; ls -A disk >listing; [ ! -e disk/hwids.mdb ] ||"
                           " cmp -s hwids.mdb disk/hwids.mdb || echo changed >>listing; exit $s'";
    struct Row {
        const char* Prepare;
        const char* Line;
        int Status;
        const char* Failed; // what is on the disk then
        const char* Done;
    };
    const Row rows[] = {
        {"", "quorvane-db build --output disk/out.mdb --pci-ids pci.ids --usb-ids pci.ids", 0, "", "out.mdb\n"},
        {"", "quorvane-db export --output disk/out.txt hwids.mdb", 0, "", "out.txt\n"},
        {"", "quorvane-db import-jet --output disk/out.mdb old.mdb", 0, "", "out.mdb\n"},
        {"", "quorvane-db pack --output disk/a/b hwids.mdb", 0, "", "a\n"},
        {"", "quorvane-list --root many --save disk/out.tar.xz", 0, "", "out.tar.xz\n"},
        {"cp hwids.mdb disk || exit 98;", "quorvane-db merge disk/hwids.mdb new.txt", 3, "hwids.mdb\n",
         "hwids.mdb\nchanged\n"},
    };
    for (const Row& row : rows) {
        int failed = 0;
        int done = 0;
        for (int size = 4; size <= 400 && done == 0; size += 4) {
            const Result result = Run(onDisk.arg(size).arg(QLatin1String(row.Prepare), QLatin1String(row.Line)));
            if (result.Status == 98)
                continue; // no room for what is there before
            QFile file(Path("listing"));
            ASSERT_TRUE(file.open(QIODevice::ReadOnly));
            const std::string listing = file.readAll().toStdString();
            if (result.Status == row.Status) {
                ++done;
                EXPECT_EQ(listing, row.Done) << row.Line << ", " << size << " KiB";
            } else {
                ++failed;
                EXPECT_EQ(result.Status, 1) << row.Line << ", " << size << " KiB";
                EXPECT_EQ(listing, row.Failed) << row.Line << ", " << size << " KiB\n" << result.Errors;
                ExpectOneLine(result, QLatin1String(row.Line));
                for (const char* vague : {"Unknown error", "Input/output error"})
                    EXPECT_EQ(result.Errors.find(vague), std::string::npos) << result.Errors;
            }
        }
        EXPECT_GT(failed, 0) << row.Line;
        EXPECT_EQ(done, 1) << row.Line;
    }
}
