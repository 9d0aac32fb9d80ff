#include "net/inet.h"

#include "base/text.h"
#include "base/yield.h"
#include "net/transfer.h"

#include <algorithm>

namespace net {

namespace {

constexpr qsizetype openUrlLimit = 1024 * 1024;
// One turn of a wait; a stop is noticed at the latest then.
constexpr int waitTurn = 50;

QList<QByteArray> HeaderLines(const QString& headers) {
    QList<QByteArray> lines;
    for (const QString& line : base::Split(headers, QStringLiteral("\r\n"))) {
        const bool clean = std::none_of(line.cbegin(), line.cend(), [](QChar c) { return c < QChar(u' '); });
        if (clean && line.contains(QChar(u':'))) {
            lines.append(line.toUtf8());
        }
    }
    return lines;
}

} // namespace

Inet::Inet(QObject* parent) : QObject(parent) {}

Inet::~Inet() = default;

QString Inet::OpenURL(const QString& url) {
    if (!Execute(url, QStringLiteral("GET"))) {
        return {};
    }
    QByteArray body;
    bool ended = false;
    while (!ended) {
        if (!WaitWhile([this] { return !transfer_->Ended() && transfer_->Unread() == 0; })) {
            return {};
        }
        ended = transfer_->Ended();
        body += transfer_->Take(transfer_->Unread());
        if (body.size() > openUrlLimit) {
            Cancel();
            return {};
        }
    }
    return transfer_->Failed() ? QString() : base::FromAnsi(body);
}

bool Inet::Execute(const std::optional<QString>& url, const QString& operation, const QByteArray& data,
                   const QString& headers) {
    Cancel();
    if (operation.compare(QStringLiteral("GET"), Qt::CaseInsensitive) != 0 || !data.isEmpty()) {
        return false;
    }
    transfer_ = std::make_unique<Transfer>(url.value_or(url_).toUtf8(), HeaderLines(headers), stallLimit_);
    return true;
}

bool Inet::StillExecuting() const {
    return transfer_ && !transfer_->HeadersComplete() && !transfer_->Ended() && !Stopped();
}

QString Inet::GetHeader() const {
    return transfer_ && transfer_->HeadersComplete() ? base::FromAnsi(transfer_->Headers()) : QString();
}

std::optional<QString> Inet::GetHeader(const QString& name) const {
    for (const QString& line : base::Split(GetHeader(), QStringLiteral("\r\n"))) {
        const qsizetype colon = line.indexOf(QChar(u':'));
        if (colon > 0 && line.first(colon).compare(name, Qt::CaseInsensitive) == 0) {
            return line.sliced(colon + 1).trimmed();
        }
    }
    return std::nullopt;
}

std::optional<QByteArray> Inet::GetChunk(qint32 size) {
    if (!transfer_ || size < 0) {
        return std::nullopt;
    }
    if (!WaitWhile([this, size] { return !transfer_->Ended() && transfer_->Unread() < size; })) {
        return std::nullopt;
    }
    // A short rest of a broken transfer would look like its end.
    if (transfer_->Failed() && transfer_->Unread() < size) {
        return std::nullopt;
    }
    return transfer_->Take(size);
}

void Inet::Cancel() {
    ++generation_;
    transfer_.reset();
}

bool Inet::WaitWhile(const std::function<bool()>& more) {
    const quint64 generation = generation_;
    while (!Stopped()) {
        if (!more()) {
            return true;
        }
        base::YieldBlocking(waitTurn);
        if (generation != generation_) {
            return false;
        }
    }
    return false;
}

} // namespace net
