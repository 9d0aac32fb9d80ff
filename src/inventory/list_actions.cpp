#include "inventory/list_actions.h"

#include "base/text.h"
#include "base/yield.h"
#include "forms/desktop.h"
#include "values/addresses.h"

namespace inventory {

namespace {

QString SelectedText(const suite::ListItems& list, int subItem) {
    const suite::ListItem* item = list.SelectedItem();
    if (item == nullptr)
        return {};
    return subItem == 0 ? item->Text() : item->SubItems(subItem).value_or(QString());
}

void PutOnClipboard(const QString& text) {
    forms::ClearClipboard();
    forms::SetClipboardText(text);
}

} // namespace

void CopyValue(const suite::ListItems& list, int subItem) {
    const QString text = SelectedText(list, subItem);
    base::Yield();
    PutOnClipboard(text);
}

void CopyRow(const suite::ListItems& list, ListTextScope scope) {
    const suite::ListItem* item = list.SelectedItem();
    const QString text = item == nullptr ? QString() : RowText(list, item, scope);
    base::Yield();
    PutOnClipboard(text);
}

void CopyWholeList(const suite::ListItems& list, ListTextScope scope) { PutOnClipboard(WholeListText(list, scope)); }

void SearchFor(const forms::Form* owner, QString text) {
    text.replace(u'&', QStringLiteral("%26"));
    base::Yield();
    text += QStringLiteral(" Driver");
    base::Yield();
    forms::ShellExecuteA(owner, values::ServerAddresses().SearchSite + QStringLiteral("/?q=") + text);
    base::Yield();
}

void SearchByName(const forms::Form* owner, const suite::ListItems& list) {
    const QString name = SelectedText(list, 0);
    base::Yield();
    SearchFor(owner, name);
}

void SearchById(const forms::Form* owner, const suite::ListItems& list, int hardwareIdsColumn) {
    const QString ids = SelectedText(list, hardwareIdsColumn);
    const QString first = base::Split(ids, QStringLiteral("|")).value(0);
    base::Yield();
    base::Yield();
    SearchFor(owner, first.isEmpty() ? ids : first);
}

} // namespace inventory
