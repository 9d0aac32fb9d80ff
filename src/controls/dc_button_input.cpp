// What the button does with mouse, keyboard, focus and its popup menu. After each event it raises, the button may be
// gone.
#include "controls/dc_button.h"

#include "base/yield.h"
#include "controls/accessible.h"

#include <QCursor>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <array>

namespace controls {

namespace {

constexpr int doubleClickMark = 8; // as "last button" after a double click
constexpr int spaceKey = 32;
constexpr int firstArrowKey = 37; // left, up, right, down
constexpr int lastArrowKey = 40;
constexpr int escapeKey = 27;
constexpr int returnKey = 13;

// How long a press after the closing of the menu counts as the press that closed it. Where the desktop hands that press
// on, it arrives at once; elsewhere it never does, and the user's next click has to open the menu again.
constexpr int closingPressMilliseconds = 250;

// Where a popup stands on the button, in widths and heights of it, and the flags that the place adds.
struct PopupPlace {
    int widths;
    int heights;
    int flags;
};
constexpr int rightAligned = 8;
constexpr int bottomAligned = 32;
constexpr std::array<PopupPlace, 8> popupPlaces = {{{0, 1, 0},
                                                    {0, 0, rightAligned},
                                                    {0, 1, rightAligned},
                                                    {1, 0, 0},
                                                    {1, 1, 0},
                                                    {0, 0, bottomAligned},
                                                    {0, 0, bottomAligned | rightAligned},
                                                    {1, 0, bottomAligned}}};

} // namespace

void dcButton::mousePressEvent(QMouseEvent* event) {
    clickDue_ = true;
    OnMouseDown(forms::ButtonOf(event->button()), forms::ShiftOf(event->modifiers()), event->position());
}

void dcButton::mouseMoveEvent(QMouseEvent* event) {
    OnMouseMove(forms::ButtonsOf(event->buttons()), forms::ShiftOf(event->modifiers()), event->position());
}

void dcButton::mouseReleaseEvent(QMouseEvent* event) {
    const QPointer<dcButton> alive(this);
    const bool click = clickDue_ && IsUnder(event->position().toPoint());
    clickDue_ = false;
    OnMouseUp(forms::ButtonOf(event->button()), forms::ShiftOf(event->modifiers()), event->position());
    if (alive && click)
        OnClick();
}

void dcButton::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        OnDblClick();
}

void dcButton::leaveEvent(QEvent*) {
    // The toolkit tells it unasked; the button has asked since the pointer moved over it.
    if (tracking_)
        OnLeave();
}

void dcButton::keyPressEvent(QKeyEvent* event) {
    const QPointer<dcButton> alive(this);
    const int code = forms::KeyCode(event->key());
    const int shift = forms::ShiftOf(event->modifiers());
    const QString text = event->text();
    const bool space = code == spaceKey && shift != forms::AltMask;
    const bool arrow = code >= firstArrowKey && code <= lastArrowKey;
    event->setAccepted(space || arrow);
    // A key that was down before the button had the keyboard does not press it.
    if (space && event->isAutoRepeat() && !spaceHeld_)
        return;
    if (space)
        OnSpaceDown(shift);
    else if (arrow)
        OnArrowDown(code, shift);
    else
        OnOtherKeyDown(code, shift);
    if (alive && !text.isEmpty())
        Q_EMIT KeyPress(text.at(0).unicode());
}

void dcButton::keyReleaseEvent(QKeyEvent* event) {
    const int code = forms::KeyCode(event->key());
    event->setAccepted(code == spaceKey);
    // A key held down repeats its going down alone.
    if (event->isAutoRepeat())
        return;
    const int shift = forms::ShiftOf(event->modifiers());
    if (code == spaceKey)
        OnSpaceUp(shift);
    else
        Q_EMIT KeyUp(code, shift);
}

void dcButton::focusInEvent(QFocusEvent* event) {
    // A popup menu borrows the keyboard; that is no change of focus.
    if (event->reason() != Qt::PopupFocusReason) {
        windowActive_ = true;
        hasFocus_ = true;
        if (!pressed_ && Enabled())
            Repaint(NormalState, true);
    }
    DrawnControl::focusInEvent(event);
}

