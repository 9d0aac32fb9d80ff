#include "draw/region.h"

#include <QList>
#include <QRect>
#include <algorithm>
#include <cmath>

namespace draw {

Region CreateRectRgn(int left, int top, int right, int bottom) {
    const QRect rect = QRect(left, top, right - left, bottom - top).normalized();
    return Region(QRegion(rect));
}

// A pixel belongs to the corner when the point a quarter in from its outer corner lies in the ellipse. The measure is
// the same along rows and columns, so corners are symmetric; a 5 by 5 corner leaves out (0,0), (1,0) and (0,1).
int CornerInset(int row, int width, int height) {
    const double radiusX = width / 2.0;
    const double radiusY = height / 2.0;
    const double distance = radiusY - row - 0.25;
    if (distance <= 0 || radiusX <= 0)
        return 0;
    const double reach = radiusX * std::sqrt(std::max(0.0, 1.0 - distance * distance / (radiusY * radiusY)));
    return std::max(0, int(std::ceil(radiusX - reach - 0.25)));
}

Region CreateRoundRectRgn(int left, int top, int right, int bottom, int width, int height) {
    if (left > right)
        std::swap(left, right);
    if (top > bottom)
        std::swap(top, bottom);
    width = std::abs(width);
    height = std::abs(height);
    if (width < 2 || height < 2)
        return CreateRectRgn(left, top, right, bottom);
    const QRect rect(left, top, right - left - 1, bottom - top - 1);
    if (rect.isEmpty())
        return Region();
    width = std::min(width, rect.width());
    height = std::min(height, rect.height());

    const int cornerRows = std::min((height + 1) / 2, rect.height() / 2);
    QList<QRect> rows;
    for (int row = 0; row < cornerRows; ++row) {
        const int inset = CornerInset(row, width, height);
        rows.append(QRect(rect.x() + inset, rect.y() + row, rect.width() - 2 * inset, 1));
    }
    QList<QRect> all = rows;
    if (rect.height() > 2 * cornerRows)
        all.append(QRect(rect.x(), rect.y() + cornerRows, rect.width(), rect.height() - 2 * cornerRows));
    for (auto row = rows.crbegin(); row != rows.crend(); ++row)
        all.append(QRect(row->x(), 2 * rect.y() + rect.height() - 1 - row->y(), row->width(), 1));

    QRegion pixels;
    for (const QRect& part : all)
        pixels += part;
    return Region(pixels);
}

void CombineRgn(Region& target, const Region& first, const Region& second, RegionMode mode) {
    const QRegion& a = first.ToQRegion();
    const QRegion& b = second.ToQRegion();
    switch (mode) {
    case RGN_AND:
        target = Region(a & b);
        break;
    case RGN_OR:
        target = Region(a | b);
        break;
    case RGN_XOR:
        target = Region(a ^ b);
        break;
    case RGN_DIFF:
        target = Region(a - b);
        break;
    case RGN_COPY:
        target = Region(a);
        break;
    }
}

} // namespace draw
