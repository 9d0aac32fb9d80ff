// Regions: sets of pixels that clip drawing or give a window its shape. Plain values; Region converts to QRegion for
// setMask.
#pragma once

#include <QRegion>

namespace draw {

enum RegionMode { RGN_AND = 1, RGN_OR = 2, RGN_XOR = 3, RGN_DIFF = 4, RGN_COPY = 5 };

class Region {
  public:
    Region() = default;
    explicit Region(const QRegion& pixels) : pixels_(pixels) {}

    const QRegion& ToQRegion() const { return pixels_; }
    bool IsEmpty() const { return pixels_.isEmpty(); }
    bool Contains(int x, int y) const { return pixels_.contains(QPoint(x, y)); }

    friend bool operator==(const Region&, const Region&) = default;

  private:
    QRegion pixels_;
};

// The rectangle without its right column and bottom row; corners in any order.
Region CreateRectRgn(int left, int top, int right, int bottom);

// A rectangle with elliptic corners, `width` and `height` being the whole corner ellipse. It ends one pixel before a
// plain rectangle of the same numbers, in both directions, as the platform's does: (0, 0, W + 1, H + 1) covers W by H
// pixels. With a corner below 2 it is the plain rectangle.
Region CreateRoundRectRgn(int left, int top, int right, int bottom, int width, int height);

// `target` may be one of the sources. An unknown mode leaves it alone.
void CombineRgn(Region& target, const Region& first, const Region& second, RegionMode mode);

// How many pixels row `row` of a corner leaves out, for a corner ellipse of `width` by `height`. 0 beyond the corner.
int CornerInset(int row, int width, int height);

} // namespace draw
