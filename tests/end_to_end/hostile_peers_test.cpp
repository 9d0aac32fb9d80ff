// One repertoire of hostile servers against the three that speak to one: the version check, the download and the
// upload. Whatever the peer does, each of them ends soon, takes little memory and disk, and speaks to nobody else.
#include "contribution/upload_file.h"
#include "net/wininet.h"
#include "support/scripted_server.h"
#include "updating/download.h"
#include "updating/update_check.h"
#include "values/addresses.h"
#include "values/program_values.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <functional>
#include <gtest/gtest.h>

namespace {

using support::Answer;
using support::Promise;
using support::Reply;
using support::ScriptedServer;

constexpr int stallLimit = 300; // milliseconds, in the place of the program's 60 s
constexpr int soon = 5'000;     // milliseconds: the limit, and a busy machine
constexpr qint64 endless = 1LL << 40;
// A sanitizer keeps what was freed.
#ifdef QUORVANE_SANITIZED
constexpr qint64 mostMemory = 400 << 20;
#else
constexpr qint64 mostMemory = 24 << 20;
#endif
const QByteArray good = "9.9.9";

// What becomes of the three: the check shows this online version (nothing: an error), the download completes, the
// upload counts as done.
struct Peer {
    const char* Name;
    Answer Says;
    QByteArray Version;
    bool Downloaded;
    bool Uploaded;
};

// An answer whose steps come with `gap` milliseconds between them, over and over.
Answer Trickle(const QByteArray& before, const QByteArray& piece, int gap) {
    return Answer().Send(before).SendInPieces(piece.repeated(2000), piece.size(), gap);
}

std::vector<Peer> PeersThatStopOrStall() {
    const QByteArray ok = "HTTP/1.1 200 OK\r\n";
    return {
        {"nothing", Answer(), {}, false, false},
        {"reset at once", Answer().Reset(), {}, false, false},
        {"answer before the request", Reply(200, good).WithoutReading(), good, true, true},
        {"no answer", Answer().Stall(), {}, false, false},
        {"an interim answer alone", Answer().Send("HTTP/1.1 100 Continue\r\n\r\n"), {}, false, false},
        {"half a status line", Answer().Send("HTTP/1.1 2").Stall(), {}, false, false},
        {"half a header", Answer().Send(ok + "Content-Le").Stall(), {}, false, true},
        {"headers without their end", Answer().Send(ok + "Content-Length: 5\r\n").Stall(), {}, false, true},
        {"no body", Promise(200, 5).Stall(), {}, false, true},
        {"half a body", Promise(200, 5).Send("9.9").Stall(), {}, false, true},
        {"half a body, cut", Promise(200, 5).Send("9.9"), {}, false, true},
        {"half a body, reset", Promise(200, 5).Send("9.9").Reset(), {}, false, true},
        {"half a chunk",
         Answer().Send(ok + "Transfer-Encoding: chunked\r\nContent-Length: 5\r\n\r\n5\r\n9.9"),
         {},
         false,
         true},
        {"half a gigabyte promised", Promise(200, 500'000'000).Send(good).Stall(), {}, false, true},
    };
}

std::vector<Peer> PeersThatFlood() {
    const QByteArray ok = "HTTP/1.1 200 OK\r\n";
    const QByteArray interim = "HTTP/1.1 100 Continue\r\n\r\n";
    const QByteArray chunked = ok + "Content-Length: 5\r\nTransfer-Encoding: chunked\r\n\r\n";
    return {
        {"a status line without end", Answer().Repeat("HTTP/1.1 200 ", endless), {}, false, false},
        {"headers without end", Answer().Send(ok).Repeat("X-Flood: 0123456789\r\n", endless), {}, false, true},
        {"one header without end", Answer().Send(ok + "X: ").Repeat(QByteArray(4096, 'x'), endless), {}, false, true},
        {"interim answers without end", Answer().Repeat(interim, endless), {}, false, false},
        {"a body without end", Answer().Send(ok + "\r\n").Repeat(QByteArray(4096, 'x'), endless), {}, false, true},
        {"chunks without end beside a length",
         Answer().Send(chunked).Repeat("1000\r\n" + QByteArray(4096, 'x') + "\r\n", endless),
         {},
         false,
         true},
        {"trailers without end",
         Answer().Send(chunked + "5\r\n9.9.9\r\n0\r\n").Repeat("X-Flood: 0123456789\r\n", endless),
         {},
         false,
         true},
        {"more than promised", Promise(200, 5).Send(good).Repeat(QByteArray(4096, 'x'), endless), good, true, true},
        {"a status line that trickles", Trickle({}, "H", 50), {}, false, false},
        {"headers that trickle", Trickle(ok, "a: b\r\n", 50), {}, false, true},
        {"one header that trickles", Trickle(ok + "X: ", "x", 50), {}, false, true},
        {"interim answers that trickle", Trickle({}, interim, 50), {}, false, false},
    };
}

std::vector<Peer> PeersThatLie() {
    const QByteArray ok = "HTTP/1.1 200 OK\r\n";
    const QByteArray page = "<html>some other page</html>";
    const auto with = [&ok](const QByteArray& header) {
        return Answer().Send(ok + header + "Content-Length: 5\r\n\r\n" + good);
    };
    return {
        {"no http", Answer().Send("9.9.9\r\n\r\n"), {}, false, false},
        {"another protocol", Answer().Send("SSH-2.0-x\r\n").Stall(), {}, false, false},
        {"a version to come", Answer().Send("HTTP/9.9 200 OK\r\nContent-Length: 5\r\n\r\n9.9.9"), {}, false, false},
        {"a negative length", Answer().Send(ok + "Content-Length: -5\r\n\r\n9.9.9"), {}, false, true},
        {"a length beyond counting", Answer().Send(ok + "Content-Length: 99999999999999999999\r\n\r\n9.9.9"), good,
         false, true},
        {"a length that is none", Answer().Send(ok + "Content-Length: many\r\n\r\n9.9.9"), {}, false, true},
        {"two lengths", with("Content-Length: 3\r\n"), good, false, true},
        {"an encoding that was not asked for", with("Content-Encoding: gzip\r\n"), good, true, true},
        {"an unknown transfer encoding", with("Transfer-Encoding: nonsense\r\n"), {}, false, true},
        {"a huge chunk",
         Answer().Send(ok + "Content-Length: 5\r\nTransfer-Encoding: chunked\r\n\r\nFFFFFFFFFFFFFFFFF\r\n9.9.9"),
         {},
         false,
         true},
        {"control characters", with("X-\x01: \x1b[2J\x07\r\n"), good, true, true},
        {"line ends of one character", Answer().Send("HTTP/1.1 200 OK\nContent-Length: 5\n\n9.9.9"), good, false, true},
        {"single bytes", Answer().SendInPieces(ok + "Content-Length: 5\r\n\r\n9.9.9", 1, 1), good, true, true},
        {"a page for a version", Reply(200, page), {}, true, true},
        {"failure with a page", Reply(500, page), {}, true, true},
        {"no version at all", Reply(200, "\r\n\r\n\r\n"), "\r\n\r\n\r\n", true, true},
        {"password wanted", Reply(401, page, "WWW-Authenticate: Basic realm=\"x\"\r\n"), {}, false, true},
        {"proxy password wanted", Reply(407, page, "Proxy-Authenticate: NTLM\r\n"), {}, true, true},
    };
}

// Every way to send a client on; `elsewhere` must stay alone.
std::vector<Peer> PeersThatSendElsewhere(const QByteArray& elsewhere) {
    const QByteArray page = "<html>moved for good</html>";
    std::vector<Peer> peers;
    for (const int status : {300, 301, 302, 303, 307, 308})
        peers.push_back({"redirect", Reply(status, page, "Location: " + elsewhere + "/x\r\n"), {}, true, true});
    for (const QByteArray& target :
         {QByteArray("file:///etc/passwd"), QByteArray("FILE:/etc/passwd"), QByteArray("//etc/passwd"),
          "ftp://" + elsewhere.sliced(7), "https://" + elsewhere.sliced(7), "gopher://" + elsewhere.sliced(7) + "/_x",
          QByteArray()})
        peers.push_back({"redirect", Reply(302, page, "Location: " + target + "\r\n"), {}, true, true});
    for (const QByteArray& header :
         {"Refresh: 0; url=" + elsewhere, "Link: <" + elsewhere + "/x>; rel=preload",
          "Alt-Svc: h2=\"" + elsewhere.sliced(7) + "\"", "Content-Location: " + elsewhere, "Location: " + elsewhere})
        peers.push_back({"hint", Reply(200, good, header + "\r\n"), good, true, true});
    peers.push_back({"use a proxy", Reply(305, page, "Location: " + elsewhere + "\r\n"), {}, true, true});
    peers.push_back({"switch protocols",
                     Answer().Send("HTTP/1.1 101 Switch\r\nUpgrade: h2c\r\nConnection: Upgrade\r\n\r\n").Stall(),
                     {},
                     false,
                     false});
    return peers;
}

qint64 PeakMemory() {
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray text = status.readAll();
    const qsizetype at = text.indexOf("VmHWM:");
    return text.sliced(at + 6, text.indexOf("kB", at) - at - 6).trimmed().toLongLong() * 1024;
}

// Sets the peak back to what is held now.
void ForgetPeak() {
    QFile marks(QStringLiteral("/proc/self/clear_refs"));
    if (marks.open(QIODevice::WriteOnly))
        marks.write("5");
}

class HostilePeersTest : public testing::Test {
  protected:
    HostilePeersTest() : addresses_(values::ServerAddresses()), program_(values::Program()) {
        values::ServerAddresses().UpdateHost = server_.Url();
        values::Program().ProgramVersion = QStringLiteral("1.0.0");
        net::SetSendLimits(stallLimit, stallLimit);
        elsewhere_.SetAnswer("*", Reply(200, "followed"));
        QFile file(folder_.filePath(QStringLiteral("new_hardware.txt")));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write("A|||B|||C\r\n") > 0);
    }
    ~HostilePeersTest() override {
        net::SetSendLimits(30'000, 60'000);
        values::ServerAddresses() = addresses_;
        values::Program() = program_;
    }

