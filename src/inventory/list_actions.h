// What the popup menus do with the rows of a list: copying to the clipboard, searching the web, removing. Each works on
// the list's selected row and shows no message; without one, an empty text is copied or searched for.
#pragma once

#include <QString>

namespace forms {
class Form;
}

namespace suite {
class ListItems;
class ListView;
} // namespace suite

namespace inventory {

// The sub-items that a family of commands takes from one kind of list; 0 where it has none.
struct ListColumns {
    int Manufacturer = 1;
    int HardwareIds = 5;
    int Error = 2;
    int Class = 3;
    int DriverVersion = 4;
    // Columns at the end that rows and headers leave out.
    int HiddenColumns = 0;
};

inline constexpr ListColumns mainListColumns{};
inline constexpr ListColumns lookupListColumns{1, 2, 0, 0, 0, 1};
inline constexpr ListColumns improveListColumns{1, 2, 0, 0, 0, 0};

// One text of the selected row, 0 being the row's own.
void CopyValue(const suite::ListItems& list, int subItem);
void CopyRow(const suite::ListItems& list, const ListColumns& columns);
void CopyWholeList(const suite::ListItems& list, const ListColumns& columns);

// Opens the search site for a text and " Driver"; "&" goes as "%26", nothing else is escaped.
void SearchFor(const forms::Form* owner, QString text);
void SearchByName(const forms::Form* owner, const suite::ListItems& list);
// The first of the row's hardware IDs; all of them where the first is empty.
void SearchById(const forms::Form* owner, const suite::ListItems& list, const ListColumns& columns);

} // namespace inventory
