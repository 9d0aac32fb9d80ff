#include "suite/tab_strip.h"

#include "suite/paint_tools.h"
#include "suite/tab_control.h"

#include <QHelpEvent>
#include <QHoverEvent>
#include <QPainter>
#include <QPainterPath>
#include <QToolTip>

namespace suite {

namespace {

// Rounded above, open below.
QPainterPath TabShape(const QRectF& area, double radius) {
    QPainterPath path;
    path.moveTo(area.bottomLeft());
    path.lineTo(area.left(), area.top() + radius);
    path.quadTo(area.topLeft(), QPointF(area.left() + radius, area.top()));
    path.lineTo(area.right() - radius, area.top());
    path.quadTo(area.topRight(), QPointF(area.right(), area.top() + radius));
    path.lineTo(area.bottomRight());
    return path;
}

} // namespace

TabStrip::TabStrip(const TabPaintManager& look, QWidget* parent) : QTabBar(parent), look_(look) {
    setDrawBase(false);
    setExpanding(false);
    setUsesScrollButtons(false);
    setElideMode(Qt::ElideRight);
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::TabFocus);
}

void TabStrip::Relayout() {
    setFont(look_.Font());
    // A change of font is what makes the bar measure its tabs anew; the metrics may have changed without one.
    QEvent changed(QEvent::FontChange);
    changeEvent(&changed);
    updateGeometry();
    update();
}

int TabStrip::SidePadding() const { return look_.ItemWidth() / 2; }

QSize TabStrip::tabSizeHint(int index) const {
    const QFontMetrics metrics(look_.Font());
    const int inner = std::max(metrics.height(), look_.ItemHeight());
    const int height = inner + Scaled(look_.Enlarged() ? 10 : 6);
    return {metrics.horizontalAdvance(ShownCaption(tabText(index))) + 2 * SidePadding(), height};
}

QSize TabStrip::minimumTabSizeHint(int index) const {
    const QFontMetrics metrics(look_.Font());
    return {metrics.horizontalAdvance(QStringLiteral("WW…")) + 2 * SidePadding(), tabSizeHint(index).height()};
}

void TabStrip::DrawTab(QPainter& painter, int index) const {
    const TabColorSet& colours = *look_.ColorSet();
    const bool selected = index == currentIndex();
    const bool hovered = index == hovered_ && isEnabled();
    const QColor face = ToQColor(selected  ? colours.ButtonSelected
                                 : hovered ? colours.ButtonHighlighted
                                           : colours.ButtonNormal);
    const QColor text = ToQColor(selected  ? colours.SelectedText
                                 : hovered ? colours.HighlightText
                                           : colours.NormalText);
    // A tab at rest stands lower and ends above the pane's frame; the selected one flows into the pane.
    QRect area = tabRect(index);
    area.setRight(area.right() - Scaled(2));
    if (!selected)
        area.setTop(area.top() + Scaled(2));
    const QRectF outline = QRectF(area).adjusted(0.5, 0.5, -0.5, selected ? 0.5 : -0.5);
    const QPainterPath shape = TabShape(outline, Scaled(4));
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(shape, face);
    painter.setPen(QPen(ToQColor(colours.FrameBorder), 1));
    painter.drawPath(shape);
    if (selected) {
        // The light of the selected tab's upper edge.
        painter.fillRect(
            QRectF(outline.left() + Scaled(4), outline.top() + 0.5, outline.width() - 2 * Scaled(4), Scaled(2)),
            ToQColor(colours.BorderHighlight));
    }
    painter.setRenderHint(QPainter::Antialiasing, false);

    const QRect room = area.adjusted(SidePadding() / 2, 0, -SidePadding() / 2, 0);
    painter.setFont(look_.Font());
    painter.setPen(isEnabled() ? text : Mix(text, face, 0.5));
    const QFontMetrics metrics(look_.Font());
    painter.drawText(room, Qt::AlignCenter | Qt::TextSingleLine,
                     metrics.elidedText(ShownCaption(tabText(index)), Qt::ElideRight, room.width()));
    if (selected && hasFocus())
        DrawFocusRing(painter, area.adjusted(Scaled(3), Scaled(4), -Scaled(3), -Scaled(2)), Mix(text, face, 0.2));
}

void TabStrip::paintEvent(QPaintEvent*) {
    const TabColorSet& colours = *look_.ColorSet();
    QPainter painter(this);
    QLinearGradient ground(0, 0, 0, height());
    ground.setColorAt(0, ToQColor(colours.HeaderFaceLight));
    ground.setColorAt(1, ToQColor(colours.HeaderFaceDark));
    painter.fillRect(rect(), ground);
    for (int index = 0; index < count(); ++index) {
        if (index != currentIndex())
            DrawTab(painter, index);
    }
    // The pane's upper frame line, open below the selected tab, which is drawn over it.
    painter.fillRect(QRect(0, height() - 1, width(), 1), ToQColor(colours.FrameBorder));
    if (currentIndex() >= 0)
        DrawTab(painter, currentIndex());
}

bool TabStrip::event(QEvent* event) {
    if (event->type() == QEvent::HoverMove || event->type() == QEvent::HoverEnter) {
        const int at = tabAt(static_cast<QHoverEvent*>(event)->position().toPoint());
        if (at != hovered_) {
            hovered_ = at;
            update();
        }
    } else if (event->type() == QEvent::HoverLeave) {
        hovered_ = -1;
        update();
    } else if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) {
        update();
    } else if (event->type() == QEvent::ToolTip) {
        const auto* help = static_cast<QHelpEvent*>(event);
        const int at = tabAt(help->pos());
        const bool cut = at >= 0 && tabRect(at).width() < tabSizeHint(at).width();
        QToolTip::showText(help->globalPos(), cut ? ShownCaption(tabText(at)) : QString(), this);
        return true;
    }
    return QTabBar::event(event);
}

} // namespace suite