void dcButton::focusOutEvent(QFocusEvent* event) {
    if (event->reason() != Qt::PopupFocusReason) {
        windowActive_ = false;
        hasFocus_ = false;
        pressed_ = false;
        mouseDownHeld_ = false;
        spaceHeld_ = false;
        mouseOver_ = false;
        DropCapture();
        if (Enabled())
            Repaint(NormalState, displayAsDefault_);
    }
    DrawnControl::focusOutEvent(event);
}

void dcButton::OnMouseDown(int button, int shift, const QPointF& at) {
    lastButton_ = button;
    if (button == forms::LeftButton) {
        hasFocus_ = true;
        pressed_ = true;
        mouseDownHeld_ = true;
        if (!spaceHeld_)
            Repaint(DownState, false);
        else if (!mouseOver_)
            Repaint(NormalState, false);
    }
    if (!popupSet_) {
        Q_EMIT MouseDown(button, shift, at.x(), at.y());
        return;
    }
    if (PopupJustClosed()) {
        popupJustClosed_ = false;
        popupOpen_ = false;
    } else {
        OpenPopup();
    }
}

void dcButton::OnMouseMove(int buttons, int shift, const QPointF& at) {
    popupJustClosed_ = false;
    if (IsUnder(at.toPoint())) {
        mouseOver_ = true;
        if (spaceHeld_ ? mouseDownHeld_ : pressed_)
            Repaint(DownState, false);
        else if (!spaceHeld_)
            Repaint(HotState, false);
        if (tracking_) {
            Q_EMIT MouseMove(buttons, shift, at.x(), at.y());
        } else {
            tracking_ = true;
            Q_EMIT MouseEnter();
        }
        return;
    }
    if (mouseOver_) {
        mouseOver_ = false;
        if (!spaceHeld_ && !mouseDownHeld_)
            Repaint(NormalState, false);
        Q_EMIT MouseLeave();
    } else if (mouseDownHeld_) {
        Repaint(HotState, false);
    }
}

void dcButton::OnMouseUp(int button, int shift, const QPointF& at) {
    if (button != forms::LeftButton && !popupJustClosed_ && !popupSet_)
        return;
    mouseDownHeld_ = false;
    pressed_ = spaceHeld_;
    if (spaceHeld_ && !mouseOver_)
        Repaint(DownState, false);
    if (lastButton_ == doubleClickMark)
        Repaint(RestingState(), false);
    DropCapture();
    if (popupSet_) {
        if (!mouseOver_)
            Repaint(NormalState, false);
        popupOpen_ = false;
        popupJustClosed_ = false;
        return;
    }
    Q_EMIT MouseUp(button, shift, at.x(), at.y());
}

void dcButton::OnClick() {
    if (pressed_ || lastButton_ != forms::LeftButton)
        return;
    const QPointer<dcButton> alive(this);
    mouseDownHeld_ = false;
    spaceHeld_ = false;
    if (checkBoxMode_) {
        value_ = !value_;
        AccessibleCheckChanged(this);
    }
    Repaint(RestingState(), mouseOver_ ? checkBoxMode_ : true);
    if (!popupSet_) {
        Q_EMIT Click();
        if (!alive)
            return;
    }
    if (!checkBoxMode_)
        value_ = false;
}

void dcButton::OnDblClick() {
    pressed_ = true;
    mouseDownHeld_ = true;
    Repaint(DownState, false);
    lastButton_ = doubleClickMark;
    if (!popupSet_) {
        Q_EMIT DblClick();
        return;
    }
    if (PopupJustClosed())
        popupJustClosed_ = false;
    else
        OpenPopup();
}

void dcButton::OnLeave() {
    mouseOver_ = false;
    tracking_ = false;
    if (popupSet_) {
        popupJustClosed_ = popupOpen_;
        if (popupOpen_) {
            popupOpen_ = false;
            sincePopup_.start();
            return;
        }
    }
    if (spaceHeld_)
        return;
    if (Enabled())
        Repaint(NormalState, lastButton_ == forms::LeftButton);
    Q_EMIT MouseLeave();
}

void dcButton::OnSpaceDown(int shift) {
    pressed_ = true;
    spaceHeld_ = true;
    TakeCapture();
    if (!mouseDownHeld_)
        Repaint(DownState, false);
    Q_EMIT KeyDown(spaceKey, shift);
}

