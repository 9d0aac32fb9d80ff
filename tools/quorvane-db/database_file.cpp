#include "database_file.h"

#include "data/error.h"
#include "data/file_judge.h"
#include "database/schema.h"
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

} // namespace

data::ConnectionPtr OpenDatabase(const QString& path, QString& error) {
    error = data::JudgeDatabaseFile(path, database::Rules());
    if (!error.isEmpty()) {
        return nullptr;
    }
    auto connection = std::make_shared<data::Connection>();
    data::Error failure;
    const bool opened = data::Ran(
        [&] {
            connection->SetRules(&database::Rules());
            connection->SetConnectionString(data::ConnectionStringFor(QFileInfo(path).absoluteFilePath()));
            connection->Open();
        },
        &failure);
    error = failure.Description();
    return opened ? connection : nullptr;
}

QString OpenForProgram(const QString& path) {
    const QString wrong = data::JudgeDatabaseFile(path, database::Rules());
    data::Error failure;
    if (wrong.isEmpty()) {
        database::OpenDatabaseFile(QFileInfo(path).absoluteFilePath(), &failure);
    }
    return wrong.isEmpty() ? failure.Description() : wrong;
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
