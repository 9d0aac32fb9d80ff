// Small routines on 32-bit pixels (0xffRRGGBB, the order of QRgb) that the drawing operations share.
#pragma once

#include "base/colour.h"

#include <QRgb>
#include <QSize>

namespace draw {

// No side above 32767 and no more than 64 million pixels (256 MB). A size of nothing is not drawable either.
bool IsDrawableSize(QSize size);

constexpr QRgb ToRgb(base::Colour colour) {
    return 0xFF000000U | (colour.Value() & 0xFFU) << 16 | (colour.Value() & 0xFF00U) | (colour.Value() >> 16 & 0xFFU);
}

constexpr base::Colour FromRgb(QRgb pixel) {
    return base::Colour((pixel & 0xFFU) << 16 | (pixel & 0xFF00U) | (pixel >> 16 & 0xFFU));
}

// source * alpha / 255 + target * (255 - alpha) / 255, each channel rounded to nearest; `alpha` 0 to 255.
QRgb BlendPixel(QRgb target, QRgb source, uint alpha);
void BlendRow(QRgb* target, const QRgb* source, int count, uint alpha);
// `source` is premultiplied and brings an alpha of its own, scaled by `alpha`.
void BlendPremultipliedRow(QRgb* target, const QRgb* source, int count, uint alpha);

// The platform's raster operations that are served.
enum RasterOperation : quint32 {
    BLACKNESS = 0x000042,
    NOTSRCCOPY = 0x330008,
    DSTINVERT = 0x550009,
    SRCINVERT = 0x660046,
    SRCAND = 0x8800C6,
    MERGEPAINT = 0xBB0226,
    SRCCOPY = 0xCC0020,
    SRCPAINT = 0xEE0086,
    WHITENESS = 0xFF0062,
};

bool IsServedRasterOperation(quint32 operation);
QRgb CombinePixel(QRgb target, QRgb source, quint32 operation);

} // namespace draw
