#include "controls/dib_pixels.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <vector>

namespace controls {
namespace {

quint8 ToByte(double channel) {
    const double scaled = channel * 255;
    if (!(scaled > 0))
        return 0;
    return scaled >= 255 ? quint8(255) : quint8(std::lrint(scaled));
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

constexpr std::array<double, 256> MakeUnitChannels() {
    std::array<double, 256> table{};
    for (size_t i = 0; i < table.size(); ++i)
        table[i] = double(i) / 255.0;
    return table;
}
constexpr std::array<double, 256> unitChannels = MakeUnitChannels();

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

namespace {

// Channels of a pixel by place, as bit positions in its 32 bits.
constexpr int blueShift = 0;
constexpr int greenShift = 8;
constexpr int redShift = 16;

// How a pixel's channels are ordered, by the bits red > green, green > blue and blue > red. Equal channels fall to the
// order that gives the plain routine's hue: its base is that of the last of two largest channels in the circle.
struct ChannelOrder {
    int maxShift;
    int middleShift;
    int minShift;
    double base;
    double sign;
};

constexpr ChannelOrder channelOrders[8] = {
    {redShift, greenShift, blueShift, 0, 1},  // all equal
    {redShift, blueShift, greenShift, 0, -1}, // red > green
    {greenShift, redShift, blueShift, 2, -1}, // green > blue
    {redShift, greenShift, blueShift, 0, 1},  // red > green > blue
    {blueShift, greenShift, redShift, 4, -1}, // blue > red
    {blueShift, redShift, greenShift, 4, 1},  // blue > red > green
    {greenShift, blueShift, redShift, 2, 1},  // green > blue > red
    {redShift, greenShift, blueShift, 0, 1},  // cannot be
};

// Where the results go: by third of the circle, and by the half of the third.
struct ResultOrder {
    int highShift;
    int middleShift;
    int lowShift;
};

constexpr ResultOrder resultOrders[3][2] = {
    {{redShift, blueShift, greenShift}, {redShift, greenShift, blueShift}},
    {{greenShift, redShift, blueShift}, {greenShift, blueShift, redShift}},
    {{blueShift, greenShift, redShift}, {blueShift, redShift, greenShift}},
};

// What depends on the largest and the smallest channel alone.
struct ScaledSpan {
    double low = 0;
    double range = 0;
    quint8 lowByte = 0;
    quint8 highByte = 0;
    bool isMade = false;
};

class SpanTable {
  public:
    explicit SpanTable(const HlsFactors& factors) : factors_(factors), spans_(256 * 257 / 2) {}

    const ScaledSpan& At(quint32 max, quint32 min) {
        ScaledSpan& span = spans_[max * (max + 1) / 2 + min];
        if (!span.isMade) [[unlikely]]
            Make(span, max, min);
        return span;
    }

  private:
    void Make(ScaledSpan& span, quint32 max, quint32 min) const {
        const LightnessSaturation scaled = Scaled(Measure(unitChannels[max], unitChannels[min]), factors_);
        const Span ends = ChannelSpan(scaled.lightness, scaled.saturation);
        span = {ends.low, ends.high - ends.low, ToByte(ends.low), ToByte(ends.high), true};
    }

    HlsFactors factors_;
    std::vector<ScaledSpan> spans_;
};

// Below this the table costs more than it saves.
constexpr qsizetype tableThreshold = 16384;

} // namespace

void ScaleHls(quint8* pixels, qsizetype count, const HlsFactors& factors) {
    if (count < tableThreshold || !AreFinite(factors)) {
        ScaleHlsPlain(pixels, count, factors);
        return;
    }
    SpanTable spans(factors);
    for (quint8* at = pixels; at != pixels + count * 4; at += 4) {
        const quint32 blue = at[0];
        const quint32 green = at[1];
        const quint32 red = at[2];
        const quint32 pixel = blue << blueShift | green << greenShift | red << redShift;
        const ChannelOrder& order =
            channelOrders[quint32(red > green) | quint32(green > blue) << 1 | quint32(blue > red) << 2];
        const quint32 max = pixel >> order.maxShift & 0xFFU;
        const quint32 middle = pixel >> order.middleShift & 0xFFU;
        const quint32 min = pixel >> order.minShift & 0xFFU;
        const ScaledSpan& span = spans.At(max, min);

        const double range = max == min ? 1.0 : unitChannels[max] - unitChannels[min];
        const double part = (unitChannels[middle] - unitChannels[min]) / range;
        double hue = (order.base + order.sign * part) * factors.hue;
        if (!(hue >= -1 && hue < 5))
            hue = OntoCircle(hue);
        const int third = int(hue >= 1) + int(hue >= 3);
        const double offset = hue - 2 * third;
        const ResultOrder& result = resultOrders[third][offset >= 0 ? 1 : 0];
        const quint32 out = quint32(span.highByte) << result.highShift |
                            quint32(ToByte(span.low + std::abs(offset) * span.range)) << result.middleShift |
                            quint32(span.lowByte) << result.lowShift;
        at[0] = quint8(out >> blueShift);
        at[1] = quint8(out >> greenShift);
        at[2] = quint8(out >> redShift);
    }
}

// Whole numbers give the same bytes as fractions here: 255 is odd, so no result lies halfway between two bytes.
void BlendBytes(quint8* target, const quint8* source, qsizetype pixels, int alpha) {
    const quint32 share = quint32(std::clamp(alpha, 0, 255));
    const quint32 rest = 255 - share;
    const auto divide = [](quint32 pair) {
        pair += 0x00800080U;
        return (pair + (pair >> 8 & 0x00FF00FFU)) >> 8 & 0x00FF00FFU;
    };
    for (qsizetype i = 0; i < pixels; ++i) {
        quint32 below = 0;
        quint32 above = 0;
        std::memcpy(&below, target + i * 4, 4);
        std::memcpy(&above, source + i * 4, 4);
        const quint32 redBlue = divide((above & 0x00FF00FFU) * share + (below & 0x00FF00FFU) * rest);
        const quint32 green = divide((above >> 8 & 0xFFU) * share + (below >> 8 & 0xFFU) * rest);
        const quint32 result = (below & 0xFF000000U) | redBlue | green << 8;
        std::memcpy(target + i * 4, &result, 4);
    }
}

} // namespace controls
