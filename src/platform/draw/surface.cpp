#include "draw/surface.h"

#include "draw/system_colours.h"

#include <algorithm>
#include <utility>

namespace draw {

Brush CreatePatternBrush(const Picture& picture) {
    Brush brush;
    if (picture.IsEmpty())
        return brush;
    brush.kind_ = Brush::Kind::Pattern;
    brush.pattern_ = Surface(picture).Image();
    return brush;
}

Brush GetSysColorBrush(int index) { return Brush(GetSysColor(index)); }

Surface::Surface(QSize size) : size_(size) {
    if (IsDrawableSize(size))
        image_ = QImage(size, QImage::Format_RGB32);
    ResetClip();
    Cls(base::Colour());
}

Surface::Surface(const Picture& picture) : Surface(QSize(picture.Width(), picture.Height())) {
    DrawPicture(picture, 0, 0);
}

void Surface::Detach() { bits_ = image_.bits(); }

void Surface::Cls(base::Colour colour) {
    position_ = {};
    if (IsDrawable())
        image_.fill(ToRgb(colour));
}

Pen Surface::SelectPen(const Pen& pen) {
    Pen old = std::exchange(pen_, pen);
    pen_.width = std::max(1, pen_.width);
    return old;
}

Brush Surface::SelectBrush(const Brush& brush) { return std::exchange(brush_, brush); }

void Surface::SelectClipRgn(const Region& region) {
    clip_.clear();
    for (const QRect& rect : region.ToQRegion()) {
        const QRect part = rect & image_.rect();
        if (!part.isEmpty())
            clip_.append(part);
    }
}

QVector<QRect> Surface::ClipWithin(const QRect& rect) const {
    QVector<QRect> parts;
    ForEachClipped(rect, [&parts](const QRect& part) { parts.append(part); });
    return parts;
}

void Surface::ResetClip() {
    clip_.clear();
    if (IsDrawable())
        clip_.append(image_.rect());
}

bool Surface::IsInClip(int x, int y) const {
    return std::any_of(clip_.begin(), clip_.end(), [x, y](const QRect& rect) { return rect.contains(x, y); });
}

bool Surface::SetPixel(int x, int y, base::Colour colour) {
    if (!IsInClip(x, y))
        return false;
    Detach();
    Row(y)[x] = ToRgb(colour);
    return true;
}

base::Colour Surface::GetPixel(int x, int y) const {
    if (!IsInClip(x, y))
        return CLR_INVALID;
    return FromRgb(reinterpret_cast<const QRgb*>(image_.constScanLine(y))[x]);
}

void Surface::FillSolid(const QRect& rect, QRgb pixel) {
    Detach();
    ForEachClipped(rect, [this, pixel](const QRect& part) {
        for (int y = part.top(); y <= part.bottom(); ++y)
            std::fill_n(Row(y) + part.left(), part.width(), pixel);
    });
}

void Surface::FillPattern(const QRect& rect, const QImage& pattern) {
    Detach();
    ForEachClipped(rect, [this, &pattern](const QRect& part) {
        for (int y = part.top(); y <= part.bottom(); ++y) {
            const QRgb* source = reinterpret_cast<const QRgb*>(pattern.constScanLine(y % pattern.height()));
            QRgb* row = Row(y);
            for (int x = part.left(); x <= part.right(); ++x)
                row[x] = source[x % pattern.width()];
        }
    });
}

void Surface::FillRect(const QRect& rect, const Brush& brush) {
    if (brush.IsNull() || rect.isEmpty())
        return;
    if (brush.IsSolid())
        FillSolid(rect, brush.Pixel());
    else
        FillPattern(rect, brush.Pattern());
}

void Surface::FillRgn(const Region& region, const Brush& brush) {
    for (const QRect& rect : region.ToQRegion())
        FillRect(rect, brush);
}

bool Surface::GradientFill(std::span<const TriVertex> vertices, std::span<const GradientRect> rects, quint32 mode) {
    if (mode > GRADIENT_FILL_RECT_V)
        return false;
    const bool indicesFit = std::all_of(rects.begin(), rects.end(), [&vertices](const GradientRect& rect) {
        return rect.upperLeft < vertices.size() && rect.lowerRight < vertices.size();
    });
    if (!indicesFit)
        return false;
    Detach();
    const bool vertical = mode == GRADIENT_FILL_RECT_V;
    for (const GradientRect& ends : rects) {
        TriVertex from = vertices[ends.upperLeft];
        TriVertex to = vertices[ends.lowerRight];
        const QRect rect = QRect(from.x, from.y, to.x - from.x, to.y - from.y).normalized();
        if (vertical ? from.y > to.y : from.x > to.x)
            std::swap(from, to);
        const qint64 length = vertical ? rect.height() : rect.width();
        const int origin = vertical ? rect.top() : rect.left();
        const auto pixelAt = [&](int position) {
            const qint64 offset = position - origin;
            const auto channel = [&](int first, int last) {
                return base::Colour(quint32(first + (last - first) * offset / length) >> 8).Value();
            };
            return qRgb(int(channel(from.red, to.red)), int(channel(from.green, to.green)),
                        int(channel(from.blue, to.blue)));
        };
        ForEachClipped(rect, [&](const QRect& part) {
            for (int y = part.top(); y <= part.bottom(); ++y) {
                if (vertical)
                    std::fill_n(Row(y) + part.left(), part.width(), pixelAt(y));
                else if (y > part.top())
                    std::copy_n(Row(part.top()) + part.left(), part.width(), Row(y) + part.left());
                else
                    for (int x = part.left(); x <= part.right(); ++x)
                        Row(y)[x] = pixelAt(x);
            }
        });
    }
    return true;
}

TriVertex MakeTriVertex(int x, int y, base::Colour colour) {
    return {x, y, quint16(colour.Red() << 8), quint16(colour.Green() << 8), quint16(colour.Blue() << 8)};
}

} // namespace draw
