#include "suite/hosted_control.h"

#include "forms/tool_tip.h"
#include "suite/paint_tools.h"

#include <QEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPalette>
#include <QPointer>
#include <QToolTip>

namespace suite {

HostedControl::HostedControl(QWidget* container, const QString& name) : forms::Control(container, name) {}

void HostedControl::Host(QWidget* inner) {
    inner_ = inner;
    setFocusProxy(inner);
    inner->installEventFilter(this);
    inner->setGeometry(rect());
    inner->show();
    ApplyColours();
}

void HostedControl::SetBackColor(base::Colour colour) {
    if (backColor_ == colour)
        return;
    backColor_ = colour;
    ApplyColours();
}

void HostedControl::SetForeColor(base::Colour colour) {
    if (foreColor_ == colour)
        return;
    foreColor_ = colour;
    ApplyColours();
}

void HostedControl::ApplyColours() {
    if (inner_)
        inner_->setPalette(ControlPalette(ToQColor(backColor_), ToQColor(foreColor_)));
}

void HostedControl::SetAccessibleLabel(const QString& label) {
    setAccessibleName(label);
    if (inner_)
        inner_->setAccessibleName(label);
}

void HostedControl::Refresh() {
    if (inner_)
        inner_->update();
    Control::Refresh();
}

QString HostedControl::TipText() const {
    const QString text = ShownText();
    return fontMetrics().horizontalAdvance(text) > TextRoom() ? text : QString();
}

bool HostedControl::eventFilter(QObject* watched, QEvent* event) {
    const QPointer<QObject> alive(this);
    switch (event->type()) {
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
        RaiseKeyEvents(static_cast<QKeyEvent*>(event));
        break;
    case QEvent::MouseButtonPress: {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        Q_EMIT MouseDown(forms::ButtonOf(mouse->button()), forms::ShiftOf(mouse->modifiers()), mouse->position().x(),
                         mouse->position().y());
        break;
    }
    case QEvent::FocusIn:
        if (static_cast<QFocusEvent*>(event)->reason() != Qt::PopupFocusReason)
            Q_EMIT GotFocus();
        break;
    case QEvent::FocusOut:
        if (static_cast<QFocusEvent*>(event)->reason() != Qt::PopupFocusReason)
            Q_EMIT LostFocus();
        break;
    case QEvent::ToolTip:
        if (watched == inner_ && toolTip().isEmpty()) {
            QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), forms::PlainTip(TipText()), inner_);
            return true;
        }
        break;
    default:
        break;
    }
    return !alive || Control::eventFilter(watched, event);
}

void HostedControl::RaiseKeyEvents(QKeyEvent* event) {
    const QPointer<QObject> alive(this);
    const int code = forms::KeyCode(event->key());
    const int shift = forms::ShiftOf(event->modifiers());
    if (event->type() == QEvent::KeyRelease) {
        Q_EMIT KeyUp(code, shift);
        return;
    }
    Q_EMIT KeyDown(code, shift);
    const QString text = event->text();
    if (alive && !text.isEmpty())
        Q_EMIT KeyPress(text[0].unicode());
}

void HostedControl::resizeEvent(QResizeEvent* event) {
    Control::resizeEvent(event);
    if (inner_)
        inner_->setGeometry(rect());
}

void HostedControl::changeEvent(QEvent* event) {
    Control::changeEvent(event);
    // System colours may stand behind the two colours.
    if (event->type() == QEvent::ApplicationPaletteChange)
        ApplyColours();
}

void HostedControl::mousePressEvent(QMouseEvent* event) { event->accept(); }
void HostedControl::mouseMoveEvent(QMouseEvent* event) { event->accept(); }
void HostedControl::mouseReleaseEvent(QMouseEvent* event) { event->accept(); }
void HostedControl::mouseDoubleClickEvent(QMouseEvent* event) { event->accept(); }
void HostedControl::keyPressEvent(QKeyEvent* event) { event->ignore(); }
void HostedControl::keyReleaseEvent(QKeyEvent* event) { event->ignore(); }

} // namespace suite
