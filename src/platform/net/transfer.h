// One HTTP GET over libcurl, driven by the event loop: socket notifications and a timer do all the work, nothing
// blocks. Owned by Inet. It pauses while more than 256 KiB lie unread, follows no redirect, speaks http alone, and ends
// by itself when nothing has moved for the stall limit or the headers are not whole by then.
#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QHash>
#include <QList>
#include <QObject>
#include <QSocketNotifier>
#include <QTimer>
#include <curl/curl.h>

namespace net {

class Transfer : public QObject {
  public:
    // `url` as bytes, `headers` as "Name: value" lines, `stallLimit` in milliseconds. The request starts at once.
    Transfer(const QByteArray& url, const QList<QByteArray>& headers, int stallLimit);
    ~Transfer() override;

    // The last response's headers are whole; interim answers (1xx) do not count.
    bool HeadersComplete() const { return headersComplete_; }
    // The status line and the header lines with their CR LF, without the closing blank line.
    const QByteArray& Headers() const { return headers_; }
    bool Ended() const { return ended_; }
    // Ended before the body that was promised was whole, for whatever reason.
    bool Failed() const { return ended_ && result_ != CURLE_OK; }
    qsizetype Unread() const { return buffer_.size() - readPosition_; }
    // At most `count` of the unread bytes; lets a paused transfer go on.
    QByteArray Take(qsizetype count);

  private:
    struct Notifiers {
        QSocketNotifier* read = nullptr;
        QSocketNotifier* write = nullptr;
    };

    void SetOptions(const QByteArray& url);
    void Act(curl_socket_t socket, int events);
    void Watch(curl_socket_t socket, int what);
    void Watch(QSocketNotifier*& notifier, curl_socket_t socket, QSocketNotifier::Type type, bool wanted);
    void Unwatch(curl_socket_t socket);
    void CheckForStall();
    void End(CURLcode result);
    bool AcceptHeader(const QByteArray& line);
    size_t AcceptBody(const char* data, size_t size);

    static size_t OnHeader(char* data, size_t size, size_t count, void* self);
    static size_t OnBody(char* data, size_t size, size_t count, void* self);
    static int OnSocket(CURL* easy, curl_socket_t socket, int what, void* self, void* socketData);
    static int OnTimer(CURLM* multi, long milliseconds, void* self);

    CURLM* multi_ = nullptr;
    CURL* easy_ = nullptr;
    curl_slist* headerList_ = nullptr;
    QHash<curl_socket_t, Notifiers> notifiers_;
    QTimer timer_;
    QTimer stallTimer_;
    QElapsedTimer sinceStart_;
    QElapsedTimer sinceProgress_;
    int stallLimit_ = 0;
    QByteArray headers_;
    qsizetype headerBytes_ = 0;
    QByteArray buffer_;
    qsizetype readPosition_ = 0;
    bool headersComplete_ = false;
    bool paused_ = false;
    bool ended_ = false;
    CURLcode result_ = CURLE_OK;
};

} // namespace net
