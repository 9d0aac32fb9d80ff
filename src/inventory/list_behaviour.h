// What every list of the program does by itself: sorting by a clicked column, losing its selected row, and opening its
// popup menu.
#pragma once

#include <QString>

namespace forms {
class Form;
}

namespace suite {
class ListView;
}

namespace inventory {

// A click on a column, counted from 1: a new column starts ascending, the same one turns round. Yields between the
// steps.
void ClickColumn(suite::ListView& list, int column);

// Removes the selected row, scrolls the new selected one into view and selects it, yielding after each. Without a
// selected row nothing happens.
void RemoveSelected(suite::ListView& list);

// A key that went down in the list: Delete (46) removes the selected row, whatever the shift state; others do nothing.
void DeleteKey(suite::ListView& list, int keyCode);

// Gives a list all of this. The right button and the menu key open `menu` of FrmMenu there; an empty list says so
// instead. With an `owner` the menu's commands work on that window's list from then on.
void ConnectList(suite::ListView& list, const QString& menu, forms::Form* owner = nullptr);

} // namespace inventory
