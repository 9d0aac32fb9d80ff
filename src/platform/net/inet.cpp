#include "net/inet.h"

#include "base/text.h"
#include "base/yield.h"
#include "net/transfer.h"

#include <QElapsedTimer>
#include <algorithm>

namespace net {

namespace {

// In bytes.
constexpr qsizetype openUrlLimit = 1024 * 1024;
constexpr qsizetype pieceLimit = 64 * 1024;
// One turn of a wait, in milliseconds; a stop is noticed at the latest then.
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
    QElapsedTimer sinceStart;
    sinceStart.start();
    const auto late = [this, &sinceStart] { return sinceStart.hasExpired(stallLimit_); };
    bool ended = false;
    while (!ended) {
        if (!WaitWhile([this, &late] { return !transfer_->Ended() && transfer_->Unread() == 0 && !late(); })) {
            return {};
        }
        ended = transfer_->Ended();
        body += transfer_->Take(transfer_->Unread());
        // A body that trickles in for ever would hold up the program's start.
        if (body.size() > openUrlLimit || (!ended && late())) {
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
    // The common case of a steady transfer.
    if (size <= pieceLimit && transfer_->Unread() >= size && !Stopped()) {
        return transfer_->Take(size);
    }
    QByteArray chunk;
    bool ended = false;
    while (!ended && chunk.size() < size) {
        // In pieces, as a transfer holds its sender back before a chunk of any size could lie unread.
        const qsizetype wanted = std::min<qsizetype>(size - chunk.size(), pieceLimit);
        if (!WaitWhile([this, wanted] { return !transfer_->Ended() && transfer_->Unread() < wanted; })) {
            return std::nullopt;
        }
        ended = transfer_->Ended() && transfer_->Unread() < wanted;
        chunk += transfer_->Take(wanted);
    }
    // A short rest of a broken transfer would look like its end.
    if (ended && transfer_->Failed()) {
        return std::nullopt;
    }
    return chunk;
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
