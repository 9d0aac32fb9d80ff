#include "net/wininet.h"

#include "support/scripted_server.h"

#include <gtest/gtest.h>

namespace {

using support::Answer;
using support::Promise;
using support::Reply;
using support::ScriptedServer;

class WinInetTest : public testing::Test {
  protected:
    ~WinInetTest() override { net::SetSendLimits(30'000, 60'000); }

    bool Send(const QByteArray& path, const QByteArray& body) {
        return SendTo("127.0.0.1", server_.Port(), path, body);
    }

    static bool SendTo(const QByteArray& host, int port, const QByteArray& path, const QByteArray& body) {
        const net::HInternet session = net::InternetOpenA("Uploader", net::INTERNET_OPEN_TYPE_PRECONFIG, {}, {}, 0);
        const net::HInternet connection =
            net::InternetConnectA(session, host, port, {}, {}, net::INTERNET_SERVICE_HTTP, 0, 0);
        const net::HInternet request =
            net::HttpOpenRequestA(connection, "POST", path, "HTTP/1.0", {}, {}, net::INTERNET_FLAG_RELOAD, 0);
        EXPECT_TRUE(net::HttpAddRequestHeadersA(request, "Content-Type: a/b\r\n", 19,
                                                net::HTTP_ADDREQ_FLAG_ADD | net::HTTP_ADDREQ_FLAG_REPLACE));
        const bool sent = net::HttpSendRequestA(request, {}, body, static_cast<int>(body.size()));
        EXPECT_TRUE(net::InternetCloseHandle(request));
        EXPECT_TRUE(net::InternetCloseHandle(connection));
        EXPECT_TRUE(net::InternetCloseHandle(session));
        EXPECT_FALSE(net::InternetCloseHandle(session));
        return sent;
    }

    bool SendFor(const Answer& answer, const QByteArray& body = "body") {
        server_.SetAnswer("*", answer);
        return Send("/up.php", body);
    }

    ScriptedServer server_;
};

TEST_F(WinInetTest, TheRequestIsExactOnTheWire) {
    EXPECT_TRUE(Send("/up.php", QByteArray("a\0b\r\n", 5)));
    EXPECT_TRUE(Send("", ""));
    EXPECT_TRUE(Send("/a/../b c\xFC?x=1", "x"));
    const QByteArray head = "Host: 127.0.0.1:" + QByteArray::number(server_.Port()) +
                            "\r\nUser-Agent: Uploader\r\nContent-Type: a/b\r\nContent-Length: ";
    ASSERT_EQ(server_.Requests().size(), 3);
    EXPECT_EQ(server_.Requests().at(0), "POST /up.php HTTP/1.0\r\n" + head + "5\r\n\r\n" + QByteArray("a\0b\r\n", 5));
    EXPECT_EQ(server_.Requests().at(1), "POST / HTTP/1.0\r\n" + head + "0\r\n\r\n");
    EXPECT_EQ(server_.Requests().at(2), "POST /a/../b%20c%FC?x=1 HTTP/1.0\r\n" + head + "1\r\n\r\nx");
}

TEST_F(WinInetTest, TheEnvironmentsProxyIsAskedWithTheWholeAddress) {
    qputenv("http_proxy", server_.Url().toUtf8());
    EXPECT_TRUE(SendTo("nowhere.invalid", 8080, "/a/../up.php?x=#1", "body"));
    qputenv("no_proxy", "nowhere.invalid");
    EXPECT_FALSE(SendTo("nowhere.invalid", 8080, "/up.php", "body"));
    qunsetenv("http_proxy");
    qunsetenv("no_proxy");
    EXPECT_EQ(server_.Requests(),
              QList<QByteArray>{"POST http://nowhere.invalid:8080/a/../up.php?x=%231 HTTP/1.0\r\n"
                                "Host: nowhere.invalid:8080\r\nUser-Agent: Uploader\r\nContent-Type: a/b\r\n"
                                "Content-Length: 4\r\n\r\nbody"});
}

TEST_F(WinInetTest, ALargeBodyGoesOutWithoutAskingFirst) {
    const QByteArray body(3'000'000, 'x');
    EXPECT_TRUE(SendFor(Reply(200, "ok"), body));
    EXPECT_FALSE(server_.Requests().first().first(400).contains("Expect"));
    EXPECT_TRUE(server_.Requests().first().endsWith("\r\n\r\n" + body));
    EXPECT_TRUE(SendFor(Promise(200, 10).Stall())) << "the body must not be waited for";
}

TEST_F(WinInetTest, HandlesAreZeroForWhatCannotBe) {
    const net::HInternet session = net::InternetOpenA("Uploader", 0, {}, {}, 0);
    const auto connect = [session](const QByteArray& host, int port) {
        return net::InternetConnectA(session, host, port, {}, {}, net::INTERNET_SERVICE_HTTP, 0, 0);
    };
    EXPECT_EQ(connect("", 80), 0U);
    EXPECT_EQ(connect("host\r\nX-Injected: 1", 80), 0U);
    EXPECT_EQ(connect("host", 65536), 0U);
    EXPECT_EQ(connect("host", -1), 0U);
    EXPECT_EQ(net::InternetConnectA(0, "host", 80, {}, {}, net::INTERNET_SERVICE_HTTP, 0, 0), 0U);
    const net::HInternet connection = connect("host", 80);
    ASSERT_NE(connection, 0U);
    EXPECT_EQ(net::HttpOpenRequestA(session, "POST", "/", "HTTP/1.0", {}, {}, 0, 0), 0U);
    EXPECT_EQ(net::HttpOpenRequestA(connection, "POST", "/", "HTTP/3", {}, {}, 0, 0), 0U);
    const net::HInternet request = net::HttpOpenRequestA(connection, "POST", "/", "HTTP/1.0", {}, {}, 0, 0);
    EXPECT_FALSE(net::HttpAddRequestHeadersA(request, "A: b", 4, 0)) << "no line end";
    EXPECT_FALSE(net::HttpAddRequestHeadersA(request, "A: b\nC: d\r\n", 11, 0));
    EXPECT_FALSE(net::HttpSendRequestA(connection, {}, {}, 0));
    for (const net::HInternet handle : {request, connection, session}) {
        EXPECT_TRUE(net::InternetCloseHandle(handle));
    }
}

TEST_F(WinInetTest, TheConnectedStateTellsTheKinds) {
    quint32 flags = 99;
    net::SetConnectionSource([] { return 0U; });
    EXPECT_FALSE(net::InternetGetConnectedState(flags, 0));
    EXPECT_EQ(flags, 0U);
    net::SetConnectionSource([] { return net::INTERNET_CONNECTION_LAN | net::INTERNET_CONNECTION_PROXY; });
    EXPECT_TRUE(net::InternetGetConnectedState(flags, 0));
    EXPECT_EQ(flags, 6U);
    net::SetConnectionSource(nullptr);
}

} // namespace
