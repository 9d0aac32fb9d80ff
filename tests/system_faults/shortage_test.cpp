// Too little of something: space on the disk, the right to write, file descriptors, memory. The job then does what it
// can, the program ends in good order, and no file is damaged.
#include "base/profile_file.h"
#include "faults_fixture.h"

#include <QDir>

class ShortageTest : public SystemFaults {
  protected:
    // Fills the disk but for so many kibibytes.
    static QString FilledBut(int kilobytes) {
        return QStringLiteral(
                   "head -c %1k /dev/zero >reserve; cat /dev/zero >filler 2>/dev/null || true; rm -f reserve")
            .arg(kilobytes);
    }

    void ExpectGoodEnd(AtWork& process) {
        EXPECT_TRUE(process.Ends()) << process.Text().toStdString();
        EXPECT_EQ(process.Status(), 0) << process.Text().toStdString();
        EXPECT_FALSE(process.Last(QStringLiteral("started")).isNull()) << process.Text().toStdString();
        EXPECT_FALSE(process.Text().contains(QStringLiteral("locked"))) << process.Text().toStdString();
    }

    // Nothing half-written lies about.
    void ExpectNoRemains() {
        EXPECT_EQ(QDir(Folder()).entryList({QStringLiteral(".unpacking*"), QStringLiteral("*-journal"),
                                            QStringLiteral("*.ini.*"), QStringLiteral("*.new")},
                                           QDir::AllEntries | QDir::Hidden),
                  QStringList());
    }

    bool SettingsAreWhole(const QString& file) const {
        const QByteArray bytes = Content(file);
        return bytes.isEmpty() || bytes.startsWith("\xFF\xFE");
    }
};

TEST_F(ShortageTest, AFullDisk) {
    if (!MayMount())
        GTEST_SKIP() << "skipped: this user may not mount file systems";
    const int steps = support::Rounds(2, 60);
    for (int step = 0; step < steps; ++step) {
        SCOPED_TRACE(step);
        // From nothing at all to enough for most.
        const int free = step * 600 / steps;
        auto process = StartOnSmallDisk(4000, FilledBut(free),
                                        {QStringLiteral("add"), QStringLiteral("400"), QStringLiteral("tag")});
        ExpectGoodEnd(*process);
        EXPECT_EQ(CheckedVersion(), QStringLiteral("1.0.0"));

        process = StartOnSmallDisk(4000, FilledBut(free), {QStringLiteral("settings"), QStringLiteral("20")});
        ExpectGoodEnd(*process);
        EXPECT_TRUE(SettingsAreWhole(Path(QStringLiteral("settings.ini"))));
        EXPECT_TRUE(SettingsAreWhole(Path(QStringLiteral("color_presets/x.ini"))));

        RestoreTheOldDatabase();
        const auto before = server_.Requests().size();
        process = StartOnSmallDisk(4000, FilledBut(free), {QStringLiteral("submit")});
        ExpectGoodEnd(*process);
        EXPECT_EQ(CheckedVersion(), QStringLiteral("1.0.0"));
        ExpectNoRemains();
        ExpectEveryRowSent(before);

        process = StartOnSmallDisk(4000, FilledBut(free), {QStringLiteral("update")});
        ExpectGoodEnd(*process);
        if (CheckedVersion() == QStringLiteral("2.0.0")) {
            ExpectTheNewDatabase();
            RestoreTheOldDatabase();
        } else {
            EXPECT_TRUE(process->Text().contains(QStringLiteral("box Failed to")) ||
                        process->Text().contains(QStringLiteral("failed")))
                << process->Text().toStdString();
        }
        ExpectNoRemains();
    }
    ExpectThatTheProgramStarts();
}

// A file system without a limit says that it has no blocks, as others do that cannot tell: no reason to refuse an
// update.
TEST_F(ShortageTest, ADiskThatTellsNoFreeSpace) {
    if (!MayMount())
        GTEST_SKIP() << "skipped: this user may not mount file systems";
    ExpectGoodEnd(*StartOnSmallDisk(0, QStringLiteral("true"), {QStringLiteral("update")}));
    ExpectTheNewDatabase();
    RestoreTheOldDatabase();
}

// There is room when the unpacking begins, and none before it is done.
TEST_F(ShortageTest, ADiskThatFillsWhileItUnpacks) {
    if (!MayMount())
        GTEST_SKIP() << "skipped: this user may not mount file systems";
    int kept = 0;
    for (int round = 0; round < support::Rounds(2, 40); ++round) {
        const QString filling =
            QStringLiteral("(while ! [ -e .unpacking-* ]; do :; done; sleep 0.00%1; exec cat /dev/zero >filler) "
                           "2>/dev/null & true")
                .arg(round % 10);
        const auto process = StartOnSmallDisk(4000, filling, {QStringLiteral("update")});
        ExpectGoodEnd(*process);
        if (CheckedVersion() == QStringLiteral("1.0.0")) {
            ++kept;
            EXPECT_TRUE(process->Text().contains(QStringLiteral("box Failed to decompress")))
                << process->Text().toStdString();
        } else {
            ExpectTheNewDatabase();
            RestoreTheOldDatabase();
        }
        ExpectNoRemains();
    }
    RecordProperty("failed", kept);
}

