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
        EXPECT_FALSE(process.Last("started").isNull()) << process.Text().toStdString();
        EXPECT_FALSE(process.Text().contains("locked")) << process.Text().toStdString();
    }

    // Nothing half-written lies about.
    void ExpectNoRemains() {
        EXPECT_EQ(
            QDir(Folder()).entryList({".unpacking*", "*-journal", "*.ini.*", "*.new"}, QDir::AllEntries | QDir::Hidden),
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
        auto process = StartOnSmallDisk(4000, FilledBut(free), {"add", "400", "tag"});
        ExpectGoodEnd(*process);
        EXPECT_EQ(CheckedVersion(), "1.0.0");

        process = StartOnSmallDisk(4000, FilledBut(free), {"settings", "20"});
        ExpectGoodEnd(*process);
        EXPECT_TRUE(SettingsAreWhole(Path("settings.ini")));
        EXPECT_TRUE(SettingsAreWhole(Path("color_presets/x.ini")));

        RestoreTheOldDatabase();
        const auto before = server_.Requests().size();
        process = StartOnSmallDisk(4000, FilledBut(free), {"submit"});
        ExpectGoodEnd(*process);
        EXPECT_EQ(CheckedVersion(), "1.0.0");
        ExpectNoRemains();
        ExpectEveryRowSent(before);

        process = StartOnSmallDisk(4000, FilledBut(free), {"update"});
        ExpectGoodEnd(*process);
        if (CheckedVersion() == "2.0.0") {
            ExpectTheNewDatabase();
            RestoreTheOldDatabase();
        } else {
            EXPECT_TRUE(process->Text().contains("box Failed to") || process->Text().contains("failed"))
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
    ExpectGoodEnd(*StartOnSmallDisk(0, "true", {"update"}));
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
        const auto process = StartOnSmallDisk(4000, filling, {"update"});
        ExpectGoodEnd(*process);
        if (CheckedVersion() == "1.0.0") {
            ++kept;
            EXPECT_TRUE(process->Text().contains("box Failed to decompress")) << process->Text().toStdString();
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
    const QString readOnly = "mount -o remount,ro none .";
    for (const QStringList& job : {QStringList{"scan", "2"}, QStringList{"add", "20"}, QStringList{"submit"},
                                   QStringList{"update"}, QStringList{"settings", "5"}}) {
        SCOPED_TRACE(job.first().toStdString());
        const auto process = StartOnSmallDisk(4000, readOnly, job);
        ExpectGoodEnd(*process);
        EXPECT_EQ(Content(Path("hwids.mdb")), oldDatabase_);
        EXPECT_FALSE(QFile::exists(Path("settings.ini")));
        EXPECT_FALSE(QFile::exists(Path("new_hardware.txt")));
        ExpectNoRemains();
    }
}

// Without memory for its own data or its stack, which cannot grow then, a process ends by a signal; it must not take
// the files with it.
TEST_F(ShortageTest, FewFileDescriptorsOrLittleMemory) {
    if (qstrlen(QUORVANE_SANITIZE) != 0)
        GTEST_SKIP() << "skipped: the sanitizers need the address space, and a pipe that tells what can be read";
    struct Shortage {
        const char* Limit;
        int Step; // in the short form
        int Steps;
        bool Lives;
    };
    for (const Shortage& few :
         {Shortage{"QUORVANE_TEST_FILES=", 4, 40, true}, Shortage{"QUORVANE_TEST_MEMORY=", 32, 64, false}}) {
        int survived = 0;
        int ended = 0;
        for (int step = 0; step < support::Rounds(2, few.Steps); ++step) {
            const QString limit = few.Limit + QString::number(step * support::Rounds(few.Step, 1));
            for (const QStringList& job :
                 {QStringList{"scan", "2"}, QStringList{"add", "10", limit}, QStringList{"submit"},
                  QStringList{"update"}, QStringList{"settings", "5"}}) {
                SCOPED_TRACE((limit + ' ' + job.first()).toStdString());
                const auto process = Start(job, {limit});
                EXPECT_TRUE(process->Ends()) << process->Text().toStdString();
                (process->Status() == 0 ? survived : ended) += 1;
                if (few.Lives)
                    ExpectGoodEnd(*process);
                if (CheckedVersion() == "2.0.0") {
                    ExpectTheNewDatabase();
                    RestoreTheOldDatabase();
                }
                EXPECT_TRUE(SettingsAreWhole(Path("settings.ini")));
                if (few.Lives)
                    ExpectNoRemains();
            }
        }
        EXPECT_GT(survived, 0);
        RecordProperty(few.Lives ? "ended for want of files" : "ended for want of memory", ended);
        ExpectThatTheProgramStarts();
    }
}
