// Moving and sizing of one form by the pointer, from a button that is down until it goes up. The window manager does it
// wherever it takes it: it knows about edges, tiles and other monitors. What the form tells of itself on the way gives
// the same begin, proposed rectangles and end as our own loop, which serves where there is no window manager.
#pragma once

#include <QObject>
#include <QPoint>
#include <QRect>
#include <QTimer>

namespace forms {

class Form;

class FormDrag : public QObject {
    Q_OBJECT

  public:
    explicit FormDrag(Form& form);

    void Begin(int hitTest);
    void End();
    bool Active() const { return active_; }
    // The form has a new place (HtCaption) or size (HtBottomRight).
    void Told(int change);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    bool HandOver();
    void Follow(const QPoint& pointer);
    void EndWithButton();

    Form& form_;
    QPoint startPointer_;
    QRect startRect_; // pixels
    int hitTest_ = 0;
    bool active_ = false;
    bool handedOver_ = false;
    QTimer buttonPoll_; // while the window manager drags, which tells nobody when it has done
};

} // namespace forms
