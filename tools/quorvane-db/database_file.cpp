#include "database_file.h"

#include "data/error.h"
#include "database/store.h"

#include <QFile>
#include <QFileInfo>

namespace tool {

namespace {

constexpr qint64 pieceSize = 1 << 20; // bytes

// A disk that takes a part tells the reason when it is given the rest.
bool WriteWhole(QFile& file, const QByteArray& bytes) {
    qint64 done = 0;
    while (done < bytes.size()) {
        const qint64 taken = file.write(bytes.constData() + done, bytes.size() - done);
        if (taken <= 0) {
            return false;
        }
        done += taken;
    }
    return true;
}

// A page of the file that cannot be read would cost its rows, and all that stand behind them.
bool IsDamaged(const data::ConnectionPtr& connection) {
    QString found;
    data::Ran([&] {
        data::Recordset rows;
        rows.Open(QStringLiteral("SELECT quick_check AS found FROM pragma_quick_check"), connection);
        found = rows.Value(QStringLiteral("found")).toString();
    });
    return found != QLatin1String("ok");
}

// Empty, or the line that tells that the file is a damaged database or one of something else.
QString Unusable(const QString& path, const data::ConnectionPtr& connection) {
    if (IsDamaged(connection)) {
        return QStringLiteral("%1: the database is damaged").arg(path);
    }
    const QString missing = database::MissingTable(connection);
    return missing.isEmpty() ? QString() : QStringLiteral("%1: not a device database (no table %2)").arg(path, missing);
}

} // namespace

data::ConnectionPtr OpenDatabase(const QString& path, QString& error) {
    auto connection = std::make_shared<data::Connection>();
    data::Error failure;
    const bool opened = data::Ran(
        [&] {
            connection->SetConnectionString(data::ConnectionStringFor(QFileInfo(path).absoluteFilePath()));
            connection->Open();
        },
        &failure);
    error = opened ? Unusable(path, connection) : failure.Description();
    return error.isEmpty() ? connection : nullptr;
}

QString OpenForProgram(const QString& path) {
    data::Error failure;
    return database::OpenDatabaseFile(QFileInfo(path).absoluteFilePath(), &failure)
               ? Unusable(path, database::DatabaseConnection())
               : failure.Description();
}

QString CopyFile(const QString& from, const QString& to) {
    QFile source(from);
    QFile target(to);
    if (!source.open(QIODevice::ReadOnly)) {
        return source.errorString();
    }
    if (!target.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered)) {
        return target.errorString();
    }
    bool written = true;
    for (QByteArray piece = source.read(pieceSize); written && !piece.isEmpty(); piece = source.read(pieceSize)) {
        written = WriteWhole(target, piece);
    }
    if (written && source.error() == QFileDevice::NoError) {
        target.setPermissions(source.permissions());
        return QString();
    }
    const QString error = written ? source.errorString() : target.errorString();
    target.remove();
    return error;
}

qint64 CountRows(const data::ConnectionPtr& connection, const QString& table) {
    qint64 count = -1;
    data::Ran([&] {
        data::Recordset rows;
        rows.Open(QStringLiteral("SELECT * FROM ") + table, connection);
        count = rows.RecordCount();
    });
    return count;
}

QString ReadVersion(const data::ConnectionPtr& connection) {
    QString version;
    data::Ran([&] {
        data::Recordset rows;
        rows.Open(QStringLiteral("SELECT * FROM version"), connection);
        version = rows.Value(QStringLiteral("dbversion")).toString();
    });
    return version;
}

QHash<qint64, QString> ReadNames(const data::ConnectionPtr& connection, const QString& table, const QString& column) {
    QHash<qint64, QString> names;
    data::Ran([&] {
        data::Recordset rows;
        for (rows.Open(QStringLiteral("SELECT * FROM ") + table, connection); !rows.Eof(); rows.MoveNext()) {
            names.insert(rows.Value(QStringLiteral("ID")).toLongLong(), rows.Value(column).toString());
        }
    });
    return names;
}

} // namespace tool
