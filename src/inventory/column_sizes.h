// Column widths that fit what a list shows. Both routines yield between the columns.
#pragma once

namespace suite {
class ListView;
}

namespace inventory {

// Sizes every column by its texts and its caption, adds the icon to the first one, and gives none less than the
// caption's width in the main window's font and 600 twips.
void AutoSizeColumns(suite::ListView& list);

// Sizes every column but the last, without a least width. The last one keeps its width.
void AutoSizeColumnsButLast(suite::ListView& list);

} // namespace inventory
