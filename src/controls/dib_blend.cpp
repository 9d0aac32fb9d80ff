// Blending of byte rows, compiled for the processor's wide registers where it has them. Both forms compute the same.
#include "controls/dib_pixels.h"
#include "controls/wide_code.h"

#include <algorithm>

namespace controls {
namespace {

// Whole numbers give the same bytes as fractions here: 255 is odd, so no result lies halfway between two bytes.
[[gnu::always_inline]] inline quint32 DivideBy255(quint32 pair) {
    pair += 0x00800080U;
    return (pair + (pair >> 8 & 0x00FF00FFU)) >> 8 & 0x00FF00FFU;
}

[[gnu::always_inline]] inline void BlendWords(quint32* __restrict target, const quint32* __restrict source, int pixels,
                                              quint32 share) {
    const quint32 rest = 255 - share;
    for (int i = 0; i < pixels; ++i) {
        const quint32 below = target[i];
        const quint32 above = source[i];
        const quint32 redBlue = DivideBy255((above & 0x00FF00FFU) * share + (below & 0x00FF00FFU) * rest);
        const quint32 green = DivideBy255((above >> 8 & 0xFFU) * share + (below >> 8 & 0xFFU) * rest);
        target[i] = (below & 0xFF000000U) | redBlue | green << 8;
    }
}

void BlendWordsAnywhere(quint32* target, const quint32* source, int pixels, quint32 share) {
    BlendWords(target, source, pixels, share);
}

#if defined(__x86_64__)
[[gnu::target("avx2")]]
#endif
void BlendWordsWide(quint32* target, const quint32* source, int pixels, quint32 share) {
    BlendWords(target, source, pixels, share);
}

} // namespace

void BlendPixels(quint32* target, const quint32* source, int pixels, int alpha) {
    const auto share = quint32(std::clamp(alpha, 0, 255));
    if (HasWideRegisters())
        BlendWordsWide(target, source, pixels, share);
    else
        BlendWordsAnywhere(target, source, pixels, share);
}

} // namespace controls
