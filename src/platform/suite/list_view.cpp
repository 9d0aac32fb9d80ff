#include "suite/list_view.h"

#include "forms/screen.h"
#include "suite/list_header.h"
#include "suite/list_model.h"
#include "suite/list_tree.h"
#include "suite/paint_tools.h"

#include <QEvent>
#include <QItemSelectionModel>
#include <QPalette>
#include <QPointer>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <algorithm>

namespace suite {

namespace {

// The longest text is nearly always among the texts with most characters, and measuring is what costs.
constexpr size_t measuredTexts = 200;

} // namespace

ListView::ListView(QWidget* container, const QString& name)
    : HostedControl(container, name), model_(new ListModel(items_, this)), tree_(new ListTree(items_, model_, this)),
      header_(new ListHeader(tree_)) {
    tree_->setHeader(header_);
    // A tree that does not sort by itself makes its header deaf.
    header_->setSectionsClickable(true);
    ConnectTree();
    items_.SetObserver(this);
    Host(tree_);
}

ListView::~ListView() {
    items_.SetObserver(nullptr);
    following_ = true;
    // Before the rows that it shows. It loses the keyboard while it goes, and must not report that any more.
    tree_->removeEventFilter(this);
    delete tree_;
}

void ListView::ConnectTree() {
    connect(tree_->selectionModel(), &QItemSelectionModel::selectionChanged, this, &ListView::TakeSelection);
    connect(header_, &ListHeader::Clicked, this, [this](int column) { Q_EMIT ColumnClick(column + 1); });
    connect(header_, &QHeaderView::sectionResized, this, [this](int column, int, int pixels) {
        if (!following_)
            items_.SetColumnWidth(column + 1, forms::ToTwips(pixels));
    });
    connect(header_, &QHeaderView::sectionHandleDoubleClicked, this, [this](int column) {
        SetColumnWidthPixels(column, autoSize);
        if (column == 0 && iconSize_ > 0)
            items_.SetColumnWidth(1, items_.Column(1).Width + forms::ToTwips(iconSize_));
    });
    connect(tree_, &ListTree::Pressed, this, [this](Qt::MouseButton button, Qt::KeyboardModifiers keys, QPoint place) {
        const QPoint own = ToControl(place);
        Q_EMIT MouseDown(forms::ButtonOf(button), forms::ShiftOf(keys), own.x(), own.y());
    });
    connect(tree_, &ListTree::Moved, this, [this](Qt::MouseButtons buttons, Qt::KeyboardModifiers keys, QPoint place) {
        const QPoint own = ToControl(place);
        Q_EMIT MouseMove(forms::ButtonsOf(buttons), forms::ShiftOf(keys), own.x(), own.y());
    });
    connect(tree_, &ListTree::Released, this, &ListView::TellRelease);
    connect(tree_, &ListTree::RowDoubleClicked, this, &ListView::DblClick);
    // A popup asked for by key is a released right button at the selected row.
    connect(tree_, &ListTree::PopupAsked, this, [this](QPoint place) {
        const QPoint own = ToControl(place);
        Q_EMIT MouseUp(forms::RightButton, 0, own.x(), own.y());
    });
}

void ListView::TellRelease(Qt::MouseButton button, Qt::KeyboardModifiers keys, QPoint place) {
    const QPointer<ListView> alive(this);
    const QPoint own = ToControl(place);
    Q_EMIT MouseUp(forms::ButtonOf(button), forms::ShiftOf(keys), own.x(), own.y());
    if (alive && button == Qt::LeftButton)
        Q_EMIT Click();
}

QPoint ListView::ToControl(const QPoint& place) const { return tree_->viewport()->mapTo(this, place); }

void ListView::SetIconSize(int pixels) {
    if (iconSize_ == pixels)
        return;
    iconSize_ = pixels;
    tree_->SetIconSize(pixels);
}

void ListView::SetSorted(bool sorted) {
    items_.SetSorted(sorted);
    ShowSortMark();
}

void ListView::SetSortOrder(int order) {
    items_.SetSortOrder(order == 0 ? suite::SortOrder::Ascending : suite::SortOrder::Descending);
}

int ListView::ContentWidth(int column) const {
    std::vector<QString> texts;
    texts.reserve(size_t(items_.Count()));
    for (int row = 1; row <= items_.Count(); ++row)
        texts.push_back(items_.Item(row)->CellText(column));
    if (texts.size() > measuredTexts) {
        const auto longer = [](const QString& a, const QString& b) { return a.size() > b.size(); };
        std::nth_element(texts.begin(), texts.begin() + measuredTexts, texts.end(), longer);
        texts.resize(measuredTexts);
    }
    const QFontMetrics metrics = tree_->fontMetrics();
    int widest = 0;
    for (const QString& text : texts)
        widest = std::max(widest, metrics.horizontalAdvance(text));
    // Advances are rounded; the pixel more keeps a text from being elided for a fraction. The first column also has
    // room for a gap between icon and text, with or without icons: the icon alone must be the difference.
    const int gap = column == 0 ? ListTree::IconGap() : 0;
    return widest > 0 ? widest + ListTree::CellMargins() + 1 + gap : 0;
}

int ListView::RoomForLastColumn() const {
    int room = tree_->width();
    for (int column = 0; column + 1 < items_.ColumnCount(); ++column)
        room -= header_->sectionSize(column);
    const int rowsShown = std::max(1, (tree_->height() - header_->sizeHint().height()) / tree_->RowHeight());
    if (items_.Count() > rowsShown)
        room -= tree_->verticalScrollBar()->sizeHint().width();
    return room;
}

void ListView::SetColumnWidthPixels(int column, int width) {
    if (column < 0 || column >= items_.ColumnCount())
        return;
    if (width == autoSize || width == autoSizeUseHeader) {
        const bool useHeader = width == autoSizeUseHeader;
        width = ContentWidth(column);
        if (useHeader)
            width = std::max(width, header_->CaptionWidth(column));
        if (useHeader && column == items_.ColumnCount() - 1)
            width = std::max(width, RoomForLastColumn());
    }
    items_.SetColumnWidth(column + 1, forms::ToTwips(std::max(0, width)));
}

void ListView::Refresh() {
    tree_->viewport()->update();
    header_->viewport()->update();
    HostedControl::Refresh();
}

void ListView::ApplyColours() {
    const QColor back = ToQColor(BackColor()), fore = ToQColor(ForeColor());
    tree_->setPalette(ControlPalette(back, fore));
    header_->SetColours(back, fore);
}

void ListView::showEvent(QShowEvent* event) {
    HostedControl::showEvent(event);
    CatchUp();
}

void ListView::changeEvent(QEvent* event) {
    HostedControl::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        tree_->ForgetIcons();
}

bool ListView::eventFilter(QObject* watched, QEvent* event) {
    // The header's arrow and the list's selection look different in a window that is not active.
    if (watched == tree_ && (event->type() == QEvent::FocusOut || event->type() == QEvent::WindowActivate ||
                             event->type() == QEvent::WindowDeactivate))
        tree_->viewport()->update();
    return HostedControl::eventFilter(watched, event);
}

bool ListView::Live() {
    if (isVisible()) {
        CatchUp();
        return true;
    }
    if (model_->Attached()) {
        const QScopedValueRollback following(following_, true);
        model_->Detach();
    }
    return false;
}

void ListView::CatchUp() {
    if (model_->Attached())
        return;
    const QScopedValueRollback following(following_, true);
    model_->Attach();
    ShowSelection();
    if (tree_->currentIndex().isValid())
        tree_->scrollTo(tree_->currentIndex());
}

void ListView::RowInserted(int row) {
    // Attaching anew, from Live(), has taken the row in already.
    const bool wasAttached = model_->Attached();
    if (!Live() || !wasAttached)
        return;
    const QScopedValueRollback following(following_, true);
    model_->RowInserted(row);
}

void ListView::RowRemoved(int row) {
    const bool wasAttached = model_->Attached();
    if (!Live() || !wasAttached)
        return;
    const QScopedValueRollback following(following_, true);
    model_->RowRemoved(row);
    ShowSelection();
}

void ListView::RowChanged(const ListItem&) {
    if (Live())
        tree_->viewport()->update();
}

void ListView::RowsReset() {
    ShowSortMark();
    if (!Live())
        return;
    const QScopedValueRollback following(following_, true);
    const int scrolled = tree_->verticalScrollBar()->value();
    model_->Reordered();
    ShowSelection();
    tree_->verticalScrollBar()->setValue(scrolled);
}

void ListView::ColumnsChanged() {
    const QScopedValueRollback following(following_, true);
    model_->ColumnsChanged();
    for (int column = 0; column < items_.ColumnCount(); ++column)
        ShowColumnWidth(column);
    ShowSelection();
}

void ListView::ColumnWidthChanged(int column) {
    const QScopedValueRollback following(following_, true);
    ShowColumnWidth(column);
}

void ListView::ShowColumnWidth(int column) {
    const int pixels = forms::ToPixels(items_.Column(column + 1).Width);
    // A column without width is hidden, so that no mouse can drag it open.
    header_->setSectionHidden(column, pixels == 0);
    if (pixels > 0)
        header_->resizeSection(column, pixels);
}

void ListView::ShowSortMark() {
    header_->SetSortMark(items_.Sorted() ? items_.SortKey() : -1, items_.SortOrder() == suite::SortOrder::Descending);
}

void ListView::SelectionChanged() {
    if (!following_ && Live())
        ShowSelection();
}

void ListView::ShowSelection() {
    const QScopedValueRollback following(following_, true);
    const ListItem* selected = items_.SelectedItem();
    const QModelIndex index = selected ? model_->index(selected->Index() - 1, 0) : QModelIndex();
    if (index.isValid())
        tree_->selectionModel()->setCurrentIndex(index,
                                                 QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    else
        tree_->selectionModel()->clear();
}

void ListView::TakeSelection() {
    if (following_)
        return;
    const QScopedValueRollback following(following_, true);
    const QModelIndexList rows = tree_->selectionModel()->selectedRows();
    items_.SetSelectedItem(rows.isEmpty() ? nullptr : items_.Item(rows.first().row() + 1));
}

void ListView::IconsChanged() { tree_->ForgetIcons(); }

void ListView::EnsureVisible(const ListItem& item) {
    if (Live())
        tree_->scrollTo(model_->index(item.Index() - 1, 0));
}

} // namespace suite
