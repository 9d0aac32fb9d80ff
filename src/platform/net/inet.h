// The transfer control: fetches one address over plain HTTP while the windows stay alive. Whoever makes it owns it; one
// request at a time, a new one drops the old one. All waiting dispatches events, so everything may have changed behind
// a call, and every wait ends when the stop predicate says so.
#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <functional>
#include <memory>
#include <optional>

namespace net {

class Transfer;

class Inet : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString URL READ URL WRITE SetURL)
    Q_PROPERTY(bool StillExecuting READ StillExecuting)

  public:
    explicit Inet(QObject* parent = nullptr);
    ~Inet() override;

    // Used by Execute where it is given no address.
    QString URL() const { return url_; }
    void SetURL(const QString& url) { url_ = url; }

    // The whole body as text, one character a byte (Windows-1252), whatever the status is. Empty after a failed or cut
    // transfer, for one that takes longer than the stall limit in all, and for a body above 1 MiB, which no caller
    // wants.
    QString OpenURL(const QString& url);

    // Starts a request and returns at once. Only "GET" is served, and no request body. `headers` are lines joined by
    // CR LF. False where the operation is not served.
    bool Execute(const std::optional<QString>& url, const QString& operation, const QByteArray& data = {},
                 const QString& headers = {});

    // True until the headers of the answer are whole or the request has failed.
    bool StillExecuting() const;

    // Status line and headers, each with its CR LF; empty without an answer.
    QString GetHeader() const;
    // The value of the first header of that name, in any case; nothing where there is none.
    std::optional<QString> GetHeader(const QString& name) const;

    // Waits for `size` bytes of the body and returns them, fewer only at its end, where further calls give empty
    // chunks. Nothing where the transfer failed, was stopped or was never begun.
    std::optional<QByteArray> GetChunk(qint32 size);

    // Drops the connection with all that was not read.
    void Cancel();

    // Asked in every wait; true ends it. By default waits end with the transfer alone.
    void SetStop(std::function<bool()> stop) { stop_ = std::move(stop); }
    // Milliseconds without progress, or until the headers are whole, after which a request fails; 60,000 by default,
    // for requests begun later.
    void SetStallLimit(int milliseconds) { stallLimit_ = milliseconds; }

  private:
    bool Stopped() const { return stop_ && stop_(); }
    // Waits in short turns while `more` holds. False where the request was replaced, cancelled or stopped meanwhile.
    bool WaitWhile(const std::function<bool()>& more);

    QString url_;
    std::function<bool()> stop_;
    int stallLimit_ = 60'000;
    // Told apart across yields, where another call may have begun a request of its own.
    quint64 generation_ = 0;
    std::unique_ptr<Transfer> transfer_;
};

} // namespace net
