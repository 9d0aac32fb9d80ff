// A list as comma-separated text with a header row. Nothing is quoted: names and IDs can hold commas of their own.
#pragma once

#include "suite/list_items.h"

#include <QString>

namespace inventory {

// How much of a list its text tells.
enum class ListTextScope {
    // All columns.
    WholeRow,
    // All but the last column, which is a hidden one to sort by.
    WithoutLastColumn,
};

// One row: its text and sub-items with "," between them. Yields after each step; a row that is removed meanwhile ends
// where it was.
QString RowText(const suite::ListItems& list, const suite::ListItem* item, ListTextScope scope);

// The captions, then the rows in the shown order, each behind a line break (CR LF), and one more line break at the end.
QString WholeListText(const suite::ListItems& list, ListTextScope scope);

} // namespace inventory