void dcButton::OnArrowDown(int keyCode, int shift) {
    const QPointer<dcButton> alive(this);
    const bool clickToo = spaceHeld_;
    if (shift == 0)
        focusNextPrevChild(keyCode >= firstArrowKey + 2);
    if (!alive || !clickToo)
        return;
    DropCapture();
    base::Yield();
    if (!alive)
        return;
    lastButton_ = forms::LeftButton;
    OnClick();
}

void dcButton::OnOtherKeyDown(int keyCode, int shift) {
    if (spaceHeld_) {
        spaceHeld_ = false;
        pressed_ = false;
        DropCapture();
        Repaint(RestingState(), false);
    }
    Q_EMIT KeyDown(keyCode, shift);
}

void dcButton::OnSpaceUp(int shift) {
    const QPointer<dcButton> alive(this);
    pressed_ = mouseDownHeld_;
    if (spaceHeld_) {
        spaceHeld_ = false;
        if (!popupSet_) {
            lastButton_ = forms::LeftButton;
            OnClick();
        } else {
            if (!PopupJustClosed())
                OpenPopup();
            if (alive)
                popupOpen_ = false;
        }
        if (!alive)
            return;
    }
    if (pressed_)
        TakeCapture();
    else
        DropCapture();
    if (!popupSet_)
        Q_EMIT KeyUp(spaceKey, shift);
}

void dcButton::AccessKeyPress(int key) {
    if (!Enabled())
        return;
    if (spaceHeld_)
        DropCapture();
    if (checkBoxMode_ && (key == returnKey || key == escapeKey))
        return;
    pressed_ = false;
    lastButton_ = forms::LeftButton;
    if (!popupSet_) {
        OnClick();
        return;
    }
    if (key == escapeKey || PopupJustClosed())
        return;
    const QPointer<dcButton> alive(this);
    OpenPopup();
    if (!alive)
        return;
    pressed_ = false;
    mouseDownHeld_ = false;
    popupOpen_ = false;
    spaceHeld_ = false;
}

void dcButton::OpenPopup() {
    if (popupMenu_.isNull() || popupShowing_ || popupAlignment_ < 0 || popupAlignment_ >= int(popupPlaces.size()))
        return;
    const PopupPlace& place = popupPlaces.at(size_t(popupAlignment_));
    const QPointer<dcButton> alive(this);
    popupOpen_ = true;
    popupShowing_ = true;
    DropCapture();
    Repaint(DownState, false);
    for (QAction* action : popupMenu_->Popup()->actions())
        if (!popupDefault_.isEmpty() && action->objectName() == popupDefault_)
            popupMenu_->Popup()->setDefaultAction(action);
    popupMenu_->PopupMenu(mapToGlobal(QPoint(place.widths * width(), place.heights * height())),
                          popupFlags_ | place.flags);
    if (!alive)
        return;
    popupShowing_ = false;
    mouseOver_ = isVisible() && IsUnder(mapFromGlobal(QCursor::pos()));
    popupJustClosed_ = mouseOver_;
    if (mouseOver_)
        sincePopup_.start();
    // The menu has swallowed the release of the press that opened it, and may swallow that of the press that closed it.
    pressed_ = false;
    mouseDownHeld_ = false;
    spaceHeld_ = false;
    popupOpen_ = false;
    clickDue_ = false;
    Repaint(RestingState(), false);
}

bool dcButton::PopupJustClosed() const {
    return popupJustClosed_ && sincePopup_.isValid() && sincePopup_.elapsed() < closingPressMilliseconds;
}

bool dcButton::IsUnder(const QPoint& place) const {
    if (!rect().contains(place))
        return false;
    const QWidget* top = window();
    return top == this || top->childAt(mapTo(top, place)) == this;
}

void dcButton::TakeCapture() {
    // Wayland lets popups alone take the pointer.
    static const bool possible = !QGuiApplication::platformName().startsWith(QStringLiteral("wayland"));
    if (possible && isVisible() && QWidget::mouseGrabber() != this)
        grabMouse();
}

void dcButton::DropCapture() {
    if (QWidget::mouseGrabber() == this)
        releaseMouse();
}

} // namespace controls
