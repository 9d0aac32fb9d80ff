#include "inventory/list_behaviour.h"

#include "base/yield.h"
#include "suite/list_view.h"

#include <QPointer>

namespace inventory {

namespace {

constexpr int deleteKey = 46;

} // namespace

void ClickColumn(suite::ListView& list, int column) {
    const QPointer<suite::ListView> alive(&list);
    list.SetSorted(false);
    base::Yield();
    if (!alive)
        return;
    if (list.SortKey() == column - 1)
        list.SetSortOrder(list.SortOrder() == 0 ? 1 : 0);
    else
        list.SetSortOrder(0);
    list.SetSortKey(column - 1);
    base::Yield();
    if (!alive)
        return;
    list.SetSorted(true);
    base::Yield();
}

void RemoveSelected(suite::ListView& list) {
    const QPointer<suite::ListView> alive(&list);
    if (const suite::ListItem* selected = list.SelectedItem())
        list.ListItems().Remove(selected->Index());
    base::Yield();
    if (!alive)
        return;
    if (suite::ListItem* next = list.SelectedItem())
        next->EnsureVisible();
    base::Yield();
    if (!alive)
        return;
    if (suite::ListItem* next = list.SelectedItem())
        next->SetSelected(true);
    base::Yield();
}

void DeleteKey(suite::ListView& list, int keyCode) {
    if (keyCode == deleteKey)
        RemoveSelected(list);
}

} // namespace inventory
