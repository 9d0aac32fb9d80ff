// Answers of a server to the transfer control: the input is what a peer on a loopback socket sends, whole or in two
// pieces. The body that comes out must be the one that a plain reading of the answer gives.
#include "net/inet.h"
#include "fuzz_support.h"

#include <QCoreApplication>
#include <arpa/inet.h>
#include <csignal>
#include <iterator>
#include <netinet/in.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace {

// Milliseconds. An answer that breaks off may end by the first; a good one must come through however slow the machine
// is.
constexpr int shortStall = 300;
constexpr int longStall = 15'000;

// Serves one answer after the other on a port of its own, on a thread, for as long as the process lives.
class Peer {
  public:
    Peer() : listener_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        auto* plain = reinterpret_cast<sockaddr*>(&address);
        fuzz::Require(bind(listener_, plain, length) == 0 && listen(listener_, 16) == 0 &&
                          getsockname(listener_, plain, &length) == 0,
                      "a loopback port can be had");
        url_ = QStringLiteral("http://127.0.0.1:%1/").arg(ntohs(address.sin_port));
    }

    const QString& Url() const { return url_; }

    // Answers one request with these bytes and closes. What can be read from `end` says that no request comes any more:
    // on a slow machine a client may give up before it connects.
    std::thread Serve(const QByteArray& first, const QByteArray& second, int end) const {
        return std::thread([listener = listener_, first, second, end] {
            // The fuzzer's alarms are for its own thread; here they would cut a wait short.
            sigset_t all;
            sigfillset(&all);
            pthread_sigmask(SIG_BLOCK, &all, nullptr);
            pollfd events[] = {{listener, POLLIN, 0}, {end, POLLIN, 0}};
            poll(events, std::size(events), -1);
            if ((events[0].revents & POLLIN) == 0)
                return;
            const int connection = accept(listener, nullptr, nullptr);
            char request[4096];
            ssize_t got = recv(connection, request, sizeof request, 0);
            if (got > 0) {
                send(connection, first.constData(), size_t(first.size()), MSG_NOSIGNAL);
                send(connection, second.constData(), size_t(second.size()), MSG_NOSIGNAL);
                shutdown(connection, SHUT_WR);
                while (recv(connection, request, sizeof request, 0) > 0) {
                }
            }
            close(connection);
        });
    }

  private:
    int listener_;
    QString url_;
};

const Peer& ThePeer() {
    static const Peer peer;
    return peer;
}

void CheckHeaders(const net::Inet& inet) {
    const QString header = inet.GetHeader();
    fuzz::Require(header.size() <= 256 * 1024, "headers keep to their limit");
    const auto length = inet.GetHeader(QStringLiteral("content-length"));
    fuzz::Require(!length || (*length == length->trimmed() && !length->contains(QStringLiteral("\r\n"))),
                  "a header's value is one trimmed line");
}

void Ask(const QByteArray& first, const QByteArray& second, bool wholeBody, const QByteArray* expected) {
    const int end = eventfd(0, EFD_CLOEXEC);
    std::thread serving = ThePeer().Serve(first, second, end);
    net::Inet inet;
    inet.SetStallLimit(expected == nullptr ? shortStall : longStall);
    QByteArray body;
    bool failed = false;
    if (wholeBody) {
        body = inet.OpenURL(ThePeer().Url()).toLatin1();
    } else {
        inet.Execute(ThePeer().Url(), QStringLiteral("GET"));
        while (inet.StillExecuting())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
        CheckHeaders(inet);
        while (!failed) {
            const std::optional<QByteArray> chunk = inet.GetChunk(1000);
            failed = !chunk;
            if (!chunk || chunk->isEmpty())
                break;
            fuzz::Require(chunk->size() <= 1000, "a chunk keeps to its size");
            body += *chunk;
        }
    }
    inet.Cancel();
    eventfd_write(end, 1);
    serving.join();
    close(end);
    fuzz::Require(expected == nullptr || (!failed && body == *expected), "the body comes out as it was sent");
}

// An answer in good order, plain or in chunks, of a body out of the input.
void CheckRoundTrip(fuzz::Reader reader) {
    const bool chunked = reader.Byte() % 2 == 0;
    const bool wholeBody = reader.Byte() % 2 == 0;
    const QByteArray body = wholeBody ? reader.Rest().replace('\0', '0').toHex() : reader.Rest();
    QByteArray answer = "HTTP/1.1 200 OK\r\n";
    if (chunked) {
        answer += "Transfer-Encoding: chunked\r\n\r\n";
        for (qsizetype at = 0; at < body.size(); at += 7)
            answer += QByteArray::number(qMin<qsizetype>(7, body.size() - at), 16) + "\r\n" + body.mid(at, 7) + "\r\n";
        answer += "0\r\n\r\n";
    } else {
        answer += "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body;
    }
    Ask(answer.first(answer.size() / 2), answer.sliced(answer.size() / 2), wholeBody, &body);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::NeedApplication();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Reader reader(data, size);
    const bool wholeBody = reader.Byte() % 2 == 0;
    const QByteArray answer = reader.Rest();
    const qsizetype cut = answer.isEmpty() ? 0 : qsizetype(uchar(answer.back())) % (answer.size() + 1);
    Ask(answer.first(cut), answer.sliced(cut), wholeBody, nullptr);
    CheckRoundTrip(fuzz::Reader(data, size));
    return 0;
}
