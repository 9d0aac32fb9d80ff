// The glyphs of the caption buttons as shapes of any size, filled with one colour: crisp at every scale, since strokes
// that run along an axis lie on whole pixels. A plain value.
#pragma once

#include "base/colour.h"
#include "draw/surface.h"

namespace controls {

enum class Glyph { X, Bar, Question };

class AlphaShape {
  public:
    explicit AlphaShape(Glyph glyph) : glyph_(glyph) {}

    // Pixels. A shape of nothing paints nothing.
    int Width() const { return width_; }
    int Height() const { return height_; }
    void SetSize(int width, int height);
    base::Colour FillColor() const { return fillColor_; }
    void SetFillColor(base::Colour colour) { fillColor_ = colour; }

    // Paints the shape with its top left corner at (x, y).
    void PaintShape(draw::Surface& context, int x, int y) const;

  private:
    Glyph glyph_;
    int width_ = 0;
    int height_ = 0;
    base::Colour fillColor_{0xFFFFFFU};
};

} // namespace controls
