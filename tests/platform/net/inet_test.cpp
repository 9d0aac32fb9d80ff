#include "net/inet.h"

#include "base/yield.h"
#include "support/scripted_server.h"

#include <QElapsedTimer>
#include <QTimer>
#include <gtest/gtest.h>

namespace {

using support::Answer;
using support::Promise;
using support::Reply;
using support::ScriptedServer;

class InetTest : public testing::Test {
  protected:
    QString Fetch(const Answer& answer) {
        server_.SetAnswer("/file", answer);
        return inet_.OpenURL(server_.Url("/file"));
    }

    void Begin(const Answer& answer, const QString& headers = {}) {
        server_.SetAnswer("/file", answer);
        inet_.SetURL(server_.Url("/file"));
        ASSERT_TRUE(inet_.Execute(std::nullopt, "GET", {}, headers));
        while (inet_.StillExecuting()) {
            base::YieldBlocking(50);
        }
    }

    ScriptedServer server_;
    net::Inet inet_;
};

TEST_F(InetTest, OpenUrlGivesTheBodyWhateverTheStatusIs) {
    EXPECT_EQ(Fetch(Reply(200, "2.5.0")), "2.5.0");
    EXPECT_EQ(Fetch(Reply(500, "sorry")), "sorry");
    EXPECT_EQ(Fetch(Answer().Send("HTTP/1.0 200 OK\r\n\r\nuntil the end")), "until the end");
    EXPECT_EQ(Fetch(Answer().Send("HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok")),
              "ok");
    EXPECT_EQ(Fetch(Reply(200, QByteArray("\x80\xE9\0\xFF", 4))), QString::fromUtf16(u"\u20AC\u00E9\0\u00FF", 4));
    EXPECT_EQ(Fetch(Reply(200, {})), QString());
}

// A body is no second head, wherever a piece of it begins.
TEST_F(InetTest, ABodyThatLooksLikeAnAnswerComesWhole) {
    const QByteArray body =
        "JTTP/1.1 200HTTP/1 O.1 10K\r\n\r\nHTTP/1.1 302 Found\r\nContent-Length: 3\r\n\r\n0\r\n\r\n";
    for (int piece = 1; piece <= body.size(); piece += 7)
        EXPECT_EQ(Fetch(Promise(200, body.size()).SendInPieces(body, piece, 0)), QString::fromLatin1(body)) << piece;
    EXPECT_EQ(Fetch(Answer().Send("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n" +
                                  QByteArray::number(body.size(), 16) + "\r\n" + body + "\r\n0\r\n\r\n")),
              QString::fromLatin1(body));
}

TEST_F(InetTest, OpenUrlSpeaksHttpAlone) {
    EXPECT_EQ(inet_.OpenURL("file:///etc/hostname"), QString());
    EXPECT_EQ(inet_.OpenURL(QStringLiteral("https://127.0.0.1:%1/").arg(server_.Port())), QString());
    EXPECT_EQ(inet_.OpenURL(QString()), QString());
    EXPECT_TRUE(server_.Requests().isEmpty());
}

TEST_F(InetTest, WaitsDispatchEventsAndEndOnStallStopAndCancel) {
    QElapsedTimer timer;
    timer.start();
    inet_.SetStallLimit(300);
    EXPECT_EQ(Fetch(Answer().Stall()), QString());
    EXPECT_GE(timer.elapsed(), 300);
    inet_.SetStallLimit(60'000);

    bool closing = false;
    inet_.SetStop([&closing] { return closing; });
    QTimer::singleShot(100, &inet_, [&closing] { closing = true; });
    timer.restart();
    EXPECT_EQ(Fetch(Promise(200, 5).Send("2").Stall()), QString());
    EXPECT_LT(timer.elapsed(), 2'000);

    closing = false;
    QTimer::singleShot(100, &inet_, [this] { inet_.Cancel(); });
    EXPECT_EQ(Fetch(Answer().Stall()), QString());
    EXPECT_LT(timer.elapsed(), 4'000);
}

TEST_F(InetTest, ASecondRequestInsideAWaitTakesOver) {
    server_.SetAnswer("/second", Reply(200, "second"));
    QString inner;
    QTimer::singleShot(50, &inet_, [&] { inner = inet_.OpenURL(server_.Url("/second")); });
    EXPECT_EQ(Fetch(Answer().Stall()), QString());
    EXPECT_EQ(inner, "second");
}

TEST_F(InetTest, HeadersAreReadByName) {
    Begin(Reply(206, "body", "X-One: 1\r\nX-ONE: 2\r\nEmpty:\r\n"), "Range: bytes=5-\r\nBad\r\n");
    EXPECT_TRUE(inet_.GetHeader().startsWith("HTTP/1.1 206 Told\r\n"));
    EXPECT_EQ(inet_.GetHeader("content-LENGTH"), "4");
    EXPECT_EQ(inet_.GetHeader("x-one"), "1");
    EXPECT_EQ(inet_.GetHeader("Empty"), QString());
    EXPECT_EQ(inet_.GetHeader("X-Two"), std::nullopt);
    EXPECT_TRUE(server_.Requests().first().contains("\r\nRange: bytes=5-\r\n"));
    EXPECT_FALSE(server_.Requests().first().contains("Bad"));
    inet_.Cancel();
    EXPECT_EQ(inet_.GetHeader(), QString());
    EXPECT_EQ(inet_.GetHeader("Content-Length"), std::nullopt);
    EXPECT_FALSE(inet_.Execute(std::nullopt, "PUT"));
}

TEST_F(InetTest, ChunksAreFullWhileMoreIsToCome) {
    // Pieces smaller than a chunk: a short chunk before the end would end the caller's loop.
    Begin(Promise(200, 10).SendInPieces("0123456789", 1, 5));
    EXPECT_EQ(inet_.GetChunk(4), QByteArray("0123"));
    EXPECT_EQ(inet_.GetChunk(4), QByteArray("4567"));
    EXPECT_EQ(inet_.GetChunk(4), QByteArray("89"));
    EXPECT_EQ(inet_.GetChunk(4), QByteArray());
    inet_.Cancel();
    EXPECT_EQ(inet_.GetChunk(4), std::nullopt);
}

TEST_F(InetTest, AChunkMayBeLargerThanWhatLiesUnreadAtMost) {
    const qint64 total = 3 << 20;
    Begin(Promise(200, total).Repeat(QByteArray(4096, 'x'), total));
    EXPECT_EQ(inet_.GetChunk(2 << 20)->size(), 2 << 20);
    EXPECT_EQ(inet_.GetChunk(2 << 20)->size(), 1 << 20);
    EXPECT_EQ(inet_.GetChunk(2 << 20), QByteArray());
}

TEST_F(InetTest, ABrokenBodyIsNoEnd) {
    Begin(Promise(200, 10).Send("01234").Reset());
    EXPECT_EQ(inet_.GetChunk(4), QByteArray("0123"));
    EXPECT_EQ(inet_.GetChunk(4), std::nullopt);
    Begin(Promise(200, 10).Send("01234"));
    EXPECT_EQ(inet_.GetChunk(8), std::nullopt);
    // More than promised is not read.
    Begin(Promise(200, 4).Send("01234567"));
    EXPECT_EQ(inet_.GetChunk(8), QByteArray("0123"));
}

TEST_F(InetTest, ASlowReaderHoldsTheSenderBackAndLosesNothing) {
    QByteArray block(64 * 1024, '\0');
    for (qsizetype i = 0; i < block.size(); ++i) {
        block[i] = static_cast<char>(i * 7 + i / 256);
    }
    const qint64 total = 16 << 20;
    // The reader rests for longer than the stall limit; a held back sender is no stall.
    inet_.SetStallLimit(400);
    Begin(Promise(200, total).Repeat(block, total));
    QElapsedTimer rest;
    rest.start();
    while (!rest.hasExpired(700)) {
        base::YieldBlocking(20);
    }
    qint64 read = 0;
    while (true) {
        const std::optional<QByteArray> chunk = inet_.GetChunk(1024);
        ASSERT_TRUE(chunk);
        if (chunk->isEmpty()) {
            break;
        }
        ASSERT_EQ(*chunk, block.sliced(read % block.size(), 1024)) << read;
        read += chunk->size();
    }
    EXPECT_EQ(read, total);
}

TEST_F(InetTest, CancelAndTheObjectsEndCloseTheConnection) {
    {
        net::Inet other;
        other.SetURL(server_.Url("/file"));
        server_.SetAnswer("/file", Promise(200, 100).Stall());
        ASSERT_TRUE(other.Execute(std::nullopt, "GET"));
        while (other.StillExecuting()) {
            base::YieldBlocking(50);
        }
        EXPECT_EQ(server_.OpenConnections(), 1);
    }
    EXPECT_TRUE(server_.ClosesAllWithin(2'000));
}

} // namespace