TEST_F(ShortageTest, NothingCanBeWritten) {
    if (!MayMount())
        GTEST_SKIP() << "skipped: this user may not mount file systems";
    const QString readOnly = QStringLiteral("mount -o remount,ro none .");
    for (const QStringList& job :
         {QStringList{QStringLiteral("scan"), QStringLiteral("2")},
          QStringList{QStringLiteral("add"), QStringLiteral("20")}, QStringList{QStringLiteral("submit")},
          QStringList{QStringLiteral("update")}, QStringList{QStringLiteral("settings"), QStringLiteral("5")}}) {
        SCOPED_TRACE(job.first().toStdString());
        const auto process = StartOnSmallDisk(4000, readOnly, job);
        ExpectGoodEnd(*process);
        EXPECT_EQ(Content(Path(QStringLiteral("hwids.mdb"))), oldDatabase_);
        EXPECT_FALSE(QFile::exists(Path(QStringLiteral("settings.ini"))));
        EXPECT_FALSE(QFile::exists(Path(QStringLiteral("new_hardware.txt"))));
        ExpectNoRemains();
    }
}

TEST_F(ShortageTest, FewFileDescriptors) {
    if (qstrlen(QUORVANE_SANITIZE) != 0)
        GTEST_SKIP()
            << "skipped: the sanitizers ask through a pipe whether memory can be read, and take no for a fault";
    for (int round = 0; round < support::Rounds(2, 40); ++round) {
        const int files = round * support::Rounds(4, 1);
        const QString limit = QStringLiteral("QUORVANE_TEST_FILES=%1").arg(files);
        SCOPED_TRACE(limit.toStdString());
        const QString tag = QStringLiteral("tag%1").arg(round);
        for (const QStringList& job :
             {QStringList{QStringLiteral("scan"), QStringLiteral("2")},
              QStringList{QStringLiteral("add"), QStringLiteral("10"), tag}, QStringList{QStringLiteral("submit")},
              QStringList{QStringLiteral("update")}, QStringList{QStringLiteral("settings"), QStringLiteral("5")}}) {
            SCOPED_TRACE(job.first().toStdString());
            const auto process = Start(job, {limit});
            ExpectGoodEnd(*process);
            const QString version = CheckedVersion();
            if (version == QStringLiteral("2.0.0")) {
                ExpectTheNewDatabase();
                RestoreTheOldDatabase();
            }
            EXPECT_TRUE(SettingsAreWhole(Path(QStringLiteral("settings.ini"))));
            ExpectNoRemains();
        }
    }
    ExpectThatTheProgramStarts();
}

// Without memory for its own data or its stack, which cannot grow then, a process ends by a signal; it must not take
// the files with it.
TEST_F(ShortageTest, LittleMemory) {
    if (qstrlen(QUORVANE_SANITIZE) != 0)
        GTEST_SKIP() << "skipped: the sanitizers need the address space";
    int survived = 0;
    int ended = 0;
    const int steps = support::Rounds(2, 64);
    for (int step = 0; step < steps; ++step) {
        const QString limit = QStringLiteral("QUORVANE_TEST_MEMORY=%1").arg(step * 64 / steps);
        SCOPED_TRACE(limit.toStdString());
        const QString tag = QStringLiteral("tag%1").arg(step);
        for (const QStringList& job :
             {QStringList{QStringLiteral("scan"), QStringLiteral("2")},
              QStringList{QStringLiteral("add"), QStringLiteral("10"), tag}, QStringList{QStringLiteral("update")},
              QStringList{QStringLiteral("settings"), QStringLiteral("5")}}) {
            SCOPED_TRACE(job.first().toStdString());
            const auto process = Start(job, {limit});
            EXPECT_TRUE(process->Ends()) << process->Text().toStdString();
            (process->Status() == 0 ? survived : ended) += 1;
            const QString version = CheckedVersion();
            if (version == QStringLiteral("2.0.0")) {
                ExpectTheNewDatabase();
                RestoreTheOldDatabase();
            }
            EXPECT_TRUE(SettingsAreWhole(Path(QStringLiteral("settings.ini"))));
        }
    }
    EXPECT_GT(survived, 0);
    RecordProperty("survived", survived);
    RecordProperty("ended", ended);
    ExpectThatTheProgramStarts();
}
