#include "inventory/column_sizes.h"

#include "base/yield.h"
#include "forms/form.h"
#include "forms/forms.h"
#include "forms/screen.h"
#include "suite/list_view.h"

#include <QFontMetrics>

namespace inventory {

namespace {

constexpr double captionRoom = 600; // twips beside a caption: margins and the sort arrow

// In the font of the main window, whatever window the list stands on; a list without any measures by itself.
double CaptionWidth(const suite::ListView& list, const QString& caption) {
    const forms::Form* window = forms::Forms::Instance().Find(QStringLiteral("FrmMain"));
    if (!window)
        window = list.ParentForm();
    return window ? window->TextWidth(caption) : forms::ToTwips(list.fontMetrics().horizontalAdvance(caption));
}

} // namespace

void AutoSizeColumns(suite::ListView& list) {
    suite::ListItems& items = list.ListItems();
    const double iconTwips = list.IconSize() * forms::TwipsPerPixel();
    for (int column = 1; column <= items.ColumnCount(); ++column) {
        list.SetColumnWidthPixels(column - 1, suite::autoSizeUseHeader);
        base::Yield();
        if (column == 1)
            items.SetColumnWidth(column, items.Column(column).Width + iconTwips);
        const double least = CaptionWidth(list, items.Column(column).Caption) + captionRoom;
        if (items.Column(column).Width < least)
            items.SetColumnWidth(column, least);
        base::Yield();
    }
    list.Refresh();
}

void AutoSizeColumnsButLast(suite::ListView& list) {
    for (int column = 0; column < list.ListItems().ColumnCount() - 1; ++column) {
        list.SetColumnWidthPixels(column, suite::autoSizeUseHeader);
        base::Yield();
    }
    list.Refresh();
    base::Yield();
}

} // namespace inventory
