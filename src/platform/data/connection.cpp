#include "data/connection.h"

#include "base/aside.h"
#include "base/paths.h"
#include "base/text.h"
#include "data/error.h"
#include "data/file_judge.h"
#include "data/session.h"

#include <QRegularExpression>

namespace data {

namespace {

const QString& TheProvider() {
    static const QString provider = QStringLiteral("Microsoft.Jet.OLEDB.4.0");
    return provider;
}

struct ConnectionParts {
    QString Provider;
    QString DataSource;
};

// "key=value;" pieces, keys without regard to case. A piece without a key goes on with the value before it: folders may
// hold a semicolon.
ConnectionParts ReadConnectionString(const QString& text) {
    static const QRegularExpression keyed(QStringLiteral("^\\s*([A-Za-z][A-Za-z0-9 :]*)=(.*)$"),
                                          QRegularExpression::DotMatchesEverythingOption);
    ConnectionParts parts;
    QString unknown;
    QString* value = &unknown;
    const QStringList pieces = base::Split(text, QStringLiteral(";"));
    for (qsizetype i = 0; i < pieces.size(); ++i) {
        const QRegularExpressionMatch match = keyed.match(pieces[i]);
        if (!match.hasMatch()) {
            const bool last = i + 1 == pieces.size() && pieces[i].isEmpty();
            *value += last ? QString() : QLatin1Char(';') + pieces[i];
            continue;
        }
        const QString key = match.captured(1).trimmed().toLower();
        value = key == QLatin1String("provider")      ? &parts.Provider
                : key == QLatin1String("data source") ? &parts.DataSource
                                                      : &unknown;
        *value = match.captured(2);
    }
    return parts;
}

} // namespace

QString ConnectionStringFor(const QString& path) {
    return QStringLiteral("Provider=") + TheProvider() + QStringLiteral(";Data Source=") + path + QLatin1Char(';');
}

Connection::Connection() = default;
Connection::~Connection() = default;

void Connection::SetCursorLocation(int location) {
    if (location != adUseServer && location != adUseClient) {
        throw Error(ErrorInvalidArgument);
    }
}

void Connection::SetConnectionString(const QString& text) {
    if (session_) {
        throw Error(ErrorObjectOpen);
    }
    connectionString_ = text;
}

void Connection::Open(const QString& /*user*/, const QString& /*password*/, int /*options*/) {
    if (session_) {
        throw Error(ErrorObjectOpen);
    }
    const ConnectionParts parts = ReadConnectionString(connectionString_);
    if (parts.Provider.compare(TheProvider(), Qt::CaseInsensitive) != 0) {
        throw Error(ErrorProviderNotFound);
    }
    session_ = std::make_shared<Session>(base::NativePath(parts.DataSource), rules_);
}

void Connection::Close() {
    if (!session_) {
        throw Error(ErrorObjectClosed);
    }
    session_.reset();
}

void Connection::BeginTrans() { RequireSession()->Begin(); }

void Connection::CommitTrans() { RequireSession()->Commit(); }

void Connection::RollbackTrans() { RequireSession()->Rollback(); }

void Connection::LeaveWritesToSystem() { RequireSession()->Change("PRAGMA synchronous=OFF", {}); }

quint64 Connection::Generation() const {
    if (!session_) {
        return 0;
    }
    session_->FollowFile();
    return session_->Generation();
}

std::optional<qint64> Connection::CountRows(const QString& table, const std::function<bool()>& stopped) const {
    if (!session_) {
        return std::nullopt;
    }
    const QString path = session_->Path();
    const DatabaseRules* rules = session_->Rules();
    std::optional<qint64> count;
    base::RunAside([&](const std::atomic<bool>& stop) { count = data::CountRows(path, rules, table, stop); }, stopped);
    return count;
}

QString Connection::StorageFault() const { return session_ ? session_->StorageFault() : QString(); }

const std::shared_ptr<Session>& Connection::RequireSession() const {
    if (!session_) {
        throw Error(ErrorInvalidConnection);
    }
    return session_;
}

void ReadHold::Hold(const ConnectionPtr& connection) {
    const std::shared_ptr<Session> session = connection ? connection->session_ : nullptr;
    if (session != session_) {
        LetGo();
    }
    if (session && Ran([&] { session->Hold(); })) {
        session_ = session;
    }
}

void ReadHold::LetGo() {
    if (session_) {
        session_->LetGo();
        session_.reset();
    }
}

} // namespace data
