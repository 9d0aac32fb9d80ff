// What the popup menus do with the rows of a list: copying to the clipboard and searching the web. Each works on the
// list's selected row and shows no message; without one, an empty text is copied or searched for.
#pragma once

#include "inventory/list_text.h"

#include <QString>

namespace forms {
class Form;
}

namespace inventory {

// One text of the selected row, 0 being the row's own.
void CopyValue(const suite::ListItems& list, int subItem);
void CopyRow(const suite::ListItems& list, ListTextScope scope);
void CopyWholeList(const suite::ListItems& list, ListTextScope scope);

// Opens the search site for a text and " Driver"; "&" goes as "%26", nothing else is escaped.
void SearchFor(const forms::Form* owner, QString text);
void SearchByName(const forms::Form* owner, const suite::ListItems& list);
// The first of the row's hardware IDs; all of them where the first is empty.
void SearchById(const forms::Form* owner, const suite::ListItems& list, int hardwareIdsColumn);

} // namespace inventory
