#include "updating/update_check.h"

#include "support/scripted_server.h"
#include "updating/download_formats.h"
#include "updating/version_compare.h"
#include "values/addresses.h"
#include "values/program_values.h"

#include <QTimer>
#include <gtest/gtest.h>

namespace {

using support::Answer;
using support::Promise;
using support::Reply;
using support::ScriptedServer;

TEST(VersionCompareTest, ComparesThreeFieldsAsPaddedText) {
    struct Case {
        const char* remote;
        const char* local;
        bool current;
    };
    for (const Case& tried : {
             Case{"2.5.0", "2.5.0", true},
             Case{"2.10.0", "2.9.0", false},
             Case{"2.9.0", "2.10.0", true},
             Case{"2.5.1", "2.5.0", false},
             Case{"2.4.9", "2.5.0", true},
             Case{"3.0.0", "2.9.9", false},
             Case{"1.9.9", "2.0.0", true},
             Case{"2.5.0.1", "2.5.0", true},
             Case{"100000.0.0", "99999.0.0", true}, // sorts by its first digit
             Case{"99999.0.0", "100000.0.0", false},
             Case{"2.05.0", "2.5.0", true},
             Case{"1.2.a", "1.2.3", false}, // no number, and a letter sorts above a digit
             // A missing field leads to "current", unless an earlier one has decided.
             Case{"2.5", "2.5.0", true},
             Case{"1", "1.2.3", true},
             Case{"2", "1.2.3", false},
             Case{"2.6", "2.5.0", false},
             Case{"9.9.9", "", true},
             Case{"9.9.9", "1", false},
             Case{"1.9.9", "1", true},
         }) {
        EXPECT_EQ(updating::IsVersionCurrent(QString::fromLatin1(tried.remote), QString::fromLatin1(tried.local)),
                  tried.current)
            << tried.remote << " against " << tried.local;
    }
}

TEST(VersionCompareTest, ReadsTheVersionBehindTheColon) {
    EXPECT_EQ(updating::VersionInCaption("Database Version: 2.5.0 "), "2.5.0");
    EXPECT_EQ(updating::VersionInCaption("Database Version: 2:5"), "2");
    EXPECT_EQ(updating::VersionInCaption("Database Version"), QString());
    EXPECT_EQ(updating::VersionInCaption(QString()), QString());
}

TEST(DownloadFormatsTest, RatesTimesAndSizesWithTheirGaps) {
    EXPECT_EQ(updating::FormatRate(1023), "1023 Bytes/s");
    EXPECT_EQ(updating::FormatRate(0.4), "0 Bytes/s");
    EXPECT_EQ(updating::FormatRate(1024), "1.00 KB/s");
    EXPECT_EQ(updating::FormatRate(1048576), "1024.00 KB/s");
    EXPECT_EQ(updating::FormatRate(1048577), "1.00 MB/s");
    EXPECT_EQ(updating::FormatRate(1023.5), "0.00 MB/s");
    EXPECT_EQ(updating::FormatRate(-3145728), "-3.00 MB/s");
    EXPECT_EQ(updating::FormatTimeLeft(0), "0 sec");
    EXPECT_EQ(updating::FormatTimeLeft(59), "59 sec");
    EXPECT_EQ(updating::FormatTimeLeft(60), "1 min 0 sec");
    EXPECT_EQ(updating::FormatTimeLeft(150.5F), "2 min 30 sec");
    EXPECT_EQ(updating::FormatTimeLeft(3599), "59 min 59 sec");
    EXPECT_EQ(updating::FormatTimeLeft(3600), "1 hr 0 min");
    EXPECT_EQ(updating::FormatTimeLeft(5400), "1 hr 30 min");
    EXPECT_EQ(updating::FormatTimeLeft(59.5F), "0 hr 1 min");
    EXPECT_EQ(updating::FormatTransferSize(1023), "1023");
    EXPECT_EQ(updating::FormatTransferSize(1024), "1.00 KB");
    EXPECT_EQ(updating::FormatTransferSize(1048576), "1024.00 KB");
    EXPECT_EQ(updating::FormatTransferSize(1048577), "1.00 MB");
}

class UpdateCheckTest : public testing::Test {
  protected:
    UpdateCheckTest() : addresses_(values::ServerAddresses()), program_(values::Program()) {
        values::ServerAddresses().UpdateHost = server_.Url();
        values::Program().ProgramVersion = "2.5.0";
        view_.SetOnlineVersion = [this](const QString& text) { told_ += text + QChar(u'|'); };
        view_.SetAvailable = [this](const QString& text, int colour) {
            told_ += text + QStringLiteral("#%1|").arg(colour);
        };
        view_.EnableButton = [this](bool on) { told_ += on ? "on" : "off"; };
    }
    ~UpdateCheckTest() override {
        values::ServerAddresses() = addresses_;
        values::Program() = program_;
    }

