#include "inventory/list_text.h"

#include "base/text.h"
#include "base/yield.h"

#include <QStringList>
#include <algorithm>

namespace inventory {

namespace {

int LastCaption(const suite::ListItems& list, ListTextScope scope) {
    return std::max(0, list.ColumnCount() - (scope == ListTextScope::WholeRow ? 0 : 1));
}

// One step more than there are sub-items where the whole row is wanted; that step finds nothing and changes nothing.
int LastSubItem(const suite::ListItems& list, ListTextScope scope) {
    return std::max(0, list.ColumnCount() - (scope == ListTextScope::WholeRow ? 0 : 2));
}

// `row` counts from 1. The item is fetched at each step, since each step yields.
QString TextOfRow(const suite::ListItems& list, int row, const suite::ListItem* item, ListTextScope scope) {
    QString text = item->Text();
    base::Yield();
    for (int i = 1; i <= LastSubItem(list, scope); ++i) {
        if (list.Item(row) != item)
            break;
        if (const std::optional<QString> value = item->SubItems(i))
            text += QLatin1Char(',') + *value;
        base::Yield();
    }
    return text;
}

} // namespace

QString RowText(const suite::ListItems& list, const suite::ListItem* item, ListTextScope scope) {
    return item == nullptr ? QString() : TextOfRow(list, item->Index(), item, scope);
}

QString WholeListText(const suite::ListItems& list, ListTextScope scope) {
    const QString lineBreak = QStringLiteral("\r\n");
    QStringList captions;
    for (int i = 1; i <= LastCaption(list, scope); ++i)
        captions.append(base::Trim(list.Column(i).Caption));
    QString text = captions.join(QLatin1Char(','));
    base::Yield();
    for (int row = 1; row <= list.Count(); ++row) {
        text += lineBreak + TextOfRow(list, row, list.Item(row), scope);
        base::Yield();
    }
    return text + lineBreak;
}

} // namespace inventory
