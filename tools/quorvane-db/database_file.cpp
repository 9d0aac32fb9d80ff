#include "database_file.h"

#include "data/error.h"

#include <QFileInfo>

namespace tool {

data::ConnectionPtr OpenDatabase(const QString& path, QString& error) {
    auto connection = std::make_shared<data::Connection>();
    data::Error failure;
    const bool opened = data::Ran(
        [&] {
            connection->SetConnectionString(QStringLiteral("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=") +
                                            QFileInfo(path).absoluteFilePath() + QStringLiteral(";"));
            connection->Open();
        },
        &failure);
    for (const char* table : {"hwids", "devicenames", "mfgs", "version"}) {
        if (opened && CountRows(connection, QLatin1String(table)) < 0) {
            error = QStringLiteral("%1: not a device database (no table %2)").arg(path, QLatin1String(table));
            return nullptr;
        }
    }
    if (!opened) {
        error = failure.Description();
        return nullptr;
    }
    return connection;
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
