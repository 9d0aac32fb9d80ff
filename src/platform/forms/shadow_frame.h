// The transparent margin around a form that holds its shadow. It exists only while the screen composites, takes no
// input, and is left out of every size and position that the program sees.
#pragma once

#include "forms/form.h"

namespace forms {

class ShadowFrame {
  public:
    explicit ShadowFrame(Form& form) : form_(form) {}

    // The wanted extent in pixels and the painter; 0 takes the shadow off.
    void Set(int extent, Form::ShadowPainter paint);
    // The extent in use for a window of this place: 0 without a compositor and for a window that fills the work area.
    int ExtentFor(const QRect& windowRect) const;
    int Extent() const { return current_; }
    void SetCurrent(int extent) { current_ = extent; }
    void Paint(QPainter& painter) const;
    // Lets the pointer through the margin.
    void ApplyInputShape() const;

  private:
    Form& form_;
    Form::ShadowPainter paint_;
    int wanted_ = 0;
    int current_ = 0;
};

} // namespace forms
