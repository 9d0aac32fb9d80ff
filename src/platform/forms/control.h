// The base of everything that stands on a form and is seen. A control registers itself with its form when it is made,
// so the form's list of controls is in order of creation. Positions and sizes are twips relative to the container. Keys
// and buttons are reported with the platform's codes.
#pragma once

#include <QPointer>
#include <QWidget>

namespace forms {

class Form;

// Mouse buttons and shift states as events carry them.
enum MouseButton { LeftButton = 1, RightButton = 2, MiddleButton = 4 };
enum ShiftState { ShiftMask = 1, CtrlMask = 2, AltMask = 4 };

class Control : public QWidget {
    Q_OBJECT
    Q_PROPERTY(QString Name READ Name)
    Q_PROPERTY(double Left READ Left WRITE SetLeft)
    Q_PROPERTY(double Top READ Top WRITE SetTop)
    Q_PROPERTY(double Width READ Width WRITE SetWidth)
    Q_PROPERTY(double Height READ Height WRITE SetHeight)
    Q_PROPERTY(bool Visible READ Visible WRITE SetVisible)
    Q_PROPERTY(bool Enabled READ Enabled WRITE SetEnabled)
    Q_PROPERTY(QString Tag READ Tag WRITE SetTag)
    Q_PROPERTY(QString ToolTipText READ ToolTipText WRITE SetToolTipText)

  public:
    // `container` is a form's client area or a control that holds others; it owns the new control.
    Control(QWidget* container, const QString& name);
    ~Control() override;

    QString Name() const { return objectName(); }
    // The form that the control stands on; null while it stands on none.
    Form* ParentForm() const;

    double Left() const;
    double Top() const;
    double Width() const;
    double Height() const;
    void SetLeft(double twips);
    void SetTop(double twips);
    void SetWidth(double twips);
    void SetHeight(double twips);
    void Move(double left, double top, double width, double height);

    // The control's own flags, whatever its container shows. A control that has the keyboard while it is hidden or
    // disabled gets it back when it is shown or enabled again, so that a handler may disable it around its work.
    bool Visible() const { return visible_; }
    virtual void SetVisible(bool visible);
    bool Enabled() const { return enabled_; }
    virtual void SetEnabled(bool enabled);

    QString Tag() const { return tag_; }
    void SetTag(const QString& tag) { tag_ = tag; }
    QString ToolTipText() const { return toolTip(); }
    void SetToolTipText(const QString& text);

    // Brings the control's picture up to date at the next paint.
    virtual void Refresh();
    // Gives the control the keyboard.
    void SetFocus();
    // The form's word that the keyboard speaks for the control: Return (13) was pressed while it had the focus.
    virtual void AccessKeyPress(int /*key*/) {}

  Q_SIGNALS:
    // Positions in the mouse events are pixels from the control's top left corner.
    void Click();
    void DblClick();
    void MouseDown(int button, int shift, double x, double y);
    void MouseMove(int button, int shift, double x, double y);
    void MouseUp(int button, int shift, double x, double y);
    void KeyDown(int keyCode, int shift);
    void KeyPress(int character);
    void KeyUp(int keyCode, int shift);
    void GotFocus();
    void LostFocus();
    // A property was set by its setter; for a host that keeps the bag.
    void PropertyChanged(const QString& name);

  protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

  private:
    void PutFocusAside();
    void TakeFocusBack();

    QString tag_;
    QPointer<QWidget> focusAside_; // who had the keyboard in here when the control was hidden or disabled
    bool visible_ = true;
    bool enabled_ = true;
};

// The platform's number for a Qt key (Delete is 46, space 32, arrows 37 to 40, Tab 9, Return 13, Escape 27, F10 121,
// the menu key 93, letters and digits their upper-case character); 0 for keys that it does not number here.
int KeyCode(int qtKey);
int ShiftOf(Qt::KeyboardModifiers modifiers);
int ButtonOf(Qt::MouseButton button);
int ButtonsOf(Qt::MouseButtons buttons);

} // namespace forms
