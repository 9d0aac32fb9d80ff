#include "updating/download.h"

#include "base/clock.h"
#include "base/yield.h"
#include "net/wininet.h"
#include "support/scripted_server.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>
#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

namespace {

using support::Answer;
using support::Promise;
using support::Reply;
using support::ScriptedServer;
using testing::ElementsAre;
using updating::DownLoadControl;

class DownloadTest : public testing::Test {
  protected:
    DownloadTest() {
        control_.SetURL(server_.Url("/hwids.7z"));
        control_.SetSaveLocation(target_);
        const auto tell = [this](const std::string& text) { events_.push_back(text); };
        using D = DownLoadControl;
        QObject::connect(&control_, &D::DLComplete, [tell] { tell("complete"); });
        QObject::connect(&control_, &D::DLError, [tell](const QString& t) { tell("error " + t.toStdString()); });
        QObject::connect(&control_, &D::DLECode, [tell](qint32 code) { tell("code " + std::to_string(code)); });
        QObject::connect(&control_, &D::RecievedBytes, [tell](qint32 n) { tell("bytes " + std::to_string(n)); });
        QObject::connect(&control_, &D::Percent, [tell](qint32 n) { tell("percent " + std::to_string(n)); });
        QObject::connect(&control_, &D::StatusChange, [tell](const QString& t) { tell("status " + t.toStdString()); });
        QObject::connect(&control_, &D::Rate, [tell](const QString& t) { tell("rate " + t.toStdString()); });
        QObject::connect(&control_, &D::TimeLeft, [tell](const QString& t) { tell("time " + t.toStdString()); });
        QObject::connect(&control_, &D::ConnectionState,
                         [tell](const QString& t) { tell("state " + t.toStdString()); });
        // A clock that stands still shows one second at every report: rates and times are exact.
        base::SetClock([this] { return now_; });
    }
    ~DownloadTest() override {
        base::SetClock(nullptr);
        net::SetConnectionSource(nullptr);
    }

    void Get(const Answer& answer) {
        server_.SetAnswer("/hwids.7z", answer);
        events_.clear();
        control_.GetFileInformation();
    }

    void GetAndDownLoad(const Answer& answer) {
        Get(answer);
        events_.clear();
        control_.DownLoad();
    }

    QByteArray Saved() const {
        QFile file(folder_.filePath("hwids.7z"));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("missing");
    }

    std::string Opening() const { return "status Opening " + target_.toStdString() + "..."; }
    std::string ErrorFrom() const { return "error Error Downloading File from : " + control_.URL().toStdString(); }

