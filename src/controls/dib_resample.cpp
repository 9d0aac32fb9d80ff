// Bilinear resampling. Each source row that is needed is stretched once; a target row then blends two of those.
#include "controls/dib_pixels.h"
#include "controls/wide_code.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <vector>

namespace controls {
namespace {

struct SourcePlace {
    int first;
    int second;
    float part; // of the second
};

// Positions scale by a single-precision ratio; a neighbour beyond the last one is the pixel itself.
SourcePlace PlaceOf(int position, float ratio, int length) {
    const float at = float(position) * ratio;
    const int first = std::min(int(at), length - 1);
    return {first, std::min(first + 1, length - 1), at - std::floor(at)};
}

using Byte16 = quint8 __attribute__((vector_size(16)));
using Short8 = qint16 __attribute__((vector_size(16)));
using Int4 = qint32 __attribute__((vector_size(16)));
using Float4 = float __attribute__((vector_size(16)));
using Byte32 = quint8 __attribute__((vector_size(32)));
using Short16 = qint16 __attribute__((vector_size(32)));
using Int8 = qint32 __attribute__((vector_size(32)));
using Float8 = float __attribute__((vector_size(32)));

[[gnu::always_inline]] inline qint32 PixelAt(const quint8* at) {
    qint32 pixel;
    std::memcpy(&pixel, at, sizeof pixel);
    return pixel;
}

// A pixel's channels. They are widened by interleaving with zeros, which every processor has an instruction for; a
// conversion of four bytes as such is compiled to a load and a conversion of each.
[[gnu::always_inline]] inline Float4 ChannelsAt(const quint8* at) {
    const auto bytes = reinterpret_cast<Byte16>(Int4{PixelAt(at), 0, 0, 0});
    const auto words = reinterpret_cast<Short8>(
        __builtin_shufflevector(bytes, Byte16{}, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23));
    return __builtin_convertvector(
        reinterpret_cast<Int4>(__builtin_shufflevector(words, Short8{}, 0, 8, 1, 9, 2, 10, 3, 11)), Float4);
}

// The same of two pixels, which need not be neighbours.
[[gnu::always_inline]] inline void ChannelsAt(const quint8* at, const quint8* other, Float8& to) {
    const auto bytes = reinterpret_cast<Byte32>(Int8{PixelAt(at), 0, 0, 0, PixelAt(other), 0, 0, 0});
    const auto words = reinterpret_cast<Short16>(__builtin_shufflevector(bytes, Byte32{}, 0, 32, 1, 33, 2, 34, 3, 35, 4,
                                                                         36, 5, 37, 6, 38, 7, 39, 16, 48, 17, 49, 18,
                                                                         50, 19, 51, 20, 52, 21, 53, 22, 54, 23, 55));
    to = __builtin_convertvector(reinterpret_cast<Int8>(__builtin_shufflevector(words, Short16{}, 0, 16, 1, 17, 2, 18,
                                                                                3, 19, 8, 24, 9, 25, 10, 26, 11, 27)),
                                 Float8);
}

[[gnu::always_inline]] inline void StretchRow(const quint8* from, const SourcePlace* places, float* to, int pixels) {
    for (int x = 0; x < pixels; ++x) {
        const Float4 first = ChannelsAt(from + places[x].first * 4);
        const Float4 second = ChannelsAt(from + places[x].second * 4);
        const Float4 result = first + (second - first) * places[x].part;
        std::memcpy(to + x * 4, &result, sizeof result);
    }
}

[[gnu::always_inline]] inline void StretchPairs(const quint8* from, const SourcePlace* places, float* to, int pairs) {
    for (const SourcePlace* end = places + pairs * 2; places != end; places += 2, to += 8) {
        Float8 first;
        Float8 second;
        ChannelsAt(from + places[0].first * 4, from + places[1].first * 4, first);
        ChannelsAt(from + places[0].second * 4, from + places[1].second * 4, second);
        const float a = places[0].part;
        const float b = places[1].part;
        const Float8 result = first + (second - first) * Float8{a, a, a, a, b, b, b, b};
        std::memcpy(to, &result, sizeof result);
    }
}

// Rounds to nearest, ties to even, for 0 to 255: adding 1.5 * 2^23 leaves the whole number in the low bits.
[[gnu::always_inline]] inline void BlendRows(const float* __restrict first, const float* __restrict second, float part,
                                             quint8* __restrict target, int bytes) {
    for (int i = 0; i < bytes; ++i)
        target[i] = quint8(std::bit_cast<quint32>(first[i] + (second[i] - first[i]) * part + 12582912.0F));
}

struct RowRoutines {
    void (*stretch)(const quint8* from, const SourcePlace* places, float* to, int pixels);
    void (*blend)(const float* first, const float* second, float part, quint8* target, int bytes);
};

void StretchAnywhere(const quint8* from, const SourcePlace* places, float* to, int pixels) {
    StretchRow(from, places, to, pixels);
}

void BlendAnywhere(const float* first, const float* second, float part, quint8* target, int bytes) {
    BlendRows(first, second, part, target, bytes);
}

#if defined(__x86_64__)
[[gnu::target("avx2")]]
#endif
void StretchWide(const quint8* from, const SourcePlace* places, float* to, int pixels) {
    const int paired = pixels & ~1;
    StretchPairs(from, places, to, paired / 2);
    StretchRow(from, places + paired, to + paired * 4, pixels - paired);
}

#if defined(__x86_64__)
[[gnu::target("avx2")]]
#endif
void BlendWide(const float* first, const float* second, float part, quint8* target, int bytes) {
    BlendRows(first, second, part, target, bytes);
}

RowRoutines Routines() {
    return HasWideRegisters() ? RowRoutines{StretchWide, BlendWide} : RowRoutines{StretchAnywhere, BlendAnywhere};
}

class StretchedRows {
  public:
    StretchedRows(const PixelRows& source, int newWidth, decltype(RowRoutines::stretch) stretch)
        : source_(source), newWidth_(newWidth), stretch_(stretch),
          places_(size_t(newWidth)), rows_{std::vector<float>(size_t(newWidth) * 4),
                                           std::vector<float>(size_t(newWidth) * 4)} {
        const float ratio = float(source.width - 1) / float(newWidth);
        for (int x = 0; x < newWidth; ++x)
            places_[size_t(x)] = PlaceOf(x, ratio, source.width);
    }

    // The row as it is after stretching; keeps the last even and the last odd one.
    const float* Row(int row) {
        std::vector<float>& stretched = rows_[size_t(row & 1)];
        if (held_[size_t(row & 1)] != row) {
            held_[size_t(row & 1)] = row;
            stretch_(source_.Row(row), places_.data(), stretched.data(), newWidth_);
        }
        return stretched.data();
    }

  private:
    PixelRows source_;
    int newWidth_;
    decltype(RowRoutines::stretch) stretch_;
    std::vector<SourcePlace> places_;
    std::array<std::vector<float>, 2> rows_;
    std::array<int, 2> held_{-1, -1};
};

} // namespace

void ResampleBilinear(const PixelRows& source, quint8* target, int newWidth, int newHeight) {
    const RowRoutines routines = Routines();
    StretchedRows rows(source, newWidth, routines.stretch);
    const float ratio = float(source.height - 1) / float(newHeight);
    const int bytes = newWidth * 4;
    for (int y = 0; y < newHeight; ++y) {
        const SourcePlace place = PlaceOf(y, ratio, source.height);
        const float* first = rows.Row(place.first);
        const float* second = rows.Row(place.second);
        routines.blend(first, second, place.part, target + qsizetype(y) * bytes, bytes);
    }
}

} // namespace controls
