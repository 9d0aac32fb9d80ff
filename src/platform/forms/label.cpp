#include "forms/label.h"

#include "forms/accessible.h"
#include "forms/tool_tip.h"
#include "forms/toolkit.h"

#include <QAccessible>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

namespace forms {

namespace {

// Three rows of dots, denser towards the lower right corner.
void DrawGrip(QPainter& painter, const QRect& area, const QColor& colour) {
    const int unit = qMax(1, qMin(area.width(), area.height()) / 8);
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column <= row; ++column)
            painter.fillRect(area.right() - unit * (2 * column + 2), area.bottom() - unit * (2 * (2 - row) + 2), unit,
                             unit, colour);
}

} // namespace

Label::Label(QWidget* container, const QString& name, const QString& caption) : Control(container, name) {
    InstallAccessibility();
    setFocusPolicy(Qt::NoFocus);
    SetCaption(caption);
}

void Label::SetCaption(const QString& caption) {
    if (caption_ == caption)
        return;
    caption_ = caption;
    TellName();
    update();
}

void Label::SetCaption(const QString& prefix, const QString& rest) {
    if (caption_.size() != prefix.size() + rest.size() || !caption_.startsWith(prefix) || !caption_.endsWith(rest))
        SetCaption(prefix + rest);
}

// The interface asks the label itself for its name; only one who listens is told of a new one, as some labels change
// with every piece of a transfer.
void Label::TellName() {
    if (!QAccessible::isActive())
        return;
    QAccessibleEvent changed(this, QAccessible::NameChanged);
    QAccessible::updateAccessibility(&changed);
}

void Label::SetBackColor(base::Colour colour) {
    if (backColor_ == colour)
        return;
    backColor_ = colour;
    update();
}

void Label::SetForeColor(base::Colour colour) {
    if (foreColor_ == colour)
        return;
    foreColor_ = colour;
    update();
}

void Label::SetAlignment(Alignment alignment) {
    alignment_ = alignment;
    update();
}

void Label::SetWordWrap(bool wrap) {
    wrap_ = wrap;
    update();
}

void Label::SetGrip(bool grip) {
    grip_ = grip;
    TellName();
    setCursor(grip ? Qt::SizeFDiagCursor : Qt::ArrowCursor);
    update();
}

QString Label::ShownText() const { return ShownCaption(caption_); }

void Label::paintEvent(QPaintEvent* event) {
    Q_UNUSED(event)
    QPainter painter(this);
    painter.fillRect(rect(), ToQColor(backColor_));
    QColor ink = ToQColor(foreColor_);
    if (!Enabled())
        ink.setAlphaF(0.5F);
    if (grip_) {
        DrawGrip(painter, rect(), ink);
        return;
    }
    painter.setPen(ink);
    const int horizontal = alignment_ == AlignLeft    ? Qt::AlignLeft
                           : alignment_ == AlignRight ? Qt::AlignRight
                                                      : Qt::AlignHCenter;
    if (wrap_)
        painter.drawText(rect(), horizontal | Qt::AlignTop | Qt::TextWordWrap, ShownText());
    else
        painter.drawText(rect(), horizontal | Qt::AlignVCenter | Qt::TextSingleLine,
                         fontMetrics().elidedText(ShownText(), Qt::ElideRight, width()));
}

bool Label::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip && toolTip().isEmpty() && !wrap_ && !grip_ &&
        fontMetrics().horizontalAdvance(ShownText()) > width()) {
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), PlainTip(ShownText()), this);
        return true;
    }
    return Control::event(event);
}

} // namespace forms
