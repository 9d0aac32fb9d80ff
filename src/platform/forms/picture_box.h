// A box with a surface of its own that the program draws on, a picture, and room for other controls. What is drawn
// stays until Cls.
#pragma once

#include "base/colour.h"
#include "draw/picture.h"
#include "draw/surface.h"
#include "forms/control.h"

namespace forms {

class PictureBox : public Control {
    Q_OBJECT
    Q_PROPERTY(base::Colour BackColor READ BackColor WRITE SetBackColor)
    Q_PROPERTY(base::Colour ForeColor READ ForeColor WRITE SetForeColor)

  public:
    PictureBox(QWidget* container, const QString& name);

    base::Colour BackColor() const { return backColor_; }
    void SetBackColor(base::Colour colour);
    base::Colour ForeColor() const { return foreColor_; }
    void SetForeColor(base::Colour colour);
    const draw::Picture& Picture() const { return picture_; }
    void SetPicture(const draw::Picture& picture);

    // The surface in pixels. Drawing on it shows after Refresh.
    draw::Surface& hdc() { return surface_; }
    // Fills the surface with the back colour and the picture.
    void Cls();
    // A rectangle's outline in the fore colour, corners in pixels, both included; parts outside are cut off.
    void DrawBox(int left, int top, int right, int bottom);

  Q_SIGNALS:
    void BackColorChanged();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    draw::Surface surface_;
    draw::Picture picture_;
    base::Colour backColor_{0x8000000FU};
    base::Colour foreColor_{0x80000012U};
};

} // namespace forms
