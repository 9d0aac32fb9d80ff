#include "controls/mem_dc.h"

namespace controls {

void pcMemDC::CreateFromPicture(const draw::Picture& picture) { surface_ = draw::Surface(picture); }

void pcMemDC::SetWidth(int pixels) {
    if (pixels > Width())
        surface_ = draw::Surface(pixels, Height());
}

void pcMemDC::SetHeight(int pixels) {
    if (pixels > Height())
        surface_ = draw::Surface(Width(), pixels);
}

void pcMemDC::Draw(draw::Surface& context, int sourceLeft, int sourceTop, int width, int height, int destinationLeft,
                   int destinationTop) const {
    context.BitBlt(destinationLeft, destinationTop, width > 0 ? width : Width(), height > 0 ? height : Height(),
                   surface_, sourceLeft, sourceTop);
}

} // namespace controls
