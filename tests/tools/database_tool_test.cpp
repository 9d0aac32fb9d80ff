#include "support/long_form.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <algorithm>
#include <gmock/gmock.h>
#include <sys/resource.h>

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

struct Result {
    int Status = -1;
    std::string Output;
    std::string Errors;
};

class DatabaseToolTest : public testing::Test {
  protected:
    QString Path(const char* name) const { return Folder.filePath(QLatin1String(name)); }

    void Write(const char* name, const QByteArray& bytes) const {
        QFile file(Path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }

    // Runs in the test's folder, with `input` through a pipe.
    Result Run(const QStringList& arguments, const QString& path = QString(), const QByteArray& input = {}) const {
        QProcess process;
        process.setWorkingDirectory(Folder.path());
        if (!path.isEmpty()) {
            QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
            environment.insert("PATH", path);
            process.setProcessEnvironment(environment);
        }
        process.start(QCoreApplication::applicationDirPath() + "/quorvane-db", arguments);
        process.write(input);
        process.closeWriteChannel();
        EXPECT_TRUE(process.waitForFinished(support::Rounds(30'000, 900'000)));
        return {process.exitCode(), process.readAllStandardOutput().toStdString(),
                process.readAllStandardError().toStdString()};
    }

    Result Build(const QByteArray& pciIds, const QByteArray& usbIds) const {
        Write("pci.ids", pciIds);
        Write("usb.ids", usbIds);
        return Run(
            {"build", "--output", "hwids.mdb", "--version=2.0.0", "--pci-ids", "pci.ids", "--usb-ids", "usb.ids"});
    }

    std::vector<std::string> Export(const char* database = "hwids.mdb") const {
        const Result result = Run({"export", QLatin1String(database)});
        EXPECT_EQ(result.Status, 0) << result.Errors;
        std::vector<std::string> lines;
        for (const QString& line : QString::fromStdString(result.Output).split(u'\n', Qt::SkipEmptyParts)) {
            lines.push_back(line.toStdString());
        }
        return lines;
    }

    QStringList Files() const { return QDir(Folder.path()).entryList(QDir::Files); }

    QTemporaryDir Folder;
};

} // namespace

TEST_F(DatabaseToolTest, BuildsEveryIdInTheFormOfTheScan) {
    const Result result = Build("# comment\n"
                                "10de  NVIDIA Corporation\n"
                                "\t1183  GK104 [GeForce GTX 660 Ti]\n"
                                "\t\t1043 841f  GTX660 TI-DC2\n"
                                "\t\t9999 0001  \n"
                                "\t1184\n"
                                "1043  ASUSTeK Computer Inc.\n"
                                "C 03  Display controller\n"
                                "\t00  VGA compatible controller\n"
                                "\t\t00  VGA controller\n",
                                "03f0  HP, Inc\r\n"
                                "\t0004  DeskJet 895c\r\n"
                                "\t\t00  an interface\r\n"
                                "HID 21  HID\r\n");
    EXPECT_EQ(result.Status, 0);
    EXPECT_EQ(result.Errors, "");
    EXPECT_THAT(
        Export(),
        ElementsAre("version|||2.0.0",
                    R"(PCI\VEN_10DE&DEV_1183&SUBSYS_00019999|||GK104 [GeForce GTX 660 Ti]|||NVIDIA Corporation)",
                    R"(PCI\VEN_10DE&DEV_1183&SUBSYS_00019999|||Unknown|||Unknown)",
                    R"(PCI\VEN_10DE&DEV_1183&SUBSYS_841F1043|||GK104 [GeForce GTX 660 Ti]|||NVIDIA Corporation)",
                    R"(PCI\VEN_10DE&DEV_1183&SUBSYS_841F1043|||GTX660 TI-DC2|||ASUSTeK Computer Inc.)",
                    R"(PCI\VEN_10DE&DEV_1183|||GK104 [GeForce GTX 660 Ti]|||NVIDIA Corporation)",
                    R"(PCI\VEN_10DE&DEV_1184|||Unknown|||NVIDIA Corporation)",
                    R"(USB\VID_03F0&PID_0004|||DeskJet 895c|||HP, Inc)"));
}

