// Pixel arithmetic of the bitmap surface, on rows of four bytes blue, green, red and one that is left alone. Stateless.
// The fast routines give byte for byte what the plain ones give.
#pragma once

#include <QtGlobal>

namespace controls {

// Hue 0 to 6 (slightly negative between magenta and red), lightness and saturation 0 to 1.
struct Hls {
    double hue = 0;
    double lightness = 0;
    double saturation = 0;
};

struct RgbBytes {
    quint8 red = 0;
    quint8 green = 0;
    quint8 blue = 0;
    friend bool operator==(const RgbBytes&, const RgbBytes&) = default;
};

Hls ToHls(RgbBytes pixel);
// Any hue is brought onto the circle; channels outside 0 to 255 are clamped.
RgbBytes FromHls(const Hls& colour);

// Hue, lightness and saturation times these. Lightness and saturation are limited to at most 1, hue is not limited.
struct HlsFactors {
    double hue = 1;
    double lightness = 1;
    double saturation = 1;
};

// One pixel after the other through ToHls and FromHls.
void ScaleHlsPlain(quint8* pixels, qsizetype count, const HlsFactors& factors);
// The same, byte for byte, four pixels at a time in single precision; where a result comes too close to the middle
// between two bytes the plain routine decides.
void ScaleHls(quint8* pixels, qsizetype count, const HlsFactors& factors);

// (1 - alpha / 255) * target + source * alpha / 255 for blue, green and red, rounded to nearest; `alpha` 0 to 255. The
// two must not overlap.
void BlendPixels(quint32* target, const quint32* source, int pixels, int alpha);

struct PixelRows {
    const quint8* first = nullptr;
    int width = 0;
    int height = 0;
    const quint8* Row(int row) const { return first + qsizetype(row) * width * 4; }
};

// Bilinear, from `source` into `target` of newWidth by newHeight pixels. Neither may be empty. A target pixel shows the
// source at its position times (side - 1) / new side, so the far ends are not reached.
void ResampleBilinear(const PixelRows& source, quint8* target, int newWidth, int newHeight);

} // namespace controls
