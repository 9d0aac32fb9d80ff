// The base of controls that hold one widget of the toolkit and fill themselves with it. It raises the control's key,
// focus and mouse-down events for that widget, hands it the keyboard, and names it for screen readers.
#pragma once

#include "base/colour.h"
#include "forms/control.h"

namespace suite {

class HostedControl : public forms::Control {
    Q_OBJECT
    Q_PROPERTY(base::Colour BackColor READ BackColor WRITE SetBackColor)
    Q_PROPERTY(base::Colour ForeColor READ ForeColor WRITE SetForeColor)

  public:
    HostedControl(QWidget* container, const QString& name);

    base::Colour BackColor() const { return backColor_; }
    void SetBackColor(base::Colour colour);
    base::Colour ForeColor() const { return foreColor_; }
    void SetForeColor(base::Colour colour);

    // What screen readers call the control, where its own text does not say it.
    void SetAccessibleLabel(const QString& label);
    QWidget* Inner() const { return inner_; }
    void Refresh() override;

  protected:
    // Takes over the widget, which is a child of this control. Called once, from the constructor of the control.
    void Host(QWidget* inner);
    // Brings the widget's colours in line with BackColor and ForeColor.
    virtual void ApplyColours();
    // The tool tip where the program has set none: by default a text that is too long for its room, and else nothing.
    virtual QString TipText() const;
    // The text that the widget shows and the room it has for it in pixels; an empty text never gives a tip.
    virtual QString ShownText() const { return {}; }
    virtual int TextRoom() const { return width(); }

    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    // What the widget does not want goes no further here: its events have been raised already.
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;

  private:
    void RaiseKeyEvents(QKeyEvent* event);

    QWidget* inner_ = nullptr;
    base::Colour backColor_{0x80000005U};
    base::Colour foreColor_{0x80000008U};
};

} // namespace suite
