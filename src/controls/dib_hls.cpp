// Recolouring several pixels at a time. Channels are kept as 0 to 255 and without a branch: both sides of each choice
// are computed and a mask picks one.
#include "controls/dib_pixels.h"
#include "controls/wide_code.h"

#include <cmath>
#include <cstring>

namespace controls {
namespace {

// Results are rounded from 1/256 of a byte. There single precision is off by less than a tenth, as long as hues stay
// small and lightness and saturation within 0 to 1; a result this far from a whole 1/256 is not trusted where it
// decides a byte.
constexpr float trustedDistance = 0.35F;

bool SuitSinglePrecision(const HlsFactors& factors) {
    return std::abs(factors.hue) <= 2 && factors.lightness >= 0 && factors.lightness <= 1e6 &&
           factors.saturation >= 0 && factors.saturation <= 1e6;
}

struct Narrow {
    using Floats = float __attribute__((vector_size(16)));
    using Ints = qint32 __attribute__((vector_size(16)));
    static constexpr int lanes = 4;
};

struct Wide {
    using Floats = float __attribute__((vector_size(32)));
    using Ints = qint32 __attribute__((vector_size(32)));
    static constexpr int lanes = 8;
};

// Whole numbers to floats and back, which cuts off.
[[gnu::always_inline]] inline void Convert(const Narrow::Ints& from, Narrow::Floats& to) {
    to = __builtin_convertvector(from, Narrow::Floats);
}
[[gnu::always_inline]] inline void Convert(const Narrow::Floats& from, Narrow::Ints& to) {
    to = __builtin_convertvector(from, Narrow::Ints);
}
[[gnu::always_inline]] inline void Convert(const Wide::Ints& from, Wide::Floats& to) {
    to = __builtin_convertvector(from, Wide::Floats);
}
[[gnu::always_inline]] inline void Convert(const Wide::Floats& from, Wide::Ints& to) {
    to = __builtin_convertvector(from, Wide::Ints);
}

// The arithmetic on as many pixels at once as the vectors of `Width` hold.
template <typename Width> class LaneScaler {
  public:
    using Floats = typename Width::Floats;
    using Ints = typename Width::Ints;

    [[gnu::always_inline]] explicit LaneScaler(const HlsFactors& factors)
        : hue_(float(factors.hue)), lightness_(float(factors.lightness)), saturation_(float(factors.saturation)),
          keepsHue_(factors.hue == 1) {}

    // The results in place; all bits are set in `doubtful` where one is not to be trusted.
    [[gnu::always_inline]] void Scale(Ints& pixels, Ints& doubtful) const {
        Floats red;
        Floats green;
        Floats blue;
        Convert(pixels >> 16 & 0xFF, red);
        Convert(pixels >> 8 & 0xFF, green);
        Convert(pixels & 0xFF, blue);
        const Floats zero = {};
        const Floats redGreenMax = red > green ? red : green;
        const Floats max = redGreenMax > blue ? redGreenMax : blue;
        const Floats redGreenMin = red < green ? red : green;
        const Floats min = redGreenMin < blue ? redGreenMin : blue;
        const Floats range = max - min;
        const Floats sum = max + min;

        const Floats halfOrLess = sum <= 255 ? sum : 510 - sum;
        const Floats divisor = halfOrLess > 1 ? halfOrLess : zero + 1;
        const Floats scaledLightness = sum * (0.5F * lightness_);
        const Floats lightness = scaledLightness < 255 ? scaledLightness : zero + 255;
        const Floats scaledSaturation = range / divisor * saturation_;
        const Floats saturation = scaledSaturation < 1 ? scaledSaturation : zero + 1;
        const Floats low = lightness - saturation * (lightness <= 127.5F ? lightness : 255 - lightness);
        const Floats high = 2 * lightness - low;

        // Of two equal largest channels the later one in the circle counts, which gives the same hue.
        const Ints redGreen = red > green;
        const Ints greenBlue = green > blue;
        const Ints blueRed = blue > red;
        const Ints isRed = redGreen & ~blueRed;
        const Ints isGreen = greenBlue & ~redGreen;
        const Ints isForward = isRed ? greenBlue : isGreen ? blueRed : redGreen;
        const Floats part = (red + green + blue - sum - min) / (range > 1 ? range : zero + 1);
        const Floats base = isRed ? zero : isGreen ? zero + 2 : zero + 4;
        const Ints isColoured = range > 0;
        Floats hue = isColoured ? (base + (isForward ? part : -part)) * hue_ : zero;
        if (!keepsHue_) { // onto the circle, from -1 up to 5
            const Floats turns = (hue + 1) / 6;
            Ints cut;
            Floats whole;
            Convert(turns, cut);
            Convert(cut, whole);
            hue -= 6 * (whole > turns ? whole - 1 : whole);
        }
        const Ints beyondRed = hue >= 1;
        const Ints beyondGreen = hue >= 3;
        const Floats offset = hue - (beyondGreen ? zero + 4 : beyondRed ? zero + 2 : zero);
        const Ints isAhead = offset >= 0;
        const Floats middle = low + (isAhead ? offset : -offset) * (high - low);

        doubtful = Ints{};
        Ints lowByte;
        Ints middleByte;
        Ints highByte;
        Round(low, lowByte, doubtful);
        Round(middle, middleByte, doubtful);
        Round(high, highByte, doubtful);
        const Ints ahead = isAhead ? middleByte : lowByte;
        const Ints behind = isAhead ? lowByte : middleByte;
        const Ints newRed = beyondGreen ? ahead : beyondRed ? behind : highByte;
        const Ints newGreen = beyondGreen ? behind : beyondRed ? highByte : ahead;
        const Ints newBlue = beyondGreen ? highByte : beyondRed ? ahead : behind;
        pixels = (pixels & qint32(0xFF000000U)) | newRed << 16 | newGreen << 8 | newBlue;
    }

  private:
    // Ties to even, as the plain routine rounds. A value just off the middle between two bytes decides by its last
    // bits.
    [[gnu::always_inline]] static void Round(const Floats& value, Ints& byte, Ints& doubtful) {
        const Floats scaled = value * 256;
        Ints fixed;
        Floats whole;
        Convert(scaled + 0.5F, fixed);
        Convert(fixed, whole);
        const Floats rest = scaled - whole;
        const Ints isNearMiddle = ((fixed & 0xFF) > 126) & ((fixed & 0xFF) < 130);
        doubtful |= isNearMiddle & ((rest > trustedDistance) | (rest < -trustedDistance));
        byte = (fixed + 127 + (fixed >> 8 & 1)) >> 8;
    }

    float hue_;
    float lightness_;
    float saturation_;
    bool keepsHue_;
};

// As many pixels as make whole groups of lanes; returns how many.
template <typename Width>
[[gnu::always_inline]] inline qsizetype ScaleGroups(quint8* pixels, qsizetype count, const HlsFactors& factors) {
    const LaneScaler<Width> scaler(factors);
    constexpr int lanes = Width::lanes;
    qsizetype done = 0;
    for (; done + lanes <= count; done += lanes) {
        quint8* at = pixels + done * 4;
        typename Width::Ints group;
        typename Width::Ints doubtful;
        std::memcpy(&group, at, sizeof group);
        const auto original = group;
        scaler.Scale(group, doubtful);
        std::memcpy(at, &group, sizeof group);
        quint64 doubts[lanes / 2];
        std::memcpy(doubts, &doubtful, sizeof doubts);
        quint64 anyDoubt = 0;
        for (const quint64 doubt : doubts)
            anyDoubt |= doubt;
        if (anyDoubt == 0) [[likely]]
            continue;
        for (int lane = 0; lane < lanes; ++lane) {
            if (doubtful[lane] == 0)
                continue;
            const qint32 pixel = original[lane];
            std::memcpy(at + lane * 4, &pixel, sizeof pixel);
            ScaleHlsPlain(at + lane * 4, 1, factors);
        }
    }
    return done;
}

qsizetype ScaleGroupsAnywhere(quint8* pixels, qsizetype count, const HlsFactors& factors) {
    return ScaleGroups<Narrow>(pixels, count, factors);
}

#if defined(__x86_64__)
[[gnu::target("avx2")]]
#endif
qsizetype
ScaleGroupsWide(quint8* pixels, qsizetype count, const HlsFactors& factors) {
    return ScaleGroups<Wide>(pixels, count, factors);
}

} // namespace

void ScaleHls(quint8* pixels, qsizetype count, const HlsFactors& factors) {
    qsizetype done = 0;
    if (SuitSinglePrecision(factors))
        done =
            HasWideRegisters() ? ScaleGroupsWide(pixels, count, factors) : ScaleGroupsAnywhere(pixels, count, factors);
    ScaleHlsPlain(pixels + done * 4, count - done, factors);
}

} // namespace controls