    QString Check() {
        net::Inet inet;
        inet.SetStallLimit(stallLimit);
        QString shown;
        const updating::CheckView view = {[&shown](const QString& caption) { shown = caption; },
                                          [](const QString&, int) {}, [](bool) {}};
        updating::CheckForUpdate(inet, view);
        return shown;
    }

    bool DownLoad() {
        updating::DownLoadControl control;
        control.I1().SetStallLimit(stallLimit);
        control.SetURL(server_.Url(QStringLiteral("/hwids.7z")));
        control.SetSaveLocation(Target());
        bool complete = false;
        bool failed = false;
        QObject::connect(&control, &updating::DownLoadControl::DLComplete, [&complete] { complete = true; });
        QObject::connect(&control, &updating::DownLoadControl::DLECode, [&failed] { failed = true; });
        control.GetFileInformation();
        if (!failed)
            control.DownLoad();
        EXPECT_NE(complete, failed);
        return complete;
    }

    bool Upload() {
        return contribution::UploadFile(server_.Url(QStringLiteral("/up")),
                                        folder_.filePath(QStringLiteral("new_hardware.txt")));
    }

    // Each job ends soon and within its memory; the connection is closed then.
    void Within(const Peer& peer, const char* job, const std::function<void()>& run) {
        server_.SetAnswer("*", peer.Says);
        ForgetPeak();
        const qint64 before = PeakMemory();
        QElapsedTimer timer;
        timer.start();
        run();
        EXPECT_LT(timer.elapsed(), soon) << job << ": " << peer.Name;
        EXPECT_LT(PeakMemory() - before, mostMemory) << job << ": " << peer.Name;
    }

