// A memory surface that grows with what is asked of it and is never shrunk, so that a control of changing size draws
// off screen without an allocation for each paint. Whoever makes it owns it; it holds nothing until a size is set.
#pragma once

#include "draw/picture.h"
#include "draw/surface.h"

namespace controls {

class pcMemDC {
  public:
    // Takes the picture and its size.
    void CreateFromPicture(const draw::Picture& picture);

    // Pixels. Setting a larger value makes a new surface, whose pixels are black; a smaller value changes nothing.
    int Width() const { return surface_.Width(); }
    int Height() const { return surface_.Height(); }
    void SetWidth(int pixels);
    void SetHeight(int pixels);

    // The surface to draw on; not drawable while a size is missing or cannot be had.
    draw::Surface& hdc() { return surface_; }

    // Copies to `context`. A width or height of 0 or less stands for the surface's.
    void Draw(draw::Surface& context, int sourceLeft = 0, int sourceTop = 0, int width = 0, int height = 0,
              int destinationLeft = 0, int destinationTop = 0) const;

  private:
    draw::Surface surface_;
};

} // namespace controls
