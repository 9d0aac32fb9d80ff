#include "suite/list_tree.h"

#include "suite/icon_glyphs.h"
#include "suite/icon_store.h"
#include "suite/list_model.h"
#include "suite/paint_tools.h"

#include <QHelpEvent>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QStyledItemDelegate>
#include <QToolTip>

namespace suite {

namespace {

constexpr double margin = 6; // left and right of a cell's text, pixels at 96 dots per inch

// All rows are equally high; painting is the tree's own.
class RowDelegate : public QStyledItemDelegate {
  public:
    explicit RowDelegate(ListTree* tree) : QStyledItemDelegate(tree), tree_(tree) {}
    QSize sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const override { return {1, tree_->RowHeight()}; }

  private:
    ListTree* tree_;
};

// IDs are long and joined by bars: a line may end behind each bar.
QString TipText(const QString& text) {
    QString tip = text.toHtmlEscaped();
    tip.replace(QLatin1Char('|'), QStringLiteral("|\u200B"));
    return QStringLiteral("<qt>%1</qt>").arg(tip);
}

} // namespace

ListTree::ListTree(const ListItems& items, ListModel* model, QWidget* parent)
    : QTreeView(parent), items_(items), model_(model) {
    setFrameShape(QFrame::NoFrame);
    setRootIsDecorated(false);
    setItemsExpandable(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    setItemDelegate(new RowDelegate(this));
    setTabKeyNavigation(false);
    setModel(model);
}

int ListTree::CellMargins() { return 2 * Scaled(margin); }

int ListTree::IconGap() { return Scaled(1); }

int ListTree::RowHeight() const {
    return std::max(fontMetrics().height() + Scaled(5), std::max(0, iconSize_) + Scaled(4));
}

int ListTree::sizeHintForColumn(int) const { return 0; }

void ListTree::SetIconSize(int pixels) {
    iconSize_ = pixels;
    ForgetIcons();
    scheduleDelayedItemsLayout();
}

void ListTree::ForgetIcons() {
    icons_.clear();
    viewport()->update();
}

QRect ListTree::TextRect(const QRect& cell, int column) const {
    QRect text = cell.adjusted(Scaled(margin), 0, -Scaled(margin), 0);
    if (column == 0 && iconSize_ > 0)
        text.setLeft(text.left() + iconSize_ + IconGap());
    return text;
}

void ListTree::DrawIcon(QPainter& painter, const QRect& cell, qint32 id) const {
    const IconStore* store = items_.Icons();
    if (!store || iconSize_ <= 0)
        return;
    auto cached = icons_.constFind(id);
    if (cached == icons_.constEnd()) {
        const auto icon = store->Icon(id);
        cached = icons_.insert(id, icon ? GlyphPixmap(GlyphOf(*icon), iconSize_) : QPixmap());
    }
    if (!cached->isNull())
        painter.drawPixmap(cell.left() + Scaled(margin / 2), cell.top() + (cell.height() - iconSize_) / 2, *cached);
}

void ListTree::drawRow(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
    const ListItem* item = model_->ItemAt(index);
    if (!item)
        return;
    const bool selected = selectionModel()->isRowSelected(index.row());
    const bool active = hasFocus() && isActiveWindow();
    const QColor base = palette().color(QPalette::Base);
    const QColor text = palette().color(QPalette::Text);
    const QColor highlight = palette().color(QPalette::Active, QPalette::Highlight);
    const QColor back = !selected ? base : active ? highlight : Mix(base, highlight, 0.35);
    const QColor selectedInk =
        active ? palette().color(QPalette::Active, QPalette::HighlightedText) : ReadableOn(back, text);
    if (selected)
        painter->fillRect(option.rect, back);

    for (int column = 0; column < items_.ColumnCount(); ++column) {
        QRect cell(columnViewportPosition(column), option.rect.top(), columnWidth(column), option.rect.height());
        if (cell.width() <= 0 || cell.right() < 0 || cell.left() > viewport()->width())
            continue;
        painter->save();
        painter->setClipRect(cell);
        if (column == 0)
            DrawIcon(*painter, cell, item->Icon());
        const auto colour = item->CellForeColor(column);
        painter->setPen(selected ? ReadableOn(back, selectedInk) : colour ? ToQColor(*colour) : text);
        const QRect room = TextRect(cell, column);
        painter->drawText(room, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                          fontMetrics().elidedText(item->CellText(column), Qt::ElideRight, room.width()));
        painter->restore();
    }
    // Muted as it is without the keyboard, the fill alone would be lost on a dark list.
    if (selected && !active)
        DrawFocusRing(*painter, option.rect.intersected(viewport()->rect()), DistinctOn(base, highlight, text));
    if (active && currentIndex().row() == index.row())
        DrawFocusRing(*painter, option.rect.intersected(viewport()->rect()),
                      selected ? selectedInk : Mix(text, base, 0.3));
}

// Without rows there is no row to carry the ring, and the list must still show that it has the keyboard.
void ListTree::paintEvent(QPaintEvent* event) {
    QTreeView::paintEvent(event);
    if (currentIndex().isValid() || !hasFocus() || !isActiveWindow())
        return;
    QPainter painter(viewport());
    DrawFocusRing(painter, viewport()->rect(),
                  Mix(palette().color(QPalette::Text), palette().color(QPalette::Base), 0.3));
}

void ListTree::mousePressEvent(QMouseEvent* event) {
    const QPointer<ListTree> alive(this);
    QTreeView::mousePressEvent(event);
    if (alive)
        Q_EMIT Pressed(event->button(), event->modifiers(), event->position().toPoint());
}

void ListTree::mouseMoveEvent(QMouseEvent* event) {
    const QPointer<ListTree> alive(this);
    QTreeView::mouseMoveEvent(event);
    if (alive)
        Q_EMIT Moved(event->buttons(), event->modifiers(), event->position().toPoint());
}

void ListTree::mouseReleaseEvent(QMouseEvent* event) {
    const QPointer<ListTree> alive(this);
    QTreeView::mouseReleaseEvent(event);
    if (alive)
        Q_EMIT Released(event->button(), event->modifiers(), event->position().toPoint());
}

void ListTree::mouseDoubleClickEvent(QMouseEvent* event) {
    const QPointer<ListTree> alive(this);
    const bool onRow = event->button() == Qt::LeftButton && indexAt(event->position().toPoint()).isValid();
    QTreeView::mouseDoubleClickEvent(event);
    if (alive && onRow)
        Q_EMIT RowDoubleClicked();
}

// The mouse's menu comes with the button's release; the keyboard's is asked for in keyPressEvent on every platform
// alike.
void ListTree::contextMenuEvent(QContextMenuEvent* event) { event->accept(); }

QPoint ListTree::PopupPlace() const {
    const QRect row = currentIndex().isValid() ? visualRect(currentIndex()) : QRect();
    const QRect shown = row.intersected(viewport()->rect());
    return shown.isValid() ? QPoint(std::max(0, shown.left()) + Scaled(8), shown.bottom()) : QPoint(0, 0);
}

// Rows are found by their names; the toolkit would search the column that was clicked last.
void ListTree::keyboardSearch(const QString& typed) {
    const QModelIndex current = currentIndex();
    if (current.column() > 0)
        selectionModel()->setCurrentIndex(current.siblingAtColumn(0), QItemSelectionModel::NoUpdate);
    QTreeView::keyboardSearch(typed);
}

// A list that gets the keyboard without a selection has a row with a ring and nothing chosen: the first key chooses it,
// where the toolkit would go on to the next. True if it did.
bool ListTree::SelectCurrent() {
    if (!currentIndex().isValid() || selectionModel()->hasSelection())
        return false;
    selectionModel()->select(currentIndex(), QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    return true;
}

void ListTree::keyPressEvent(QKeyEvent* event) {
    const bool shiftF10 = event->key() == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier;
    if (event->key() == Qt::Key_Menu || shiftF10) {
        event->accept();
        if (event->isAutoRepeat())
            return;
        SelectCurrent();
        if (currentIndex().isValid())
            scrollTo(currentIndex());
        Q_EMIT PopupAsked(PopupPlace());
        return;
    }
    // What is copied is the program's business: the toolkit's own copying of a cell is left out.
    if (event->matches(QKeySequence::Copy)) {
        event->ignore();
        return;
    }
    const bool step = event->key() == Qt::Key_Down || event->key() == Qt::Key_Up;
    if (step && SelectCurrent())
        return;
    QTreeView::keyPressEvent(event);
}

bool ListTree::ShowCellTip(const QPoint& place, const QPoint& globalPlace) {
    const QModelIndex index = indexAt(place);
    const ListItem* item = model_->ItemAt(index);
    if (!item)
        return false;
    const QRect cell = visualRect(index);
    const QString text = item->CellText(index.column());
    const QRect room = TextRect(cell, index.column());
    if (fontMetrics().horizontalAdvance(text) <= room.width() && room.right() <= viewport()->width())
        return false;
    QToolTip::showText(globalPlace, TipText(text), viewport(), cell);
    return true;
}

bool ListTree::viewportEvent(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        const auto* help = static_cast<QHelpEvent*>(event);
        if (!ShowCellTip(help->pos(), help->globalPos()))
            QToolTip::hideText();
        return true;
    }
    return QTreeView::viewportEvent(event);
}

} // namespace suite
