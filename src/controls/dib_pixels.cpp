#include "controls/dib_pixels.h"

#include <algorithm>
#include <cmath>

namespace controls {
namespace {

// To the nearest byte, ties to even. What lies within 1/512 of the middle between two bytes counts as a tie, so that
// the last bits of the arithmetic decide nothing.
quint8 ToByte(double channel) {
    const double scaled = channel * 255;
    if (!(scaled > 0))
        return 0;
    if (scaled >= 255)
        return 255;
    const auto fixed = int(scaled * 256 + 0.5); // NOLINT(bugprone-incorrect-roundings): of numbers up to 65,280
    return quint8((fixed + 127 + (fixed >> 8 & 1)) >> 8);
}

// The two ends of the channels of a colour with this lightness and saturation.
struct Span {
    double low;
    double high;
};

Span ChannelSpan(double lightness, double saturation) {
    const double low = lightness <= 0.5 ? lightness * (1 - saturation) : lightness - saturation * (1 - lightness);
    return {low, 2 * lightness - low};
}

struct LightnessSaturation {
    double lightness;
    double saturation;
};

LightnessSaturation Measure(double max, double min) {
    const double lightness = (max + min) / 2;
    if (max == min)
        return {lightness, 0};
    return {lightness, lightness <= 0.5 ? (max - min) / (max + min) : (max - min) / (2 - max - min)};
}

LightnessSaturation Scaled(LightnessSaturation value, const HlsFactors& factors) {
    return {std::min(value.lightness * factors.lightness, 1.0), std::min(value.saturation * factors.saturation, 1.0)};
}

// From -1 (magenta) up to 5.
double OntoCircle(double hue) { return hue >= -1 && hue < 5 ? hue : hue - 6 * std::floor((hue + 1) / 6); }

bool AreFinite(const HlsFactors& factors) {
    return std::isfinite(factors.hue) && std::isfinite(factors.lightness) && std::isfinite(factors.saturation);
}

} // namespace

Hls ToHls(RgbBytes pixel) {
    const double red = pixel.red / 255.0;
    const double green = pixel.green / 255.0;
    const double blue = pixel.blue / 255.0;
    const double max = std::max({red, green, blue});
    const double min = std::min({red, green, blue});
    const LightnessSaturation measured = Measure(max, min);
    Hls colour{0, measured.lightness, measured.saturation};
    if (max == min)
        return colour;
    if (red == max)
        colour.hue = (green - blue) / (max - min);
    else if (green == max)
        colour.hue = 2 + (blue - red) / (max - min);
    else
        colour.hue = 4 + (red - green) / (max - min);
    return colour;
}

RgbBytes FromHls(const Hls& colour) {
    const Span span = ChannelSpan(colour.lightness, colour.saturation);
    const double range = span.high - span.low;
    const double hue = OntoCircle(colour.hue);
    const quint8 low = ToByte(span.low);
    const quint8 high = ToByte(span.high);
    if (hue < 1) {
        const quint8 middle = ToByte(span.low + std::abs(hue) * range);
        return hue < 0 ? RgbBytes{high, low, middle} : RgbBytes{high, middle, low};
    }
    if (hue < 3) {
        const quint8 middle = ToByte(span.low + std::abs(hue - 2) * range);
        return hue < 2 ? RgbBytes{middle, high, low} : RgbBytes{low, high, middle};
    }
    const quint8 middle = ToByte(span.low + std::abs(hue - 4) * range);
    return hue < 4 ? RgbBytes{low, middle, high} : RgbBytes{middle, low, high};
}

void ScaleHlsPlain(quint8* pixels, qsizetype count, const HlsFactors& factors) {
    if (!AreFinite(factors))
        return;
    for (quint8* pixel = pixels; pixel != pixels + count * 4; pixel += 4) {
        Hls colour = ToHls({pixel[2], pixel[1], pixel[0]});
        const LightnessSaturation scaled = Scaled({colour.lightness, colour.saturation}, factors);
        colour = {colour.hue * factors.hue, scaled.lightness, scaled.saturation};
        const RgbBytes result = FromHls(colour);
        pixel[0] = result.blue;
        pixel[1] = result.green;
        pixel[2] = result.red;
    }
}

} // namespace controls
