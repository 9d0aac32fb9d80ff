#include "suite/list_header.h"

#include "suite/paint_tools.h"

#include <QGuiApplication>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QToolTip>

namespace suite {

namespace {

constexpr double margin = 6; // left and right of a caption, pixels at 96 dots per inch
constexpr double arrow = 7;  // width of the arrow

void DrawArrow(QPainter& painter, const QRectF& area, bool down, const QColor& ink) {
    QPainterPath path;
    const double tip = down ? area.bottom() : area.top();
    const double base = down ? area.top() : area.bottom();
    path.moveTo(area.left(), base);
    path.lineTo(area.right(), base);
    path.lineTo(area.center().x(), tip);
    path.closeSubpath();
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(path, ink);
    painter.restore();
}

} // namespace

ListHeader::ListHeader(QWidget* parent) : QHeaderView(Qt::Horizontal, parent) {
    setStretchLastSection(false);
    setHighlightSections(false);
    setMinimumSectionSize(0);
    setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    setFocusPolicy(Qt::TabFocus);
    viewport()->setAttribute(Qt::WA_Hover);
    connect(this, &QHeaderView::sectionClicked, this, &ListHeader::Clicked);
}

void ListHeader::SetColours(const QColor& back, const QColor& fore) {
    back_ = back;
    fore_ = fore;
    viewport()->update();
}

void ListHeader::SetSortMark(int column, bool descending) {
    if (sorted_ == column && descending_ == descending)
        return;
    sorted_ = column;
    descending_ = descending;
    viewport()->update();
}

QString ListHeader::Caption(int column) const {
    return model() ? model()->headerData(column, orientation(), Qt::DisplayRole).toString() : QString();
}

int ListHeader::CaptionWidth(int column) const {
    return fontMetrics().horizontalAdvance(Caption(column)) + Scaled(2 * margin + arrow + 4);
}

QSize ListHeader::sectionSizeFromContents(int column) const {
    return {CaptionWidth(column), fontMetrics().height() + Scaled(8)};
}

void ListHeader::paintSection(QPainter* painter, const QRect& rect, int column) const {
    const bool hovered = viewport()->underMouse() && rect.contains(viewport()->mapFromGlobal(QCursor::pos()));
    const bool pressed = hovered && (QGuiApplication::mouseButtons() & Qt::LeftButton) && isActiveWindow();
    painter->fillRect(rect, Mix(back_, fore_, pressed ? 0.26 : hovered ? 0.18 : 0.10));
    const QColor line = Mix(back_, fore_, 0.35);
    painter->fillRect(QRect(rect.left(), rect.bottom(), rect.width(), 1), line);
    painter->fillRect(QRect(rect.right(), rect.top() + Scaled(4), 1, rect.height() - 2 * Scaled(4)), line);

    QRect text = rect.adjusted(Scaled(margin), 0, -Scaled(margin), -1);
    if (column == sorted_ && text.width() > Scaled(arrow)) {
        const double width = Scaled(arrow), height = width * 0.57;
        DrawArrow(*painter, QRectF(text.right() + 1 - width, rect.center().y() - height / 2, width, height),
                  descending_, Mix(fore_, back_, 0.15));
        text.setRight(text.right() - Scaled(arrow + 4));
    }
    painter->setPen(fore_);
    painter->drawText(text, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                      fontMetrics().elidedText(Caption(column), Qt::ElideRight, text.width()));
    if (hasFocus() && column == focused_)
        DrawFocusRing(*painter, rect.adjusted(1, 1, -2, -2), Mix(fore_, back_, 0.2));
}

void ListHeader::paintEvent(QPaintEvent* event) {
    QHeaderView::paintEvent(event);
    // Behind the last column the strip goes on to the list's edge.
    const int end = length() - offset();
    if (end >= viewport()->width())
        return;
    QPainter painter(viewport());
    const QRect rest(end, 0, viewport()->width() - end, viewport()->height());
    painter.fillRect(rest, Mix(back_, fore_, 0.10));
    painter.fillRect(QRect(rest.left(), rest.bottom(), rest.width(), 1), Mix(back_, fore_, 0.35));
}

int ListHeader::NextShown(int from, int step) const {
    for (int column = from + step; column >= 0 && column < count(); column += step) {
        if (!isSectionHidden(column) && sectionSize(column) > 0)
            return column;
    }
    return from;
}

void ListHeader::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Left:
        focused_ = NextShown(focused_, -1);
        break;
    case Qt::Key_Right:
        focused_ = NextShown(focused_, 1);
        break;
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (focused_ >= 0 && focused_ < count() && !event->isAutoRepeat())
            Q_EMIT Clicked(focused_);
        return;
    default:
        event->ignore();
        return;
    }
    viewport()->update();
}

void ListHeader::focusInEvent(QFocusEvent* event) {
    QHeaderView::focusInEvent(event);
    if (focused_ < 0 || focused_ >= count())
        focused_ = NextShown(-1, 1);
    viewport()->update();
}

void ListHeader::focusOutEvent(QFocusEvent* event) {
    QHeaderView::focusOutEvent(event);
    viewport()->update();
}

bool ListHeader::viewportEvent(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        const auto* help = static_cast<QHelpEvent*>(event);
        const int column = logicalIndexAt(help->pos());
        if (column >= 0 && sectionSize(column) < CaptionWidth(column) - Scaled(arrow + 4))
            QToolTip::showText(help->globalPos(), Caption(column), viewport());
        else
            QToolTip::hideText();
        return true;
    }
    if (event->type() == QEvent::HoverMove || event->type() == QEvent::Leave)
        viewport()->update();
    return QHeaderView::viewportEvent(event);
}

} // namespace suite
