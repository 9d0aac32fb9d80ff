// Paints a linear gradient of two colours at any angle over a whole surface: it sweeps a one-pixel line across it, a
// step a pixel, each line in the next colour of a ramp. Plain state without resources; one object serves any number of
// paints.
#pragma once

#include "base/colour.h"
#include "draw/surface.h"

#include <QVector>

namespace controls {

class clsGradient {
  public:
    // The system colours 0 to 24 are stored as the plain colours they stand for; others stay as given.
    base::Colour Color1() const { return color1_; }
    void SetColor1(base::Colour colour);
    base::Colour Color2() const { return color2_; }
    void SetColor2(base::Colour colour);

    // Degrees, brought to 0 up to 360: 0 runs from Color1 at the left to Color2 at the right, 90 from the bottom to the
    // top, 315 from the top left corner to the bottom right one. A value that is no number changes nothing.
    float Angle() const { return angle_; }
    void SetAngle(double degrees);

    // Fills `colours` with a ramp of at least two colours and returns how many. The first is `from`, the last is `to`;
    // those between advance by 1/steps of the way, so the last step is about twice as long. Does not use the object's
    // properties.
    qint32 BlendColors(base::Colour from, base::Colour to, qint32 steps, QVector<base::Colour>& colours) const;

    // False without painting for a target that is one pixel wide or high, or has no pixels.
    bool Draw(draw::Surface& target) const;

  private:
    qint32 DrawGradientLines(draw::Surface& context, qint32 width, qint32 height) const;

    base::Colour color1_{0x00FFFFD0};
    base::Colour color2_{0x00400000};
    float angle_ = 315.0F;
};

// A surface that runs from `middle` at half height to `top` at the upper and `bottom` at the lower edge. Plain colours.
draw::Surface BlendFace(QSize size, base::Colour top, base::Colour middle, base::Colour bottom);

} // namespace controls
