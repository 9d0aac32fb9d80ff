// An HTTP peer for tests that does exactly what it is told: answers any status, stalls, cuts, lies about lengths,
// floods, sends in pieces. It listens on a loopback port of its own and serves on a thread, so that a caller which
// blocks the event loop is served too. Ends with the object.
#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <atomic>
#include <mutex>
#include <thread>
#include <vector>

namespace support {

// What the server does after it has read a request, step by step; the connection is closed after the last.
class Answer {
  public:
    enum class Kind { Send, Repeat, Pause, Stall, Reset };
    struct Step {
        Kind kind = Kind::Send;
        QByteArray bytes;
        qint64 count = 0;    // bytes in all (Repeat), milliseconds (Pause)
        qsizetype piece = 0; // bytes in one send; 0 sends all at once
        int pieceGap = 0;    // milliseconds between pieces
    };

    Answer& Send(const QByteArray& bytes);
    Answer& SendInPieces(const QByteArray& bytes, qsizetype piece, int gap);
    // The bytes over and over until `total` bytes are out.
    Answer& Repeat(const QByteArray& bytes, qint64 total);
    Answer& Pause(int milliseconds);
    // Keeps the connection open without a byte until the server ends or the client goes.
    Answer& Stall();
    // Closes with a reset instead of an orderly end.
    Answer& Reset();
    // Answers without reading the request first; of the answer for "*" alone, as no path is known then.
    Answer& WithoutReading();

    const std::vector<Step>& Steps() const { return steps_; }
    bool ReadsRequest() const { return readsRequest_; }

  private:
    std::vector<Step> steps_;
    bool readsRequest_ = true;
};

// A whole answer with a right Content-Length; `headers` are further lines, each with CR LF.
Answer Reply(int status, const QByteArray& body, const QByteArray& headers = {});
// Status line and headers with this Content-Length, whatever follows.
Answer Promise(int status, qint64 length);

class ScriptedServer {
  public:
    ScriptedServer();
    ~ScriptedServer();
    ScriptedServer(const ScriptedServer&) = delete;
    ScriptedServer& operator=(const ScriptedServer&) = delete;

    int Port() const { return port_; }
    // "http://127.0.0.1:port" and `path` behind it.
    QString Url(const QString& path = {}) const;

    // The answer for a path (as in the request line), or for "*", which stands for all paths without one of their own.
    // Without that, they get 404.
    void SetAnswer(const QByteArray& path, const Answer& answer);

    // The requests so far as they came, head and body.
    QList<QByteArray> Requests() const;
    // Connections that are open at this moment.
    int OpenConnections() const { return openConnections_; }
    // Whether all are closed, after at most so many milliseconds, in which nothing is dispatched.
    bool ClosesAllWithin(int milliseconds) const;

  private:
    void Listen();
    void Serve(int socket);
    QByteArray ReadRequest(int socket);
    bool Perform(int socket, const Answer::Step& step);
    bool SendAll(int socket, const QByteArray& bytes, qsizetype piece, int gap);
    bool Wait(int socket, short events, int milliseconds) const;
    Answer AnswerFor(const QByteArray& request) const;

    int listener_ = -1;
    int port_ = 0;
    std::atomic<bool> stopping_ = false;
    std::atomic<int> openConnections_ = 0;
    mutable std::mutex mutex_;
    QHash<QByteArray, Answer> answers_;
    QList<QByteArray> requests_;
    std::vector<std::thread> connections_;
    std::thread thread_;
};

} // namespace support
