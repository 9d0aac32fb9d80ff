#include "inventory/list_behaviour.h"

#include "base/yield.h"
#include "forms/dialogs.h"
#include "inventory/frm_menu.h"
#include "suite/list_view.h"

namespace inventory {

namespace {

constexpr int deleteKey = 46;

void OpenPopup(const suite::ListView& list, const QPoint& place, const QString& menu, forms::Form* owner) {
    if (list.ListItems().Count() == 0) {
        forms::MsgBox(QStringLiteral("The List Is Empty."));
        return;
    }
    if (owner != nullptr)
        SetActiveListForm(owner);
    PopupListMenu(menu, list.mapToGlobal(place));
}

} // namespace

void ClickColumn(suite::ListView& list, int column) {
    list.SetSorted(false);
    base::Yield();
    if (list.SortKey() == column - 1)
        list.SetSortOrder(list.SortOrder() == 0 ? 1 : 0);
    else
        list.SetSortOrder(0);
    list.SetSortKey(column - 1);
    base::Yield();
    list.SetSorted(true);
    base::Yield();
}

void RemoveSelected(suite::ListView& list) {
    if (const suite::ListItem* selected = list.SelectedItem())
        list.ListItems().Remove(selected->Index());
    base::Yield();
    if (suite::ListItem* next = list.SelectedItem())
        next->EnsureVisible();
    base::Yield();
    if (suite::ListItem* next = list.SelectedItem())
        next->SetSelected(true);
    base::Yield();
}

void DeleteKey(suite::ListView& list, int keyCode) {
    if (keyCode == deleteKey)
        RemoveSelected(list);
}

void ConnectList(suite::ListView& list, const QString& menu, forms::Form* owner) {
    QObject::connect(&list, &suite::ListView::ColumnClick, &list, [&list](int column) { ClickColumn(list, column); });
    QObject::connect(&list, &suite::ListView::KeyDown, &list, [&list](int keyCode) { DeleteKey(list, keyCode); });
    QObject::connect(&list, &suite::ListView::MouseUp, &list,
                     [&list, menu, owner](int button, int, double x, double y) {
                         if (button == forms::RightButton)
                             OpenPopup(list, QPoint(int(x), int(y)), menu, owner);
                     });
}

} // namespace inventory