    void Meet(const std::vector<Peer>& peers) {
        for (const Peer& peer : peers) {
            Within(peer, "check", [&] {
                const QString shown =
                    peer.Version.isEmpty() ? QStringLiteral("Error") : QString::fromLatin1(peer.Version);
                EXPECT_EQ(Check(), QStringLiteral("Online Version: ") + shown) << peer.Name;
            });
            Within(peer, "download", [&] { EXPECT_EQ(DownLoad(), peer.Downloaded) << peer.Name; });
            EXPECT_LE(QFile(Target()).size(), 64) << peer.Name;
            Within(peer, "upload", [&] { EXPECT_EQ(Upload(), peer.Uploaded) << peer.Name; });
        }
        EXPECT_TRUE(elsewhere_.Requests().isEmpty());
        EXPECT_EQ(elsewhere_.OpenConnections(), 0);
        for (const QByteArray& request : server_.Requests())
            EXPECT_FALSE(request.toLower().contains("authorization:"));
    }

    QString Target() const { return folder_.filePath(QStringLiteral("hwids.7z")); }

    const values::Addresses addresses_;
    const values::ProgramValues program_;
    ScriptedServer server_;
    ScriptedServer elsewhere_;
    QTemporaryDir folder_;
};

TEST_F(HostilePeersTest, ThatStopOrStallAreLeftInTime) { Meet(PeersThatStopOrStall()); }

TEST_F(HostilePeersTest, ThatFloodFillNeitherMemoryNorDisk) { Meet(PeersThatFlood()); }

TEST_F(HostilePeersTest, ThatLieAreTakenAtNoMoreThanTheirWord) { Meet(PeersThatLie()); }

TEST_F(HostilePeersTest, ThatSendElsewhereAreNotFollowed) { Meet(PeersThatSendElsewhere(elsewhere_.Url().toLatin1())); }

// A body that trickles is progress to the download, which its user sees and can cancel, but not to the check, behind
// which the program's start waits.
TEST_F(HostilePeersTest, ABodyThatTricklesHoldsUpTheCheckNoLongerThanItsLimit) {
    Within({"a body that trickles", Answer(Promise(200, 9)).SendInPieces("9.9.99999", 1, 200), {}, true, true}, "check",
           [this] { EXPECT_EQ(Check(), QStringLiteral("Online Version: Error")); });
    EXPECT_TRUE(DownLoad());
    EXPECT_EQ(QFile(Target()).size(), 9);
}

// A peer that reads nothing keeps its sender waiting no longer than the limit.
TEST_F(HostilePeersTest, AnUploadThatNobodyReadsEnds) {
    QFile file(folder_.filePath(QStringLiteral("new_hardware.txt")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(QByteArray(8'000'000, 'x')) == 8'000'000);
    file.close();
    server_.SetAnswer("*", Answer().Pause(30'000).WithoutReading());
    QElapsedTimer timer;
    timer.start();
    EXPECT_FALSE(Upload());
    EXPECT_LT(timer.elapsed(), soon);
}

} // namespace
