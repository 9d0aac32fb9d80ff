// Asked to end, or losing the terminal, in the middle of each long job: the program ends by itself, soon, with status
// 0, and leaves everything whole.
#include "faults_fixture.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QElapsedTimer>
#include <QThread>
#include <algorithm>
#include <csignal>

namespace {

// Milliseconds.
int LongestEnding() { return support::Rounds(20'000, 120'000); }

struct Job {
    const char* name;
    QStringList order;
    const char* begins; // the line from which on it is under way
    int milliseconds;   // it takes about so long
};

const Job jobs[] = {
    {"start", {"start"}, "", 300},
    {"scan", {"scan", "1000"}, "scanned", 200},
    {"add", {"add", "1000"}, "added", 300},
    {"submit", {"submit"}, "started", 500},
    {"update", {"update"}, "downloading", 700},
    {"settings", {"settings", "100000"}, "saved", 100},
};

} // namespace

class EndingTest : public SystemFaults {
  protected:
    bool ServerIsAskedFor(const QByteArray& path) const {
        const QDeadlineTimer deadline(AtWork::Patience());
        const auto isForPath = [&path](const QByteArray& request) { return request.contains(path + " HTTP"); };
        while (!deadline.hasExpired()) {
            const QList<QByteArray> requests = server_.Requests();
            if (std::any_of(requests.begin(), requests.end(), isForPath))
                return true;
            QThread::msleep(10);
        }
        return false;
    }
};

TEST_F(EndingTest, AskedToEndInEachLongJob) {
    for (int round = 0; round < support::Rounds(2, 40); ++round) {
        for (const Job& job : jobs) {
            SCOPED_TRACE(job.name);
            const int signal = round % 2 == 0 ? SIGTERM : SIGHUP;
            RestoreTheOldDatabase();
            const auto process = Start(job.order);
            ASSERT_TRUE(*job.begins == 0 || process->Reaches(QLatin1String(job.begins)));
            QThread::usleep(random_() % (unsigned(job.milliseconds) * 1000U));
            QElapsedTimer clock;
            clock.start();
            process->Signal(signal);
            EXPECT_TRUE(process->Ends(LongestEnding())) << process->Text().toStdString();
            // Before the program can listen and after it has done everything the signal ends it in the system's own
            // way.
            const bool early = *job.begins == 0 && process->Last("started").isNull();
            const bool late = process->Lines().contains("end");
            EXPECT_TRUE(process->Status() == 0 || ((early || late) && process->Status() == 128 + signal))
                << process->Status() << '\n'
                << process->Text().toStdString();
            EXPECT_EQ(process->Text().count("box"), 0) << process->Text().toStdString();
            const QString version = CheckedVersion();
            EXPECT_TRUE(version == "1.0.0" || version == "2.0.0");
            if (qstrcmp(job.name, "add") == 0) {
                const int added = process->Last("added").toInt() + 1;
                EXPECT_GE(Additions("x", 1000).size(), added);
            }
            EXPECT_EQ(
                QDir(Folder()).entryList({".unpacking*", "*-journal", "*.ini.*"}, QDir::AllEntries | QDir::Hidden),
                QStringList());
        }
        ExpectThatTheProgramStarts();
    }
}

// The transfer stands still, so the program is in the middle of it for certain. A submission runs to its end, so it is
// the limit of the upload that ends the wait.
TEST_F(EndingTest, AskedToEndWhileTheServerStalls) {
    const QByteArray archive = "/files/updates/quorvane/hwids.7z";
    const QByteArray upload = "/files/hardware_ids/upload_hardware_id_v1.php";
    server_.SetAnswer(archive, support::Promise(200, 1'000'000).Send("x").Stall());
    server_.SetAnswer(upload, support::Answer().Stall());
    for (const char* job : {"update", "submit"}) {
        const auto process = Start({job}, {"QUORVANE_TEST_SEND=3000"});
        ASSERT_TRUE(ServerIsAskedFor(*job == 'u' ? archive : upload));
        process->Signal(SIGTERM);
        EXPECT_TRUE(process->Ends(LongestEnding())) << process->Text().toStdString();
        EXPECT_EQ(process->Status(), 0) << process->Text().toStdString();
        EXPECT_EQ(CheckedVersion(), "1.0.0");
    }
}

TEST_F(EndingTest, AJumpingClockChangesNothing) {
    if (qstrlen(QUORVANE_SANITIZE) != 0)
        GTEST_SKIP() << "skipped: the sanitizers' own libraries want to be loaded first";
    const QString clock = QStringLiteral("LD_PRELOAD=" JUMPING_CLOCK);
    for (const Job& job : jobs) {
        SCOPED_TRACE(job.name);
        QStringList order = job.order;
        if (order.size() > 1)
            order[1] = "60";
        const auto process = Start(order, {clock});
        EXPECT_TRUE(process->Ends());
        EXPECT_EQ(process->Status(), 0);
        EXPECT_EQ(process->Text().count("failed"), 0) << process->Text().toStdString();
        if (qstrcmp(job.name, "add") == 0) {
            EXPECT_EQ(Additions("x", 60).size(), 60);
        }
        if (qstrcmp(job.name, "submit") == 0) {
            EXPECT_TRUE(process->Last("submitted").contains("Successful"));
        }
    }
    ExpectTheNewDatabase();
}
