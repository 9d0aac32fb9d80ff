#include "draw/pixels.h"

namespace draw {
namespace {

constexpr int largestSide = 32767;
constexpr qint64 mostPixels = 64LL * 1024 * 1024;

// A whole number divided by 255 and rounded, exact for 0 to 255 * 255, in both halves of the word at once.
constexpr quint32 DivideBy255(quint32 pair) {
    pair += 0x00800080U;
    return (pair + (pair >> 8 & 0x00FF00FFU)) >> 8 & 0x00FF00FFU;
}

} // namespace

bool IsDrawableSize(QSize size) {
    return size.width() > 0 && size.height() > 0 && size.width() <= largestSide && size.height() <= largestSide &&
           qint64(size.width()) * size.height() <= mostPixels;
}

QRgb BlendPixel(QRgb target, QRgb source, uint alpha) {
    const quint32 redBlue = (source & 0x00FF00FFU) * alpha + (target & 0x00FF00FFU) * (255 - alpha);
    const quint32 green = (source >> 8 & 0xFFU) * alpha + (target >> 8 & 0xFFU) * (255 - alpha);
    return 0xFF000000U | DivideBy255(redBlue) | DivideBy255(green) << 8;
}

void BlendRow(QRgb* target, const QRgb* source, int count, uint alpha) {
    for (int i = 0; i < count; ++i)
        target[i] = BlendPixel(target[i], source[i], alpha);
}

void BlendPremultipliedRow(QRgb* target, const QRgb* source, int count, uint alpha) {
    for (int i = 0; i < count; ++i) {
        const quint32 redBlue = DivideBy255((source[i] & 0x00FF00FFU) * alpha);
        const quint32 alphaGreen = DivideBy255((source[i] >> 8 & 0x00FF00FFU) * alpha);
        const quint32 rest = 255 - (alphaGreen >> 16);
        const quint32 targetRedBlue = DivideBy255((target[i] & 0x00FF00FFU) * rest);
        const quint32 targetGreen = DivideBy255((target[i] >> 8 & 0xFFU) * rest);
        target[i] = 0xFF000000U | (redBlue + targetRedBlue) | ((alphaGreen & 0xFFU) + targetGreen) << 8;
    }
}

bool IsServedRasterOperation(quint32 operation) {
    switch (operation) {
    case BLACKNESS:
    case NOTSRCCOPY:
    case DSTINVERT:
    case SRCINVERT:
    case SRCAND:
    case MERGEPAINT:
    case SRCCOPY:
    case SRCPAINT:
    case WHITENESS:
        return true;
    default:
        return false;
    }
}

QRgb CombinePixel(QRgb target, QRgb source, quint32 operation) {
    switch (operation) {
    case BLACKNESS:
        return 0xFF000000U;
    case NOTSRCCOPY:
        return 0xFF000000U | ~source;
    case DSTINVERT:
        return 0xFF000000U | ~target;
    case SRCINVERT:
        return 0xFF000000U | (source ^ target);
    case SRCAND:
        return 0xFF000000U | (source & target);
    case MERGEPAINT:
        return 0xFF000000U | ~source | target;
    case SRCPAINT:
        return 0xFF000000U | source | target;
    case WHITENESS:
        return 0xFFFFFFFFU;
    default:
        return 0xFF000000U | source;
    }
}

} // namespace draw