TEST_F(DatabaseToolTest, ABadLineCostsThatLineAndIsCounted) {
    const Result result = Build(QByteArray("1000  First\n"
                                           "\t0001  One\n"
                                           "\t0001  One again\n"
                                           "\t0002  Bad \xff encoding\n"
                                           "\t\t1000 0007  Board\n"
                                           "\t0003  " +
                                           QByteArray(2000, 'x') +
                                           "\n"
                                           "\t\t1000 0008  Lost with its device\n"
                                           "\tzzzz  no ID\n"
                                           "\t0004  " +
                                           QByteArray(150, 'n') +
                                           "\n"
                                           "not a vendor\n"
                                           "\t0005  of nobody\n"
                                           "1000  First again\n"
                                           "\t0006  Six\n"),
                                "0001  U\n");
    EXPECT_EQ(result.Status, 0);
    EXPECT_EQ(result.Errors,
              "quorvane-db: pci.ids: 8 lines skipped (2 duplicate, 1 over-long, 1 badly encoded, 4 broken)\n");
    EXPECT_THAT(Export(), ElementsAre("version|||2.0.0", R"(PCI\VEN_1000&DEV_0001|||One|||First)",
                                      R"(PCI\VEN_1000&DEV_0002&SUBSYS_00071000|||Board|||First)",
                                      R"(PCI\VEN_1000&DEV_0002&SUBSYS_00071000|||Unknown|||First)",
                                      R"(PCI\VEN_1000&DEV_0004|||)" + std::string(100, 'n') + "|||First",
                                      R"(PCI\VEN_1000&DEV_0006|||Six|||First)"));
}

