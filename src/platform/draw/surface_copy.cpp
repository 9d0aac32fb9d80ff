// Copies between surfaces, and pictures.
#include "draw/surface.h"

#include <QPainter>
#include <algorithm>
#include <cstring>
#include <utility>

namespace draw {
namespace {

const QRgb* SourceRow(const QImage& image, int y) { return reinterpret_cast<const QRgb*>(image.constScanLine(y)); }

// Sides of a copy beyond this are an error of the caller; sums with them stay within 32 bits.
bool IsSaneCopy(std::initializer_list<int> numbers) {
    constexpr int furthest = 1 << 28;
    return std::all_of(numbers.begin(), numbers.end(), [](int n) { return n > -furthest && n < furthest; });
}

// For each position of a stretch the source position it shows; `length` may be negative, which mirrors.
int SourcePosition(int position, int length, int sourceLength) {
    const qint64 magnitude = std::abs(qint64(length));
    const qint64 forward = (2 * qint64(position) + 1) * std::abs(qint64(sourceLength)) / (2 * magnitude);
    const bool mirrored = (length < 0) != (sourceLength < 0);
    return int(mirrored ? std::abs(qint64(sourceLength)) - 1 - forward : forward);
}

QImage Disabled(const QImage& image) {
    QImage grey = image.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < grey.height(); ++y) {
        QRgb* row = reinterpret_cast<QRgb*>(grey.scanLine(y));
        for (int x = 0; x < grey.width(); ++x) {
            const int level = (qGray(row[x]) + 255) / 2;
            row[x] = qRgba(level, level, level, qAlpha(row[x]) / 2);
        }
    }
    return grey;
}

} // namespace

bool Surface::BitBlt(int x, int y, int width, int height, const Surface& source, int sourceX, int sourceY,
                     quint32 operation) {
    if (!IsServedRasterOperation(operation) || !IsDrawable() || !source.IsDrawable() ||
        !IsSaneCopy({x, y, width, height, sourceX, sourceY}))
        return false;
    // A shared copy keeps the source as it was when the target is the same surface.
    const QImage from = source.image_;
    Detach();
    const QPoint shift(sourceX - x, sourceY - y);
    const QRect visible = from.rect().translated(-shift) & QRect(x, y, width, height);
    ForEachClipped(visible, [&](const QRect& part) {
        for (int row = part.top(); row <= part.bottom(); ++row) {
            const QRgb* pixels = SourceRow(from, row + shift.y()) + part.left() + shift.x();
            QRgb* target = Row(row) + part.left();
            if (operation == SRCCOPY)
                std::memcpy(target, pixels, size_t(part.width()) * sizeof(QRgb));
            else
                for (int i = 0; i < part.width(); ++i)
                    target[i] = CombinePixel(target[i], pixels[i], operation);
        }
    });
    return true;
}

void Surface::SetDIBitsToDevice(int x, int y, int width, int height, const QRgb* pixels) {
    if (!IsDrawable() || width <= 0 || height <= 0 || !IsSaneCopy({x, y, width, height}))
        return;
    Detach();
    ForEachClipped(QRect(x, y, width, height), [&](const QRect& part) {
        for (int row = part.top(); row <= part.bottom(); ++row)
            std::memcpy(Row(row) + part.left(), pixels + qsizetype(row - y) * width + part.left() - x,
                        size_t(part.width()) * sizeof(QRgb));
    });
}

bool Surface::StretchBlt(int x, int y, int width, int height, const Surface& source, int sourceX, int sourceY,
                         int sourceWidth, int sourceHeight, quint32 operation) {
    if (width == sourceWidth && height == sourceHeight && width >= 0 && height >= 0)
        return BitBlt(x, y, width, height, source, sourceX, sourceY, operation);
    if (!IsServedRasterOperation(operation) || !IsDrawable() || !source.IsDrawable() ||
        !IsSaneCopy({x, y, width, height, sourceX, sourceY, sourceWidth, sourceHeight}))
        return false;
    if (width == 0 || height == 0 || sourceWidth == 0 || sourceHeight == 0)
        return true;
    const QImage from = source.image_;
    Detach();
    const QRect target = QRect(x, y, width, height).normalized();
    const QRect origin = QRect(sourceX, sourceY, sourceWidth, sourceHeight).normalized();
    ForEachClipped(target, [&](const QRect& part) {
        for (int row = part.top(); row <= part.bottom(); ++row) {
            const int fromY = origin.top() + SourcePosition(row - target.top(), height, sourceHeight);
            if (fromY < 0 || fromY >= from.height())
                continue;
            const QRgb* pixels = SourceRow(from, fromY);
            QRgb* pixel = Row(row) + part.left();
            for (int column = part.left(); column <= part.right(); ++column, ++pixel) {
                const int fromX = origin.left() + SourcePosition(column - target.left(), width, sourceWidth);
                if (fromX >= 0 && fromX < from.width())
                    *pixel = CombinePixel(*pixel, pixels[fromX], operation);
            }
        }
    });
    return true;
}

