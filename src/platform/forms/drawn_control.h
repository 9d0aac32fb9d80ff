// The base of controls that paint themselves on a surface. A control keeps state; changing it marks the control dirty,
// and Draw() brings the surface up to date once, right before the next paint or when somebody asks for a pixel.
#pragma once

#include "draw/surface.h"
#include "forms/control.h"

namespace forms {

class DrawnControl : public Control {
    Q_OBJECT

  public:
    DrawnControl(QWidget* container, const QString& name);

    // Asks for a new picture at the next paint.
    void MarkDirty();
    void Refresh() override { MarkDirty(); }

    // The finished surface in pixels, brought up to date first. For tests and for copying.
    draw::Surface& UpToDateSurface();

  protected:
    // Paints everything on `surface`, which has the control's size in pixels. Must not yield.
    virtual void Draw(draw::Surface& surface) = 0;

    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    draw::Surface surface_;
    bool dirty_ = true;
};

} // namespace forms