// A page in the middle that cannot be read: its rows would be missing from what is printed, published or added to.
TEST_F(DatabaseToolTest, ADamagedDatabaseIsRefused) {
    QByteArray ids = "1000  A\n";
    for (int i = 1000; i < 1200; ++i) {
        ids += '\t' + QByteArray::number(i) + "  " + QByteArray(90, 'n') + QByteArray::number(i) + '\n';
    }
    ASSERT_EQ(Build(ids, "1000  A\n").Status, 0);
    QFile file(Path("hwids.mdb"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray whole = file.readAll();
    constexpr qsizetype pageSize = 4096;
    constexpr char leafOfTable = 13;
    constexpr qsizetype lastRoot = 9; // of four tables and their indexes
    Write("new.txt", "USB\\VID_1234&PID_5678|||Adapter|||Maker\r\n");
    const QStringList before = Files();
    int damaged = 0;
    for (qsizetype at = lastRoot * pageSize; at < whole.size(); at += pageSize) {
        if (whole[at] != leafOfTable) {
            continue;
        }
        ++damaged;
        Write("hwids.mdb", QByteArray(whole).replace(at, pageSize, QByteArray(pageSize, '\xEE')));
        for (const char* line : {"info hwids.mdb", "export hwids.mdb", "pack --output out hwids.mdb",
                                 "check --db hwids.mdb new.txt", "merge hwids.mdb new.txt"}) {
            const Result result = Run(QString::fromLatin1(line).split(u' '));
            EXPECT_EQ(result.Status, 1) << line << ", page at " << at;
            EXPECT_EQ(result.Output, "") << line << ", page at " << at;
            EXPECT_EQ(result.Errors, "quorvane-db: hwids.mdb: the database is damaged\n") << line;
        }
    }
    EXPECT_GE(damaged, 4);
    EXPECT_EQ(Files(), before);
    EXPECT_FALSE(QFile::exists(Path("out")));
}

TEST_F(DatabaseToolTest, ChecksAndMergesWhatUsersSend) {
    ASSERT_EQ(Build("1000  A\n\t0001  B\n", "1000  A\n").Status, 0);
    Write("new_hardware.txt", "USB\\VID_1234&PID_5678|||Adapter \x99|||Maker\r\n"
                              "USB\\VID_1234&PID_5678|||adapter \x99|||maker\r\n"
                              "PCI\\VEN_1000&DEV_0001||| B |||A\r\n"
                              "only two|||fields\r\n"
                              "PCI\\CC_0604|||Bridge|||Maker\r\n"
                              "PCI\\VEN_1&DEV_2|||<script>|||Maker\r\n"
                              "PCI\\VEN_1&DEV_3|||a\x1b[2Jb|||Maker\r\n");
    const QStringList check{"check", "--db", "hwids.mdb", "new_hardware.txt"};
    const Result checked = Run(check);
    EXPECT_EQ(checked.Status, 3);
    EXPECT_THAT(checked.Output, HasSubstr("new_hardware.txt:2: duplicate: "));
    EXPECT_THAT(checked.Output, HasSubstr("new_hardware.txt:3: already known: "));
    EXPECT_THAT(checked.Output, HasSubstr("new_hardware.txt:4: malformed, has not three fields: "));
    EXPECT_THAT(checked.Output, HasSubstr("new_hardware.txt:5: suspicious, ID of a whole class of devices: "));
    EXPECT_THAT(checked.Output, HasSubstr("new_hardware.txt:6: suspicious, holds markup or an address: "));
    EXPECT_THAT(checked.Output, HasSubstr("malformed, holds a control character: PCI\\VEN_1&DEV_3|||a\\u001b[2Jb"));
    EXPECT_THAT(checked.Output, HasSubstr("1 good, 2 malformed, 2 suspicious, 1 duplicate, 1 already known\n"));

    const auto before = Export();
    const QStringList merge{"merge", "--version=2.0.1", "hwids.mdb", "new_hardware.txt"};
    const Result dry = Run(merge + QStringList{"--dry-run"});
    EXPECT_THAT(dry.Output, HasSubstr("dry run: 1 added, 2 already known, 4 left out\n"));
    EXPECT_EQ(Export(), before);

    const Result merged = Run(merge);
    EXPECT_EQ(merged.Status, 3);
    EXPECT_THAT(merged.Output, HasSubstr("\n1 added, 2 already known, 4 left out\n"));
    EXPECT_THAT(Export(), ElementsAre("version|||2.0.1", R"(PCI\VEN_1000&DEV_0001|||B|||A)",
                                      "USB\\VID_1234&PID_5678|||Adapter \u2122|||Maker"));
    EXPECT_THAT(Run(merge).Output, HasSubstr("0 added, 3 already known"));
    EXPECT_THAT(Files(), ElementsAre("hwids.mdb", "new_hardware.txt", "pci.ids", "usb.ids"));
}

// Lines as they come, and what becomes of them in check and merge.
TEST_F(DatabaseToolTest, JudgesEachLine) {
    ASSERT_EQ(Build("1000  A\n\t0001  B\n\t0002  C\n", "1000  A\n").Status, 0);
    const char* good = "";
    const char* ofClass = "suspicious, ID of a whole class of devices";
    const char* noName = "suspicious, no name or no manufacturer";
    const char* otherName = R"(known under another name (B, A))";
    const struct {
        const char* Line;
        const char* Report;
    } rows[] = {
        {"USB\\VID_1&PID_1|||Name||||Maker", good}, // by the program's own rule, "|Maker"
        {"USB\\VID_1&PID_2|||Name|||Maker|||more", "malformed, has not three fields"},
        {"USB\\VID_1&PID_3|||Name", "malformed, has not three fields"},
        {"\xA0|||Name|||Maker", "malformed, has no hardware ID"},
        {" USB\\VID_1&PID_4|||Name|||Maker", "suspicious, is no hardware ID"},
        {"USB\\VID_1&PID_5|||   |||Maker", noName},
        {"USB\\VID_1&PID_6|||\xA0|||Maker", noName},
        {"USB\\VID_1&PID_7|||Name|||\xA0 \xA0", noName},
        {"*PNP0C0A|||Battery|||Maker", ofClass},
        {"ACPI\\PNP0C0A|||Battery|||Maker", ofClass},
        {"acpi\\ven_pnp&dev_0c0a|||Battery|||Maker", ofClass},
        {"USBSTOR\\GenDisk|||Disk|||Maker", ofClass},
        {"GenCdRom|||Drive|||Maker", ofClass},
        {"USB\\Class_08&SubClass_06|||Disk|||Maker", ofClass},
        {"PCI\\VEN_1000&CC_0300|||Card|||Maker", ofClass},
        {"HID\\VID_1000&UP:0001_U:0002|||Mouse|||Maker", ofClass},
        {"HID_DEVICE_UP:0001_U:0002|||Mouse|||Maker", ofClass},
        {"*ABC0001|||Panel|||Maker", good},
        {"ACPI\\VEN_ABC&DEV_0001|||Panel|||Maker", good},
        {"USBSTOR\\DiskMaker___Stick___________1.00|||Stick|||Maker", good},
        {"PCI\\VEN_1000&DEV_0001&CC_0300|||Card|||Maker", good},
        {"PCI\\VEN_1000&DEV_0001|||b|||A", "already known"},
        {"pci\\ven_1000&dev_0001|||Other|||A", otherName},
        {"PCI\\VEN_1000&DEV_0001|||B|||Other", otherName},
    };
    QByteArray text;
    std::vector<std::string> expected;
    int number = 0;
    for (const auto& [line, report] : rows) {
        text += QByteArray(line) + "\r\n";
        ++number;
        if (*report != '\0')
            expected.push_back("new.txt:" + std::to_string(number) + ": " + report + ": " +
                               QString::fromLatin1(line).toStdString());
    }
    Write("new.txt", text);
    const Result checked = Run({"check", "--db=hwids.mdb", "new.txt"});
    std::vector<std::string> lines;
    for (const QString& line : QString::fromStdString(checked.Output).split(u'\n', Qt::SkipEmptyParts))
        lines.push_back(line.toStdString());
    ASSERT_FALSE(lines.empty()) << checked.Errors;
    EXPECT_EQ(lines.back(), "5 good, 3 malformed, 13 suspicious, 0 duplicate, 1 already known, 2 under another name");
    lines.pop_back();
    EXPECT_EQ(lines, expected);
    EXPECT_THAT(Run({"merge", "hwids.mdb", "new.txt"}).Output, HasSubstr("\n7 added, 1 already known, 16 left out\n"));
    EXPECT_THAT(Export(), Contains("USB\\VID_1&PID_1|||Name||||Maker"));
}

// Entries whose numbers stand within other numbers, and a last one without its line end.
TEST_F(DatabaseToolTest, MergesIntoRowsOfEveryForm) {
    QByteArray ids = "1000  A\n";
    for (int i = 1; i <= 11; ++i)
        ids += "\t" + QByteArray::number(i).rightJustified(4, '0') + "  B" + QByteArray::number(i) + "\n";
    ASSERT_EQ(Build(ids, "1000  A\n").Status, 0);
    QProcess sqlite;
    sqlite.start("sqlite3", {Path("hwids.mdb"), "UPDATE hwids SET info = '2,1' WHERE hwid LIKE '%0002';"
                                                "UPDATE hwids SET info = NULL WHERE hwid LIKE '%0003'"});
    ASSERT_TRUE(sqlite.waitForFinished());
    Write("new.txt", "PCI\\VEN_1000&DEV_0011|||B1|||A\r\nPCI\\VEN_1000&DEV_0002|||B3|||A\r\n"
                     "PCI\\VEN_1000&DEV_0002|||B2|||A\r\nPCI\\VEN_1000&DEV_0003|||b3|||a\r\n"
                     "USB\\NEW|||B1|||A\r\nusb\\new|||B2|||A\r\n");
    const QStringList merge{"merge", "hwids.mdb", "new.txt"};
    EXPECT_THAT(Run(merge).Output, HasSubstr("\n5 added, 1 already known, 0 left out\n"));
    EXPECT_THAT(Run(merge).Output, HasSubstr("0 added, 6 already known, 0 left out\n"));
    const std::vector<std::string> lines = Export();
    for (const char* line : {"PCI\\VEN_1000&DEV_0011|||B11|||A", "PCI\\VEN_1000&DEV_0011|||B1|||A",
                             "PCI\\VEN_1000&DEV_0002|||B2|||A", "PCI\\VEN_1000&DEV_0002|||B3|||A",
                             "PCI\\VEN_1000&DEV_0003|||B3|||A", "USB\\NEW|||B1|||A", "USB\\NEW|||B2|||A"})
        EXPECT_THAT(lines, Contains(line));
    EXPECT_EQ(lines.size(), 1U + 11 + 2 + 2);

    // A row that would make the database one that nobody opens.
    QByteArray crowd;
    for (int i = 0; i < 1001; ++i)
        crowd += "USB\\CROWD|||Name " + QByteArray::number(i) + "|||A\r\n";
    Write("new.txt", crowd + "USB\\OTHER|||B1|||A\r\n");
    EXPECT_THAT(Run(merge).Output, HasSubstr("USB\\CROWD|||Name 1000|||A (one of over 1000 names for one ID)\n"));
    EXPECT_THAT(Run(merge).Output, HasSubstr("\n0 added, 1 already known, 1001 left out\n"));
    constexpr int files = 9;
    std::string failure;
    for (int file = 0; file < files; ++file) {
        crowd.clear();
        for (int i = 0; i < 1000; ++i)
            crowd += "USB\\CROWD|||Name " + QByteArray::number(1000 * file + i) + "|||A\r\n";
        Write("new.txt", crowd);
        failure = Run(merge).Errors;
    }
    EXPECT_EQ(failure, "quorvane-db: hwids.mdb: too many devices under one ID\n");
    EXPECT_EQ(Run({"info", "hwids.mdb"}).Status, 0);
}

TEST_F(DatabaseToolTest, ManyLinesTakeLittleTimeAndMemory) {
    const int count = support::Rounds(30'000, 1'000'000);
    constexpr int files = 100;
    ASSERT_EQ(Build("1000  A\n\t0001  B\n", "1000  A\n").Status, 0);
    QStringList merge{"merge", "hwids.mdb"};
    for (int file = 0; file < files; ++file) {
        QByteArray lines;
        for (int i = file; i < count; i += files)
            lines += "USB\\VID_" + QByteArray::number(i % 65536, 16) + "&PID_" + QByteArray::number(i, 16) +
                     "|||Adapter " + QByteArray::number(i) + "|||Maker " + QByteArray::number(i % 3000) + "\r\n";
        merge << QString::number(file);
        Write(merge.last().toUtf8().constData(), lines);
    }
    rusage before{};
    rusage after{};
    ::getrusage(RUSAGE_CHILDREN, &before);
    const Result merged = Run(merge);
    ::getrusage(RUSAGE_CHILDREN, &after);
    EXPECT_THAT(merged.Output, HasSubstr("\n" + std::to_string(count) + " added, 0 already known, 0 left out\n"));
    [[maybe_unused]] const auto seconds = [](const rusage& usage) {
        return double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
               double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
    };
#ifndef QUORVANE_SANITIZED
    // Sixty seconds for a million, and what a start takes.
    EXPECT_LT(seconds(after) - seconds(before), 1 + 60.0 * count / 1e6);
    EXPECT_LT(after.ru_maxrss, 160 << 10) << "KiB";
#endif
}

TEST_F(DatabaseToolTest, WhatComesThroughAPipeIsReadToItsEnd) {
    QByteArray ids = "1000  A\n";
    QByteArray contributions;
    for (int i = 0; i < 9000; ++i) {
        const QByteArray number = QByteArray::number(i).rightJustified(4, '0');
        ids += '\t' + number + "  Device " + number + '\n';
        contributions += "USB\\VID_1000&PID_" + number + "|||Device " + number + "|||A\r\n";
    }
    Write("usb.ids", "1000  A\n");
    const Result built =
        Run({"build", "--output=hwids.mdb", "--pci-ids=/dev/stdin", "--usb-ids=usb.ids"}, QString(), ids);
    EXPECT_EQ(built.Output, "hwids.mdb: 9000 hardware IDs, 9000 device names, 1 manufacturers\n") << built.Errors;
    const Result checked = Run({"check", "/dev/stdin"}, QString(), contributions);
    EXPECT_EQ(checked.Output, "9000 good, 0 malformed, 0 suspicious, 0 duplicate, 0 already known\n");
    EXPECT_EQ(checked.Status, 0) << checked.Errors;
}

TEST_F(DatabaseToolTest, ImportsAJetFile) {
    const QStringList import{"import-jet", "--output=new.mdb", "old.mdb"};
    Write("old.mdb", "no Jet file");
    EXPECT_EQ(Run(import, "/nowhere").Status, 1);
    if (QStandardPaths::findExecutable("mdb-export").isEmpty())
        GTEST_SKIP() << "mdbtools is not installed";
    EXPECT_EQ(Run(import).Status, 1);

    // Made by hand: two names, a maker, 202 IDs with a key and a memo; one entry names what is not there.
    constexpr qsizetype pageSize = 4096;
    QProcess xz;
    xz.setStandardOutputFile(Path("old.mdb"));
    xz.start("xz", {"-dc", QUORVANE_TEST_FOLDER "/old.mdb.xz"});
    ASSERT_TRUE(xz.waitForFinished() && xz.exitCode() == 0);
    // What others have set for mdbtools does not reach it.
    qputenv("MDBICONV", "latin1");
    const Result result = Run(import);
    qunsetenv("MDBICONV");
    EXPECT_EQ(result.Status, 0) << result.Errors;
    EXPECT_THAT(result.Errors, HasSubstr("1 entries left out"));
    EXPECT_THAT(result.Output, HasSubstr("202 hardware IDs"));
    const std::vector<std::string> lines = Export("new.mdb");
    EXPECT_EQ(lines.size(), 204U);
    for (const char* line : {"version|||3.2.1", R"(PCI\VEN_1|||A "quoted", name|||Maker)",
                             "PCI\\VEN_1|||Eight \u2122|||Maker", "USB\\x|||Eight \u2122|||Maker"})
        EXPECT_THAT(lines, Contains(line));

    // A file that was cut off is not taken for a smaller one.
    ASSERT_TRUE(QFile::remove(Path("new.mdb")));
    ASSERT_TRUE(QFile::resize(Path("old.mdb"), QFile(Path("old.mdb")).size() - pageSize));
    const Result cut = Run(import);
    EXPECT_EQ(cut.Status, 1);
    EXPECT_THAT(cut.Errors, HasSubstr("table hwids"));
    EXPECT_THAT(Files(), testing::Not(Contains("new.mdb")));
}
