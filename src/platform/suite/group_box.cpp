#include "suite/group_box.h"

#include "suite/accessible_controls.h"
#include "suite/paint_tools.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

namespace suite {

namespace {
constexpr double captionLeft = 10; // pixels at 96 dots per inch
}

GroupBox::GroupBox(QWidget* container, const QString& name, const QString& caption) : Control(container, name) {
    InstallAccessibleControls();
    SetCaption(caption);
}

void GroupBox::SetCaption(const QString& caption) {
    caption_ = caption;
    setAccessibleName(ShownCaption(caption));
    update();
}

void GroupBox::SetBackColor(base::Colour colour) {
    if (backColor_ == colour)
        return;
    backColor_ = colour;
    update();
}

void GroupBox::SetForeColor(base::Colour colour) {
    if (foreColor_ == colour)
        return;
    foreColor_ = colour;
    update();
    // Controls inside may read in the group's colour.
    const auto inside = findChildren<QWidget*>();
    for (QWidget* widget : inside)
        widget->update();
}

void GroupBox::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QColor back = ToQColor(backColor_), fore = ToQColor(foreColor_);
    painter.fillRect(rect(), back);
    const QString caption =
        fontMetrics().elidedText(ShownCaption(caption_), Qt::ElideRight, width() - 2 * Scaled(captionLeft));
    const int top = caption.isEmpty() ? 0 : fontMetrics().height() / 2;

    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Mix(back, fore, 0.35), Scaled(1)));
    const double half = Scaled(1) / 2.0;
    painter.drawRoundedRect(QRectF(0, top, width(), height() - top).adjusted(half, half, -half, -half), Scaled(4),
                            Scaled(4));
    painter.setRenderHint(QPainter::Antialiasing, false);
    if (caption.isEmpty())
        return;
    const QRect text(Scaled(captionLeft), 0, fontMetrics().horizontalAdvance(caption), fontMetrics().height());
    painter.fillRect(text.adjusted(-Scaled(4), 0, Scaled(4), 0), back);
    painter.setPen(isEnabled() ? fore : Mix(fore, back, 0.5));
    painter.drawText(text, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextDontClip, caption);
}

bool GroupBox::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip && toolTip().isEmpty()) {
        const QString caption = ShownCaption(caption_);
        const bool cut = fontMetrics().horizontalAdvance(caption) > width() - 2 * Scaled(captionLeft);
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), cut ? caption : QString(), this);
        return true;
    }
    return Control::event(event);
}

} // namespace suite
