// Bilinear resampling. Each source row that is needed is stretched once; a target row then blends two of those.
#include "controls/dib_pixels.h"

#include <array>
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

// Rounds to nearest, ties to even, for 0 to 255: adding 1.5 * 2^23 leaves the whole number in the low bits.
quint8 RoundedByte(float value) {
    const float shifted = value + 12582912.0F;
    quint32 bits = 0;
    std::memcpy(&bits, &shifted, sizeof bits);
    return quint8(bits);
}

class StretchedRows {
  public:
    StretchedRows(const PixelRows& source, int newWidth)
        : source_(source), newWidth_(newWidth),
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
            Stretch(source_.Row(row), stretched.data());
        }
        return stretched.data();
    }

  private:
    void Stretch(const quint8* from, float* to) const {
        for (int x = 0; x < newWidth_; ++x) {
            const SourcePlace& place = places_[size_t(x)];
            const quint8* first = from + place.first * 4;
            const quint8* second = from + place.second * 4;
            for (int channel = 0; channel < 4; ++channel)
                to[x * 4 + channel] =
                    float(first[channel]) + float(int(second[channel]) - int(first[channel])) * place.part;
        }
    }

    PixelRows source_;
    int newWidth_;
    std::vector<SourcePlace> places_;
    std::array<std::vector<float>, 2> rows_;
    std::array<int, 2> held_{-1, -1};
};

void BlendRows(const float* first, const float* second, float part, quint8* target, qsizetype bytes) {
    for (qsizetype i = 0; i < bytes; ++i)
        target[i] = RoundedByte(first[i] + (second[i] - first[i]) * part);
}

} // namespace

void ResampleBilinear(const PixelRows& source, quint8* target, int newWidth, int newHeight) {
    StretchedRows rows(source, newWidth);
    const float ratio = float(source.height - 1) / float(newHeight);
    const qsizetype bytes = qsizetype(newWidth) * 4;
    for (int y = 0; y < newHeight; ++y) {
        const SourcePlace place = PlaceOf(y, ratio, source.height);
        const float* first = rows.Row(place.first);
        const float* second = rows.Row(place.second);
        BlendRows(first, second, place.part, target + y * bytes, bytes);
    }
}

} // namespace controls
