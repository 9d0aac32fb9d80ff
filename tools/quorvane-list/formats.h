// A device list as text: comma-separated as the program copies it, as JSON, and as a table for reading.
#pragma once

#include "matches.h"
#include "suite/list_items.h"

#include <QString>
#include <vector>

namespace list_tool {

// One list with what was looked up for it.
struct ListText {
    const suite::ListItems& list;
    // One for each row, in their order; null where nothing was looked up.
    const std::vector<Matches>* matches = nullptr;
};

// A header row, then the rows; lines end in CR LF. Nothing is quoted.
QString CsvText(const ListText& text);
// An array of objects, without a line end behind it. Valid whatever the texts hold.
QString JsonText(const ListText& text);
// Columns padded with blanks; lines end in LF. Of the hardware IDs the first alone.
QString TableText(const ListText& text);

// A text in double quotes as JSON wants it.
QString JsonString(const QString& text);

} // namespace list_tool
