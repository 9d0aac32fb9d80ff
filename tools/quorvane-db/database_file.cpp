#include "database_file.h"

#include "data/error.h"
#include "data/file_judge.h"
#include "database/schema.h"
#include "database/store.h"

#include <QFileInfo>
#include <vector>

namespace tool {

namespace {

constexpr qint64 mostOwnRows = 20'000'000;
constexpr qint64 largestOwnFile = qint64(4) << 30; // bytes

} // namespace

const data::DatabaseRules& OwnRules() {
    static const auto tables = [] {
        std::vector<data::TableRule> rules(database::Rules().Tables.begin(), database::Rules().Tables.end());
        for (data::TableRule& table : rules) {
            table.MostRows = mostOwnRows;
        }
        return rules;
    }();
    static const data::DatabaseRules rules{tables, database::Rules().Indexes, largestOwnFile,
                                           database::Rules().LargestWithoutIndexes, 0};
    return rules;
}

data::ConnectionPtr OpenDatabase(const QString& path, QString& error) {
    error = data::JudgeDatabaseFile(path, OwnRules());
    if (!error.isEmpty()) {
        return nullptr;
    }
    auto connection = std::make_shared<data::Connection>();
    data::Error failure;
    const bool opened = data::Ran(
        [&] {
            connection->SetRules(&OwnRules());
            connection->SetConnectionString(data::ConnectionStringFor(QFileInfo(path).absoluteFilePath()));
            connection->Open();
        },
        &failure);
    error = failure.Description();
    return opened ? connection : nullptr;
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
