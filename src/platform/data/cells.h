// Values on their way into a statement and out of its rows, for those that speak to the store itself.
#pragma once

#include <QVariant>

struct sqlite3_stmt;

namespace data {

// Texts become UTF-8 copies that the statement keeps; the store's code.
int BindCell(sqlite3_stmt* statement, int at, const QVariant& value);

// An invalid value where the row has none.
QVariant CellAt(sqlite3_stmt* statement, int column);

} // namespace data
