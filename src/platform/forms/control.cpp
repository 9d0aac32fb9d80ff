#include "forms/control.h"

#include "forms/form.h"
#include "forms/screen.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPointer>
#include <array>

namespace forms {

namespace {

struct KeyPair {
    int qtKey;
    int code;
};

// Virtual-key codes of the platform for keys that are no characters.
constexpr std::array keyCodes = {
    KeyPair{Qt::Key_Backspace, 8}, KeyPair{Qt::Key_Tab, 9},     KeyPair{Qt::Key_Backtab, 9},
    KeyPair{Qt::Key_Return, 13},   KeyPair{Qt::Key_Enter, 13},  KeyPair{Qt::Key_Shift, 16},
    KeyPair{Qt::Key_Control, 17},  KeyPair{Qt::Key_Alt, 18},    KeyPair{Qt::Key_Escape, 27},
    KeyPair{Qt::Key_Space, 32},    KeyPair{Qt::Key_PageUp, 33}, KeyPair{Qt::Key_PageDown, 34},
    KeyPair{Qt::Key_End, 35},      KeyPair{Qt::Key_Home, 36},   KeyPair{Qt::Key_Left, 37},
    KeyPair{Qt::Key_Up, 38},       KeyPair{Qt::Key_Right, 39},  KeyPair{Qt::Key_Down, 40},
    KeyPair{Qt::Key_Insert, 45},   KeyPair{Qt::Key_Delete, 46}, KeyPair{Qt::Key_Menu, 93}};

constexpr int firstFunctionKeyCode = 112;

} // namespace

int KeyCode(int qtKey) {
    for (const KeyPair& pair : keyCodes)
        if (pair.qtKey == qtKey)
            return pair.code;
    if (qtKey >= Qt::Key_F1 && qtKey <= Qt::Key_F24)
        return firstFunctionKeyCode + qtKey - Qt::Key_F1;
    const bool characterKey = (qtKey >= Qt::Key_0 && qtKey <= Qt::Key_9) || (qtKey >= Qt::Key_A && qtKey <= Qt::Key_Z);
    return characterKey ? qtKey : 0;
}

int ShiftOf(Qt::KeyboardModifiers modifiers) {
    return (modifiers.testFlag(Qt::ShiftModifier) ? ShiftMask : 0) |
           (modifiers.testFlag(Qt::ControlModifier) ? CtrlMask : 0) |
           (modifiers.testFlag(Qt::AltModifier) ? AltMask : 0);
}

int ButtonOf(Qt::MouseButton button) {
    return button == Qt::LeftButton     ? LeftButton
           : button == Qt::RightButton  ? RightButton
           : button == Qt::MiddleButton ? MiddleButton
                                        : 0;
}

int ButtonsOf(Qt::MouseButtons buttons) {
    return (buttons.testFlag(Qt::LeftButton) ? int(LeftButton) : 0) |
           (buttons.testFlag(Qt::RightButton) ? int(RightButton) : 0) |
           (buttons.testFlag(Qt::MiddleButton) ? int(MiddleButton) : 0);
}

Control::Control(QWidget* container, const QString& name) : QWidget(container) {
    setObjectName(name);
    QWidget::setVisible(container != nullptr);
    if (Form* form = ParentForm())
        form->AddControl(this);
}

Control::~Control() {
    if (Form* form = ParentForm())
        form->RemoveControl(this);
}

Form* Control::ParentForm() const {
    for (QObject* ancestor = parent(); ancestor != nullptr; ancestor = ancestor->parent())
        if (auto* form = qobject_cast<Form*>(ancestor))
            return form;
    return nullptr;
}

double Control::Left() const { return ToTwips(x()); }
double Control::Top() const { return ToTwips(y()); }
double Control::Width() const { return ToTwips(width()); }
double Control::Height() const { return ToTwips(height()); }
void Control::SetLeft(double twips) { move(ToPixels(twips), y()); }
void Control::SetTop(double twips) { move(x(), ToPixels(twips)); }
void Control::SetWidth(double twips) { resize(qMax(0, ToPixels(twips)), height()); }
void Control::SetHeight(double twips) { resize(width(), qMax(0, ToPixels(twips))); }

void Control::Move(double left, double top, double width, double height) {
    setGeometry(ToPixels(left), ToPixels(top), qMax(0, ToPixels(width)), qMax(0, ToPixels(height)));
}

void Control::SetVisible(bool visible) {
    if (visible_ == visible)
        return;
    visible_ = visible;
    if (!visible)
        PutFocusAside();
    QWidget::setVisible(visible);
    TakeFocusBack();
}

void Control::SetEnabled(bool enabled) {
    if (enabled_ == enabled)
        return;
    enabled_ = enabled;
    if (!enabled)
        PutFocusAside();
    QWidget::setEnabled(enabled);
    TakeFocusBack();
}

// The toolkit would hand the keyboard to the next control, where the user's next key does what nobody asked for. While
// a control is off for the time of some work, the window itself has the keyboard, and the control gets it back.
void Control::PutFocusAside() {
    Form* form = ParentForm();
    QWidget* focus = form == nullptr ? nullptr : form->focusWidget();
    if (focus == nullptr || (focus != this && !isAncestorOf(focus)))
        return;
    focusAside_ = focus;
    form->Client()->setFocus(Qt::OtherFocusReason);
}

void Control::TakeFocusBack() {
    Form* form = ParentForm();
    if (form == nullptr || focusAside_.isNull() || !focusAside_->isEnabled() || !focusAside_->isVisibleTo(form))
        return;
    if (form->focusWidget() == form->Client())
        focusAside_->setFocus(Qt::OtherFocusReason);
    focusAside_.clear();
}

void Control::SetToolTipText(const QString& text) {
    setToolTip(text);
    Q_EMIT PropertyChanged(QStringLiteral("ToolTipText"));
}

void Control::Refresh() { update(); }

void Control::SetFocus() { setFocus(Qt::OtherFocusReason); }

void Control::mousePressEvent(QMouseEvent* event) {
    Q_EMIT MouseDown(ButtonOf(event->button()), ShiftOf(event->modifiers()), event->position().x(),
                     event->position().y());
}

void Control::mouseMoveEvent(QMouseEvent* event) {
    Q_EMIT MouseMove(ButtonsOf(event->buttons()), ShiftOf(event->modifiers()), event->position().x(),
                     event->position().y());
}

void Control::mouseReleaseEvent(QMouseEvent* event) {
    const QPointer<Control> alive(this);
    const bool inside = rect().contains(event->position().toPoint());
    const Qt::MouseButton button = event->button();
    Q_EMIT MouseUp(ButtonOf(button), ShiftOf(event->modifiers()), event->position().x(), event->position().y());
    if (alive && inside && button == Qt::LeftButton)
        Q_EMIT Click();
}

void Control::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        Q_EMIT DblClick();
}

void Control::keyPressEvent(QKeyEvent* event) {
    const QPointer<Control> alive(this);
    const QString text = event->text();
    Q_EMIT KeyDown(KeyCode(event->key()), ShiftOf(event->modifiers()));
    if (!alive)
        return;
    if (!text.isEmpty())
        Q_EMIT KeyPress(text.at(0).unicode());
    if (alive)
        QWidget::keyPressEvent(event);
}

void Control::keyReleaseEvent(QKeyEvent* event) {
    const QPointer<Control> alive(this);
    Q_EMIT KeyUp(KeyCode(event->key()), ShiftOf(event->modifiers()));
    if (alive)
        QWidget::keyReleaseEvent(event);
}

void Control::focusInEvent(QFocusEvent* event) {
    QWidget::focusInEvent(event);
    // Menus and other passing grabs give the keyboard back without anything having changed.
    if (event->reason() != Qt::PopupFocusReason)
        Q_EMIT GotFocus();
}

void Control::focusOutEvent(QFocusEvent* event) {
    QWidget::focusOutEvent(event);
    if (event->reason() != Qt::PopupFocusReason)
        Q_EMIT LostFocus();
}

} // namespace forms
