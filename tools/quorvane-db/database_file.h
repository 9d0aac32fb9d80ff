// A database file as the sub-commands read it: through the platform's connection and recordsets, at any path.
#pragma once

#include "data/connection.h"
#include "data/recordset.h"

#include <QHash>
#include <QString>

namespace tool {

inline constexpr int longestVersion = 50; // characters

// Null where it cannot be opened or is not what a client would take as its database; `error` then holds the line to
// print.
data::ConnectionPtr OpenDatabase(const QString& path, QString& error);

// Opens it as the program's own database, for its routines. Empty, or the line to print.
QString OpenForProgram(const QString& path);

// Makes a file of the same bytes that was not there before. Empty, or what failed; there is no copy then.
QString CopyFile(const QString& from, const QString& to);

// The number of rows of a table; -1 where it has no such table.
qint64 CountRows(const data::ConnectionPtr& connection, const QString& table);

// The version, empty where there is none.
QString ReadVersion(const data::ConnectionPtr& connection);

// All rows of devicenames or mfgs: texts by number.
QHash<qint64, QString> ReadNames(const data::ConnectionPtr& connection, const QString& table, const QString& column);

} // namespace tool
