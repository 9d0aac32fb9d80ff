// A database file as the sub-commands read it: through the platform's connection and recordsets, at any path.
#pragma once

#include "data/connection.h"
#include "data/database_rules.h"
#include "data/recordset.h"

#include <QHash>
#include <QString>

namespace tool {

inline constexpr int longestVersion = 50; // characters

// What a maintainer's own database must be: what clients ask of theirs, but for its size, so that it is pack that says
// when there is too much of it.
const data::DatabaseRules& OwnRules();

// Null where it cannot be opened or is no such database; `error` then holds the line to print.
data::ConnectionPtr OpenDatabase(const QString& path, QString& error);

// The number of rows of a table; -1 where it has no such table.
qint64 CountRows(const data::ConnectionPtr& connection, const QString& table);

// The version, empty where there is none.
QString ReadVersion(const data::ConnectionPtr& connection);

// All rows of devicenames or mfgs: texts by number.
QHash<qint64, QString> ReadNames(const data::ConnectionPtr& connection, const QString& table, const QString& column);

} // namespace tool