    ScriptedServer server_;
    QTemporaryDir folder_;
    const QString target_ = folder_.path() + "\\hwids.7z";
    QDateTime now_{QDate(2024, 5, 6), QTime(12, 0)};
    DownLoadControl control_;
    std::vector<std::string> events_;
};

const std::string initiating = "status Initiating Connection.";
const std::string accepted = "status Connection Accepted, Retrieving File Information.";
const std::string aborted = "status Download Aborted Due To Error In Download!";

TEST_F(DownloadTest, AWholeTransferRaisesItsEventsInOrder) {
    const QByteArray body(1536, 'x');
    Get(Reply(200, body));
    EXPECT_THAT(events_, ElementsAre(initiating, accepted, "status Retrieving File Information Complete!"));
    EXPECT_EQ(control_.FileSize(), 1536);
    EXPECT_TRUE(control_.FileExists());
    EXPECT_FALSE(control_.ResumeSupported());
    events_.clear();
    control_.DownLoad();
    EXPECT_THAT(events_,
                ElementsAre(Opening(), "rate 1.00 KB/s", "time 1 sec", "bytes 1024", "percent 67",
                            "status Recieving File...", "rate 1.50 KB/s", "time 0 sec", "bytes 1536", "percent 100",
                            "status Recieving File...", "rate 1.50 KB/s", "time 0 sec", "bytes 1536", "percent 100",
                            "status Recieving File...", "complete", "status Download Successful!"));
    EXPECT_EQ(Saved(), body);
    EXPECT_FALSE(control_.InDL());
}

TEST_F(DownloadTest, ALastChunkOfOneByteEndsTheLoopAndAnOldTargetIsReplaced) {
    QFile old(folder_.filePath("hwids.7z"));
    ASSERT_TRUE(old.open(QIODevice::WriteOnly));
    old.write(QByteArray(5000, 'o'));
    old.close();
    control_.SetPromptOverwrite(true);
    control_.SetCHUNK(4);
    // One byte at a time on the wire must not look like the end.
    GetAndDownLoad(Promise(500, 9).SendInPieces("012345678", 1, 3));
    EXPECT_EQ(Saved(), "012345678");
    EXPECT_EQ(std::count(events_.begin(), events_.end(), "status Recieving File..."), 3);
    EXPECT_EQ(events_.back(), "status Download Successful!");
}

TEST_F(DownloadTest, RefusedStatusesKeepTheirOrders) {
    Get(Reply(401, "no"));
    EXPECT_THAT(events_, ElementsAre(initiating, accepted, "status Unauthorized Access, Download Terminated!",
                                     "code 401", "error Unauthorized Access!"));
    EXPECT_TRUE(control_.FileExists());
    Get(Reply(403, "no"));
    EXPECT_THAT(events_, ElementsAre(initiating, accepted, "status Access Denied, Download Terminated!", "code 403",
                                     "error Access Denied!"));
    Get(Reply(404, "no"));
    EXPECT_THAT(events_,
                ElementsAre(initiating, accepted, "error File Not Found!", "status File Not Found!", "code 2"));
    EXPECT_FALSE(control_.FileExists());
    EXPECT_EQ(control_.FileSize(), 0);
    EXPECT_TRUE(server_.ClosesAllWithin(2'000)) << "a refused answer is not left open";
}

TEST_F(DownloadTest, HeadersWithoutAUsableLengthFail) {
    control_.I1().SetStallLimit(300);
    for (const Answer& answer :
         {Answer().Send("HTTP/1.1 200 OK\r\n\r\nbody"),
          Answer().Send("HTTP/1.1 200 OK\r\nContent-Length: 4294967296\r\n\r\n"),
          Answer().Send("HTTP/1.1 200 OK\r\nContent-Length: some\r\n\r\n"), Answer(), Answer().Reset(),
          Answer().Stall(), Answer().Send("HTTP/1.1 200 OK\r\nX: ").Stall(), Answer().Send("no http\r\n\r\n")}) {
        Get(answer);
        EXPECT_THAT(events_, ElementsAre(initiating, accepted, "error Error Reading File Headers.",
                                         "status Error Reading File Headers!", "code 3"));
    }
    EXPECT_EQ(Saved(), "missing");
}

TEST_F(DownloadTest, ABrokenTransferIsReportedAndLeavesWhatCame) {
    const std::string first = "status Recieving File...";
    for (const Answer& answer :
         {Promise(200, 3000).Send(QByteArray(2000, 'x')), Promise(200, 3000).Send(QByteArray(2000, 'x')).Reset(),
          Promise(200, 3000).Send(QByteArray(2000, 'x')).Stall()}) {
        control_.I1().SetStallLimit(300);
        GetAndDownLoad(answer);
        EXPECT_THAT(events_, ElementsAre(Opening(), "rate 1.00 KB/s", "time 2 sec", "bytes 1024", "percent 34", first,
                                         ErrorFrom(), aborted, "code 1"));
        EXPECT_EQ(Saved().size(), 1024);
        EXPECT_TRUE(control_.InDL());
    }
    // A zero-length file divides by zero before any figure is told.
    GetAndDownLoad(Reply(200, ""));
    EXPECT_THAT(events_, ElementsAre(Opening(), ErrorFrom(), aborted, "code 1"));
    EXPECT_EQ(Saved(), "");
}

TEST_F(DownloadTest, ATargetThatCannotBeWrittenFails) {
    control_.SetSaveLocation(folder_.path() + "\\none\\hwids.7z");
    GetAndDownLoad(Reply(200, "body"));
    EXPECT_THAT(events_, ElementsAre(ErrorFrom(), aborted, "code 1"));
    EXPECT_FALSE(control_.InDL());
}

TEST_F(DownloadTest, AFullDiskFailsTheTransferAndIsNeverSuccess) {
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const auto old = std::signal(SIGXFSZ, SIG_IGN);
    for (const int size : {4'000, 100'000}) {
        const rlimit limit{2'000, before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
        GetAndDownLoad(Reply(200, QByteArray(size, 'x')));
        setrlimit(RLIMIT_FSIZE, &before);
        EXPECT_EQ(events_.back(), "code 1") << size;
        EXPECT_EQ(std::count(events_.begin(), events_.end(), "complete"), 0) << size;
    }
    std::signal(SIGXFSZ, old);
}

TEST_F(DownloadTest, CancelTakesEffectBeforeTheNextRead) {
    server_.SetAnswer("/hwids.7z", Promise(200, 10'000).Repeat("x", 10'000));
    control_.GetFileInformation();
    const auto cancel = QObject::connect(&control_, &DownLoadControl::RecievedBytes, [this](qint32 total) {
        if (total == 2048) {
            control_.Cancel();
        }
    });
    events_.clear();
    control_.DownLoad();
    EXPECT_THAT(
        std::vector<std::string>(events_.end() - 5, events_.end()),
        ElementsAre("status Cancelling..", "percent 20", "status Recieving File...", "code 4", "status Cancelled."));
    EXPECT_EQ(Saved().size(), 2048);
    EXPECT_TRUE(control_.InDL());
    EXPECT_FALSE(control_.CCancel());
    QObject::disconnect(cancel);
    // Outside a transfer the flag stays until the next request; DownLoad returns silently at it.
    control_.Cancel();
    events_.clear();
    control_.DownLoad();
    control_.DLResume();
    EXPECT_TRUE(events_.empty());
    EXPECT_TRUE(control_.CCancel());
}

TEST_F(DownloadTest, CancelWhileConnectingAndByALaterHandler) {
    QTimer::singleShot(50, &control_, [this] { control_.Cancel(); });
    Get(Answer().Pause(300).Send("HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\nbody"));
    EXPECT_THAT(events_, ElementsAre(initiating, "status Cancelling..", accepted, "code 4", "status cancelled."));
    EXPECT_FALSE(control_.CCancel());
}

TEST_F(DownloadTest, PauseHoldsTheLoopAndACancelWaitsForItsEnd) {
    QTimer::singleShot(200, &control_, [this] { control_.Cancel(); });
    QTimer::singleShot(400, &control_, [this] { control_.Pause(false); });
    control_.Pause(true);
    GetAndDownLoad(Reply(200, QByteArray(5000, 'x')));
    EXPECT_GE(std::count(events_.begin(), events_.end(), "status Paused."), 3);
    EXPECT_EQ(std::count(events_.begin(), events_.end(), "bytes 1024"), 1);
    EXPECT_EQ(std::count(events_.begin(), events_.end(), "bytes 2048"), 0);
    EXPECT_EQ(events_.back(), "status Cancelled.");
}

TEST_F(DownloadTest, TheWindowsEndEndsEveryWait) {
    bool gone = false;
    control_.SetStop([&gone] { return gone; });
    const auto closeSoon = [&] { QTimer::singleShot(100, &control_, [&gone] { gone = true; }); };
    QElapsedTimer timer;
    timer.start();
    closeSoon();
    Get(Answer().Stall());
    EXPECT_EQ(events_.back(), "code 3");
    gone = false;
    Get(Promise(200, 5000).Send("x").Stall());
    closeSoon();
    control_.DownLoad();
    EXPECT_EQ(events_.back(), "code 1");
    gone = false;
    control_.Pause(true);
    Get(Reply(200, QByteArray(5000, 'x')));
    closeSoon();
    control_.DownLoad();
    EXPECT_EQ(events_.back(), "code 1");
    // Cancelled and gone: that is a cancel.
    gone = false;
    control_.Pause(false);
    Get(Promise(200, 5000).Send("x").Stall());
    QTimer::singleShot(100, &control_, [&] {
        control_.Cancel();
        gone = true;
    });
    control_.DownLoad();
    EXPECT_EQ(events_.back(), "status Cancelled.");
    EXPECT_LT(timer.elapsed(), 10'000);
}

TEST_F(DownloadTest, ResumingIsAlwaysRefused) {
    Get(Reply(206, "body", "Accept-Ranges: bytes\r\n"));
    events_.clear();
    control_.DLResume();
    EXPECT_THAT(events_, ElementsAre("error Resume File Not Found!", "code 6",
                                     "status Resume File Not Found, Aborting Download!"));
    control_.DownLoad();
    Get(Reply(206, "body"));
    events_.clear();
    control_.DLResume();
    EXPECT_THAT(events_,
                ElementsAre("error Resume Not Supported!", "code 7", "status Resume NotSupported, Aborting Download!"));
    EXPECT_EQ(server_.Requests().size(), 2);
}

TEST_F(DownloadTest, TheConnectionTestComesFirstWhereItIsAskedFor) {
    control_.SetOnlineCheck(true);
    net::SetConnectionSource([] { return 0U; });
    Get(Reply(200, "body"));
    const auto refused =
        ElementsAre("code 5", "error No Connection Found!", "status Download aborted, no connection present!");
    EXPECT_THAT(events_, refused);
    events_.clear();
    control_.DownLoad();
    EXPECT_THAT(events_, refused);
    EXPECT_TRUE(server_.Requests().isEmpty());
    net::SetConnectionSource([] { return 7U; });
    Get(Reply(200, "body"));
    EXPECT_THAT(std::vector<std::string>(events_.begin(), events_.begin() + 4),
                ElementsAre("state Connected Via Modem.", "state Connected Via LAN.",
                            "state Connected Through A Proxy.", initiating));
    EXPECT_TRUE(control_.Connected());
}

TEST_F(DownloadTest, KeepTypeTakesTheAddressesExtension) {
    control_.SetKeepType(true);
    control_.SetSaveLocation(folder_.path() + "\\hwids.tmp");
    GetAndDownLoad(Reply(200, "body"));
    EXPECT_EQ(Saved(), "body");
    control_.SetSaveLocation(folder_.path() + "\\no_dot_at_all");
    GetAndDownLoad(Reply(200, "body"));
    EXPECT_EQ(events_.back(), "code 1");
}

TEST_F(DownloadTest, AClockThatJumpsHarmsNoTransfer) {
    QObject::connect(&control_, &DownLoadControl::RecievedBytes, [this] { now_ = now_.addSecs(-40'000); });
    GetAndDownLoad(Reply(200, QByteArray(5000, 'x')));
    EXPECT_EQ(Saved().size(), 5000);
    EXPECT_EQ(events_.back(), "status Download Successful!");
}

TEST(DownloadPropertiesTest, PersistUnderTheirKeysWithoutDefaults) {
    DownLoadControl control;
    base::PropertyBag empty;
    control.WriteProperties(empty);
    EXPECT_EQ(empty.Count(), 0);
    EXPECT_EQ(control.CHUNK(), 1024);
    EXPECT_EQ(control.SaveLocation(), "C:\\File1.tmp");
    QStringList changed;
    QObject::connect(&control, &DownLoadControl::PropertyChanged, [&changed](const QString& name) { changed += name; });
    control.SetURL("http://x/");
    control.SetCHUNK(512);
    control.SetKeepType(true);
    control.SetROLLBACK(77);
    EXPECT_EQ(changed, (QStringList{"Url", "CHUNK", "KeepType"}));
    base::PropertyBag bag;
    control.WriteProperties(bag);
    EXPECT_EQ(bag.Count(), 3);
    DownLoadControl other;
    other.ReadProperties(bag);
    EXPECT_EQ(other.URL(), "http://x/");
    EXPECT_EQ(other.CHUNK(), 512);
    EXPECT_TRUE(other.KeepType());
    EXPECT_EQ(other.ROLLBACK(), 0);
    EXPECT_EQ(control.ROLLBACK(), 77);
}

} // namespace