    QString Program(const Answer& answer) {
        told_.clear();
        server_.SetAnswer("/files/updates/quorvane/update.htm", answer);
        updating::CheckForUpdate(inet_, view_);
        return told_;
    }

    QString Database(const Answer& answer) {
        told_.clear();
        server_.SetAnswer("/files/updates/quorvane/database_v1.htm", answer);
        updating::CheckForDatabaseUpdate(inet_, "Database Version: 2.5.0", view_);
        return told_;
    }

    QString Silent(const Answer& answer) {
        told_.clear();
        server_.SetAnswer("/files/updates/quorvane/database_v1.htm", answer);
        updating::CheckForDatabaseUpdateSilent(inet_, "Database Version: 2.5.0",
                                               [this](bool visible) { told_ += visible ? "shown" : "hidden"; });
        return told_;
    }

    const values::Addresses addresses_;
    const values::ProgramValues program_;
    ScriptedServer server_;
    net::Inet inet_;
    updating::CheckView view_;
    QString told_;
};

constexpr char16_t checking[] = u"Online Version: Checking...|";
constexpr char16_t failed[] = u"Online Version: Checking...|Online Version: Error|";

TEST_F(UpdateCheckTest, TheProgramCheckShowsWhatTheServerSays) {
    values::Program().ProgramIsCurrent = false;
    EXPECT_EQ(Program(Reply(200, "2.5.0")),
              QString::fromUtf16(checking) + "Online Version: 2.5.0|Update Available: NO#1|off");
    EXPECT_TRUE(values::Program().ProgramIsCurrent);
    EXPECT_EQ(Program(Reply(404, "2.10.0")),
              QString::fromUtf16(checking) + "Online Version: 2.10.0|Update Available: YES#12|on");
    EXPECT_FALSE(values::Program().ProgramIsCurrent);
}

TEST_F(UpdateCheckTest, LengthAloneTellsAVersionFromAnErrorPage) {
    EXPECT_TRUE(Program(Reply(200, "2.5.01234")).contains("Online Version: 2.5.01234"));
    EXPECT_EQ(Program(Reply(200, "2.5.012345")), QString::fromUtf16(failed));
    EXPECT_TRUE(Database(Reply(200, "2.5.0123456789")).contains("Online Version: 2.5.0123456789"));
    EXPECT_EQ(Database(Reply(200, "2.5.01234567890")), QString::fromUtf16(failed));
}

TEST_F(UpdateCheckTest, BadAnswersLeaveTheStateAsItWas) {
    values::Program().DatabaseIsCurrent = false;
    values::Program().ProgramIsCurrent = false;
    for (const Answer& bad : {Reply(200, ""), Reply(200, "<html>Not Found</html>"), Reply(200, QByteArray(10'000, '9')),
                              Answer(), Answer().Reset(), Promise(200, 5).Send("9.9"),
                              Answer().Send("HTTP/1.1 200 OK\r\n"), Reply(302, "moved elsewhere", "Location: /x\r\n"),
                              Reply(200, "\x1f\x8b\x08gzipped bytes", "Content-Encoding: gzip\r\n")}) {
        EXPECT_EQ(Program(bad), QString::fromUtf16(failed));
        EXPECT_EQ(Database(bad), QString::fromUtf16(failed));
        EXPECT_EQ(Silent(bad), QString());
    }
    EXPECT_FALSE(values::Program().DatabaseIsCurrent);
    EXPECT_FALSE(values::Program().ProgramIsCurrent);
}

TEST_F(UpdateCheckTest, TheSilentCheckSetsOneFlagAndOneLabel) {
    EXPECT_EQ(Silent(Reply(200, "2.5.1")), "shown");
    EXPECT_FALSE(values::Program().DatabaseIsCurrent);
    EXPECT_EQ(Silent(Reply(200, "2.5.0")), "hidden");
    EXPECT_TRUE(values::Program().DatabaseIsCurrent);
    EXPECT_EQ(Database(Reply(200, "2.5.1")),
              QString::fromUtf16(checking) + "Online Version: 2.5.1|Update Available: YES#12|on");
    EXPECT_FALSE(values::Program().DatabaseIsCurrent);
}

TEST_F(UpdateCheckTest, ASlowAnswerKeepsTheEventsFlowingAndEndsWithTheWindow) {
    bool gone = false;
    int beats = 0;
    QTimer beat;
    QObject::connect(&beat, &QTimer::timeout, [&] { gone = ++beats == 20; });
    beat.start(10);
    inet_.SetStop([&gone] { return gone; });
    EXPECT_EQ(Program(Promise(200, 9).SendInPieces("2.5.01234", 1, 1'000)), QString::fromUtf16(failed));
    EXPECT_GE(beats, 20);
    EXPECT_LT(beats, 100);
}

} // namespace
