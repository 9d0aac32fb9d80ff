// Device matching: which devices the database knows under the hardware IDs of one device. The lookup window runs these
// steps in their order; nothing here knows the window. The specificity of an ID is its length alone, so the longest ID
// that is found names the closest relative.
#pragma once

#include "suite/list_items.h"

#include <QString>
#include <functional>

namespace database {

// Columns of the list of matches behind the row text, which is the device's name.
inline constexpr int ManufacturerColumn = 1;
inline constexpr int HardwareIdColumn = 2;
inline constexpr int LengthColumn = 3; // hidden; three digits, to sort by

// The query for the IDs of `text`, one per line behind CR LF. A blank first line makes a query that the database
// refuses, and a text of one line is searched for untrimmed: both on purpose.
QString MatchQuery(const QString& text);

// Runs the query and adds a row for each entry of each ID found. Yields in every pass; stops early only when the
// program closes. If the database is replaced meanwhile, its numbers mean other names: the rows are then made anew.
void FindMatches(const QString& query, suite::ListItems& rows);

// Calls `colour` for every row whose ID has the greatest length of all rows: several, if they tie.
void MarkBestMatches(suite::ListItems& rows, const std::function<void(suite::ListItem& row)>& colour);

// The status line for so many rows.
QString ResultsText(int rowCount);

} // namespace database