bool Surface::AlphaBlend(int x, int y, int width, int height, const Surface& source, int sourceX, int sourceY,
                         int sourceWidth, int sourceHeight, int alpha) {
    if (!IsDrawable() || !source.IsDrawable() || width < 0 || height < 0 || sourceWidth < 0 || sourceHeight < 0 ||
        !IsSaneCopy({x, y, width, height, sourceX, sourceY, sourceWidth, sourceHeight}) ||
        !source.image_.rect().contains(QRect(sourceX, sourceY, sourceWidth, sourceHeight)))
        return false;
    if (width == 0 || height == 0)
        return true;
    if (width != sourceWidth || height != sourceHeight) {
        const QSize needed = QSize(width, height);
        if (!IsDrawableSize(needed))
            return false;
        Surface stretched(needed);
        stretched.StretchBlt(0, 0, width, height, source, sourceX, sourceY, sourceWidth, sourceHeight);
        return AlphaBlend(x, y, width, height, stretched, 0, 0, width, height, alpha);
    }
    const QImage from = source.image_;
    Detach();
    const uint constantAlpha = uint(std::clamp(alpha, 0, 255));
    ForEachClipped(QRect(x, y, width, height), [&](const QRect& part) {
        for (int row = part.top(); row <= part.bottom(); ++row)
            BlendRow(Row(row) + part.left(), SourceRow(from, row - y + sourceY) + part.left() - x + sourceX,
                     part.width(), constantAlpha);
    });
    return true;
}

void Surface::DrawPicture(const Picture& picture, int x, int y) {
    DrawPicture(picture, x, y, picture.Width(), picture.Height());
}

void Surface::DrawPicture(const Picture& picture, int x, int y, int width, int height) {
    if (picture.IsEmpty() || !IsDrawable() || width <= 0 || height <= 0 || !IsSaneCopy({x, y, width, height}))
        return;
    const QImage& image = picture.Image();
    const bool stretched = QSize(width, height) != image.size();
    Detach();
    ForEachClipped(QRect(x, y, width, height), [&](const QRect& part) {
        if (stretched) {
            QPainter painter(&image_);
            painter.setClipRect(part);
            painter.setRenderHint(QPainter::SmoothPixmapTransform);
            painter.drawImage(QRect(x, y, width, height), image);
            return;
        }
        for (int row = part.top(); row <= part.bottom(); ++row) {
            const QRgb* pixels = SourceRow(image, row - y) + part.left() - x;
            if (image.hasAlphaChannel())
                BlendPremultipliedRow(Row(row) + part.left(), pixels, part.width(), 255);
            else
                std::memcpy(Row(row) + part.left(), pixels, size_t(part.width()) * sizeof(QRgb));
        }
    });
}

void Surface::TilePicture(const Picture& picture, const QRect& rect) {
    if (picture.IsEmpty() || rect.isEmpty() || !IsDrawable())
        return;
    const QRect visible = rect & image_.rect();
    // Tiles before the visible part are skipped by whole widths and heights.
    const int firstX = rect.left() + (visible.left() - rect.left()) / picture.Width() * picture.Width();
    const int firstY = rect.top() + (visible.top() - rect.top()) / picture.Height() * picture.Height();
    const QVector<QRect> clip = std::exchange(clip_, ClipWithin(visible));
    for (int y = firstY; y <= visible.bottom(); y += picture.Height())
        for (int x = firstX; x <= visible.right(); x += picture.Width())
            DrawPicture(picture, x, y);
    clip_ = clip;
}

bool Surface::DrawStateA(const Picture& picture, int x, int y, int width, int height, unsigned flags) {
    const unsigned form = flags & 0xFU;
    const bool formFits = picture.Type() == PictureType::Icon ? form == DST_ICON : form == DST_BITMAP;
    if (picture.IsEmpty() || !formFits)
        return false;
    const Picture shown = flags & DSS_DISABLED ? Picture::IconFromImage(Disabled(picture.Image())) : picture;
    const QRect area(x, y, width > 0 ? width : picture.Width(), height > 0 ? height : picture.Height());
    const QVector<QRect> clip = std::exchange(clip_, ClipWithin(area));
    DrawPicture(shown, x, y);
    clip_ = clip;
    return true;
}

} // namespace draw
