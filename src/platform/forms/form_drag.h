// Moving and sizing of one form by the pointer, from a button that is down until it goes up. On X11 and offscreen it is
// our own, since the window manager's does not tell begin, proposed rectangle and end; on Wayland it is the
// compositor's.
#pragma once

#include <QObject>
#include <QPoint>
#include <QRect>

namespace forms {

class Form;

class FormDrag : public QObject {
    Q_OBJECT

  public:
    explicit FormDrag(Form& form);

    void Begin(int hitTest);
    void End();
    bool Active() const { return active_; }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void Follow(const QPoint& pointer);

    Form& form_;
    QPoint startPointer_;
    QRect startRect_; // pixels
    int hitTest_ = 0;
    bool active_ = false;
};

} // namespace forms
