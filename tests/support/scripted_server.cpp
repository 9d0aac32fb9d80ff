#include "support/scripted_server.h"

#include <QElapsedTimer>
#include <algorithm>
#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace support {

namespace {

constexpr int turn = 10; // milliseconds in which a wait notices the server's end

qint64 ContentLength(const QByteArray& head) {
    const qsizetype at = head.toLower().indexOf("\r\ncontent-length:");
    return at < 0 ? 0 : head.sliced(at + 17, head.indexOf("\r\n", at + 2) - at - 17).trimmed().toLongLong();
}

} // namespace

Answer& Answer::Send(const QByteArray& bytes) {
    steps_.push_back({Kind::Send, bytes});
    return *this;
}

Answer& Answer::SendInPieces(const QByteArray& bytes, qsizetype piece, int gap) {
    steps_.push_back({Kind::Send, bytes, 0, piece, gap});
    return *this;
}

Answer& Answer::Repeat(const QByteArray& bytes, qint64 total) {
    steps_.push_back({Kind::Repeat, bytes, total});
    return *this;
}

Answer& Answer::Pause(int milliseconds) {
    steps_.push_back({Kind::Pause, {}, milliseconds});
    return *this;
}

Answer& Answer::Stall() {
    steps_.push_back({Kind::Stall, {}});
    return *this;
}

Answer& Answer::Reset() {
    steps_.push_back({Kind::Reset, {}});
    return *this;
}

Answer& Answer::WithoutReading() {
    readsRequest_ = false;
    return *this;
}

Answer Promise(int status, qint64 length) {
    return Answer().Send("HTTP/1.1 " + QByteArray::number(status) +
                         " Told\r\nContent-Length: " + QByteArray::number(length) + "\r\n\r\n");
}

Answer Reply(int status, const QByteArray& body, const QByteArray& headers) {
    return Answer().Send("HTTP/1.1 " + QByteArray::number(status) + " Told\r\n" + headers +
                         "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body);
}

ScriptedServer::ScriptedServer() {
    listener_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (bind(listener_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        listen(listener_, 16) != 0) {
        qFatal("no loopback port for a test's server");
    }
    socklen_t length = sizeof address;
    getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &length);
    port_ = ntohs(address.sin_port);
    thread_ = std::thread([this] { Listen(); });
}

ScriptedServer::~ScriptedServer() {
    stopping_ = true;
    thread_.join();
    for (std::thread& connection : connections_) {
        connection.join();
    }
    close(listener_);
}

QString ScriptedServer::Url(const QString& path) const {
    return QStringLiteral("http://127.0.0.1:%1%2").arg(port_).arg(path);
}

void ScriptedServer::SetAnswer(const QByteArray& path, const Answer& answer) {
    const std::lock_guard lock(mutex_);
    answers_.insert(path, answer);
}

QList<QByteArray> ScriptedServer::Requests() const {
    const std::lock_guard lock(mutex_);
    return requests_;
}

bool ScriptedServer::ClosesAllWithin(int milliseconds) const {
    QElapsedTimer timer;
    timer.start();
    while (openConnections_ > 0 && !timer.hasExpired(milliseconds)) {
        std::this_thread::sleep_for(std::chrono::milliseconds(turn));
    }
    return openConnections_ == 0;
}

void ScriptedServer::Listen() {
    while (!stopping_) {
        pollfd waiting{listener_, POLLIN, 0};
        if (poll(&waiting, 1, turn) <= 0) {
            continue;
        }
        const int socket = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
        if (socket >= 0) {
            ++openConnections_;
            connections_.emplace_back([this, socket] {
                Serve(socket);
                close(socket);
                --openConnections_;
            });
        }
    }
}

bool ScriptedServer::Wait(int socket, short events, int milliseconds) const {
    QElapsedTimer timer;
    timer.start();
    while (!stopping_ && (milliseconds < 0 || !timer.hasExpired(milliseconds))) {
        pollfd waiting{socket, events, 0};
        const int ready = poll(&waiting, 1, turn);
        if (ready > 0) {
            return true;
        }
    }
    return false;
}

QByteArray ScriptedServer::ReadRequest(int socket) {
    QByteArray request;
    qint64 wanted = -1;
    while ((wanted < 0 || request.size() < wanted) && Wait(socket, POLLIN, 10'000)) {
        char piece[64 * 1024];
        const ssize_t size = recv(socket, piece, sizeof piece, 0);
        if (size <= 0) {
            break;
        }
        request.append(piece, size);
        const qsizetype end = request.indexOf("\r\n\r\n");
        if (wanted < 0 && end >= 0) {
            wanted = end + 4 + ContentLength(request.first(end + 2));
        }
    }
    return request;
}

Answer ScriptedServer::AnswerFor(const QByteArray& request) const {
    const std::lock_guard lock(mutex_);
    const QByteArray path = request.split(' ').value(1);
    const auto found = answers_.constFind(path);
    return found != answers_.constEnd() ? *found : answers_.value("*", Reply(404, "not here"));
}

void ScriptedServer::Serve(int socket) {
    Answer answer = AnswerFor({});
    if (answer.ReadsRequest()) {
        const QByteArray request = ReadRequest(socket);
        if (request.isEmpty()) {
            return;
        }
        {
            const std::lock_guard lock(mutex_);
            requests_.append(request);
        }
        answer = AnswerFor(request);
    }
    for (const Answer::Step& step : answer.Steps()) {
        if (!Perform(socket, step)) {
            return;
        }
    }
    shutdown(socket, SHUT_WR);
    // Closing with unread input would reset the connection and take the answer with it.
    char rest[4096];
    while (Wait(socket, POLLIN, 2'000) && recv(socket, rest, sizeof rest, 0) > 0) {
    }
}

bool ScriptedServer::Perform(int socket, const Answer::Step& step) {
    switch (step.kind) {
    case Answer::Kind::Send:
        return SendAll(socket, step.bytes, step.piece, step.pieceGap);
    case Answer::Kind::Repeat:
        for (qint64 left = step.count; left > 0; left -= step.bytes.size()) {
            if (!SendAll(socket, step.bytes.first(std::min<qint64>(left, step.bytes.size())), 0, 0)) {
                return false;
            }
        }
        return true;
    case Answer::Kind::Pause:
        Wait(socket, 0, static_cast<int>(step.count));
        return !stopping_;
    case Answer::Kind::Stall: {
        char ignored[4096];
        while (Wait(socket, POLLIN, -1) && recv(socket, ignored, sizeof ignored, 0) > 0) {
        }
        return false;
    }
    case Answer::Kind::Reset: {
        const linger now{1, 0};
        setsockopt(socket, SOL_SOCKET, SO_LINGER, &now, sizeof now);
        return false;
    }
    }
    return false;
}

bool ScriptedServer::SendAll(int socket, const QByteArray& bytes, qsizetype piece, int gap) {
    for (qsizetype sent = 0; sent < bytes.size();) {
        const qsizetype size = piece > 0 ? std::min(piece, bytes.size() - sent) : bytes.size() - sent;
        if (!Wait(socket, POLLOUT, -1)) {
            return false;
        }
        const ssize_t taken = send(socket, bytes.constData() + sent, static_cast<size_t>(size), MSG_NOSIGNAL);
        if (taken < 0) {
            return false;
        }
        sent += taken;
        if (gap > 0) {
            std::this_thread::sleep_for(std::chrono::milliseconds(gap));
        }
        if (stopping_) {
            return false;
        }
    }
    return true;
}

} // namespace support
