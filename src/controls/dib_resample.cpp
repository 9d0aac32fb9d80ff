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

using Byte4 = quint8 __attribute__((vector_size(4)));
using Float4 = float __attribute__((vector_size(16)));

[[gnu::always_inline]] inline Float4 PixelAt(const quint8* at) {
    Byte4 bytes;
    std::memcpy(&bytes, at, sizeof bytes);
    return __builtin_convertvector(bytes, Float4);
}

[[gnu::always_inline]] inline void StretchRow(const quint8* from, const SourcePlace* places, float* to, int pixels) {
    for (int x = 0; x < pixels; ++x) {
        const Float4 first = PixelAt(from + places[x].first * 4);
        const Float4 second = PixelAt(from + places[x].second * 4);
        const Float4 result = first + (second - first) * places[x].part;
        std::memcpy(to + x * 4, &result, sizeof result);
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
    StretchRow(from, places, to, pixels);
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
