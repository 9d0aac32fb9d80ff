// A horizontal scroll bar that sets a number. Scroll is raised while the thumb is dragged, Change when the value
// changes in any other way and when a drag ends.
#pragma once

#include "forms/control.h"

class QScrollBar;

namespace suite {

class HScroll : public forms::Control {
    Q_OBJECT
    Q_PROPERTY(int Min READ Min WRITE SetMin)
    Q_PROPERTY(int Max READ Max WRITE SetMax)
    Q_PROPERTY(int Value READ Value WRITE SetValue)

  public:
    HScroll(QWidget* container, const QString& name);

    int Min() const;
    void SetMin(int value);
    int Max() const;
    void SetMax(int value);
    int Value() const;
    // Values outside the range are moved to its end.
    void SetValue(int value);
    void SetAccessibleLabel(const QString& label);
    QScrollBar* Bar() const { return bar_; }

  Q_SIGNALS:
    void Change();
    void Scroll();

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    QScrollBar* bar_;
    int reported_ = 0; // the value at the last Change
};

} // namespace suite
