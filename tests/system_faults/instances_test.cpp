// Two instances on one database.
#include "faults_fixture.h"

#include <atomic>
#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

class InstancesTest : public SystemFaults {
  protected:
    static constexpr int additions = 40;

    static void ExpectNothingShown(const AtWork& process) {
        EXPECT_FALSE(process.Text().contains("locked")) << process.Text().toStdString();
        EXPECT_FALSE(process.Text().contains("box")) << process.Text().toStdString();
        EXPECT_FALSE(process.Text().contains("fatal")) << process.Text().toStdString();
    }

    static void ExpectGoodEnd(AtWork& process) {
        EXPECT_TRUE(process.Ends()) << process.Text().toStdString();
        EXPECT_EQ(process.Status(), 0) << process.Text().toStdString();
        ExpectNothingShown(process);
    }

    QStringList Adding(const char* tag, int count = additions) const {
        return {"add", QString::number(count), QLatin1String(tag)};
    }
};

TEST_F(InstancesTest, BothScanAndBothAdd) {
    for (int round = 0; round < support::Rounds(1, 20); ++round) {
        RestoreTheOldDatabase();
        const QByteArray one = "one" + QByteArray::number(round);
        const QByteArray two = "two" + QByteArray::number(round);
        const auto first = Start(Adding(one));
        const auto second = Start(Adding(two));
        const auto before = server_.Requests().size();
        const auto third = Start({"submit"});
        const auto fourth = Start({"submit"});
        for (const auto& process : {&first, &second, &third, &fourth})
            ExpectGoodEnd(**process);
        QStringList offered = {third->Last("offered"), fourth->Last("offered")};
        QStringList sent;
        for (const QByteArray& request : server_.Requests().mid(before))
            sent.append(QString::number(request.count("|||") / 2));
        offered.removeAll("0");
        offered.sort();
        sent.sort();
        EXPECT_EQ(sent, offered) << "each the lines of its own rows";
        ExpectEveryRowSent(before);
        EXPECT_EQ(Additions(QLatin1String(one), additions).size(), additions);
        EXPECT_EQ(Additions(QLatin1String(two), additions).size(), additions);
        EXPECT_EQ(CheckedVersion(), "1.0.0");
    }
}

namespace {

// Looks on while a file is replaced: whether anything is written to the old one from then on, which nobody would ever
// read.
class OldFile {
  public:
    explicit OldFile(const QString& path) : path_(QFile::encodeName(path)), file_(::open(path_, O_RDONLY | O_CLOEXEC)) {
        watch_ = std::thread([this] {
            struct stat now {};
            while (!ended_) {
                if (::stat(path_, &now) == 0 && now.st_ino != Status().st_ino) {
                    replaced_ = true;
                    atReplacement_ = Status();
                    return;
                }
                ::usleep(200);
            }
        });
    }
    ~OldFile() {
        StopLooking();
        ::close(file_);
    }
    OldFile(const OldFile&) = delete;
    OldFile& operator=(const OldFile&) = delete;

    void ExpectReplacedAndUntouched() {
        StopLooking();
        EXPECT_TRUE(replaced_);
        const struct stat now = Status();
        EXPECT_EQ(now.st_nlink, 0U);
        EXPECT_EQ(now.st_size, atReplacement_.st_size);
        EXPECT_EQ(now.st_mtim.tv_sec, atReplacement_.st_mtim.tv_sec);
        EXPECT_EQ(now.st_mtim.tv_nsec, atReplacement_.st_mtim.tv_nsec);
    }

  private:
    void StopLooking() {
        ended_ = true;
        if (watch_.joinable())
            watch_.join();
    }

    struct stat Status() const {
        struct stat status {};
        ::fstat(file_, &status);
        return status;
    }

    const QByteArray path_;
    const int file_;
    struct stat atReplacement_ {};
    bool replaced_ = false;
    std::atomic<bool> ended_ = false;
    std::thread watch_;
};

} // namespace

// What was added to the old file is replaced with it; what is added from then on is there.
TEST_F(InstancesTest, OneUpdatesWhileTheOtherAdds) {
    for (int round = 0; round < support::Rounds(1, 20); ++round) {
        const QString database = Path("hwids.mdb");
        RestoreTheOldDatabase();
        OldFile old(database);
        const auto adding = Start(Adding("busy", 1'000'000));
        EXPECT_TRUE(adding->Reaches("added"));
        const auto updating = Start({"update"});
        ExpectGoodEnd(*updating);
        EXPECT_EQ(updating->Last("updated"), "2.0.0") << updating->Text().toStdString();
        adding->Poll();
        const int before = adding->Last("added").toInt();
        EXPECT_TRUE(adding->Reaches(QStringLiteral("added %1").arg(before + 20)));
        adding->Signal(SIGTERM);
        ExpectGoodEnd(*adding);
        const int last = adding->Last("added").toInt();
        old.ExpectReplacedAndUntouched();
        ExpectTheNewDatabase();
        const QList<int> found = Additions("busy", last + 1);
        for (int i = before + 1; i <= last; ++i)
            EXPECT_TRUE(found.contains(i)) << i;
    }
}
