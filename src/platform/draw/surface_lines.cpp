// Lines without smoothing. The drawn part of a line is computed before the first pixel, so a line costs what it shows.
#include "draw/surface.h"

#include <algorithm>
#include <cstdlib>

namespace draw {
namespace {

// Coordinates beyond this are brought back to it, so that products of two differences fit 64 bits.
constexpr int furthest = 1 << 27;
constexpr int widestPen = 1024;

QPoint Bounded(QPoint point) {
    return {std::clamp(point.x(), -furthest, furthest), std::clamp(point.y(), -furthest, furthest)};
}

// A line along its longer axis: step i of `length` steps stands at along + i * sign on that axis and, on the other, at
// `across` plus `slope` * i / length rounded to nearest (half up), times the sign of that axis.
struct Steps {
    qint64 length = 0;
    qint64 slope = 0;

    qint64 Across(qint64 i) const { return (2 * i * slope + length) / (2 * length); }
    // The first step whose Across is at least `distance`.
    qint64 FirstAt(qint64 distance) const {
        if (distance <= 0)
            return 0;
        if (slope == 0)
            return length;
        return std::min(length, (length * (2 * distance - 1) + 2 * slope - 1) / (2 * slope));
    }
};

struct Range {
    qint64 first;
    qint64 last; // one past
};

// The steps for which start + sign * step lies in [low, high].
Range StepsBetween(int start, int sign, int low, int high) {
    return sign > 0 ? Range{qint64(low) - start, qint64(high) - start + 1}
                    : Range{qint64(start) - high, qint64(start) - low + 1};
}

} // namespace

void Surface::DrawThinLine(QPoint from, QPoint to, QRgb pixel) {
    from = Bounded(from);
    to = Bounded(to);
    const int dx = std::abs(to.x() - from.x());
    const int dy = std::abs(to.y() - from.y());
    const int signX = to.x() < from.x() ? -1 : 1;
    const int signY = to.y() < from.y() ? -1 : 1;
    const bool steep = dy >= dx;
    const Steps steps{steep ? dy : dx, steep ? dx : dy};
    if (steps.length == 0)
        return;

    for (const QRect& clip : clip_) {
        const Range alongX = StepsBetween(from.x(), signX, clip.left(), clip.right());
        const Range alongY = StepsBetween(from.y(), signY, clip.top(), clip.bottom());
        const Range& along = steep ? alongY : alongX;
        const Range& across = steep ? alongX : alongY;
        const qint64 first = std::max({qint64(0), along.first, steps.FirstAt(across.first)});
        const qint64 last = std::min({steps.length, along.last, steps.FirstAt(across.last)});
        if (across.last <= 0 || first >= last)
            continue;

        const qint64 stride = image_.bytesPerLine() / qsizetype(sizeof(QRgb));
        const qint64 alongStride = steep ? signY * stride : signX;
        const qint64 acrossStride = steep ? signX : signY * stride;
        const qint64 acrossSteps = steps.Across(first);
        QRgb* target = Row(0) + from.y() * stride + from.x() + first * alongStride + acrossSteps * acrossStride;
        qint64 remainder = 2 * first * steps.slope + steps.length - acrossSteps * 2 * steps.length;
        for (qint64 i = first; i < last; ++i) {
            *target = pixel;
            target += alongStride;
            remainder += 2 * steps.slope;
            if (remainder >= 2 * steps.length) {
                remainder -= 2 * steps.length;
                target += acrossStride;
            }
        }
    }
}

QVector<QPoint> LinePoints(QPoint from, QPoint to) {
    from = Bounded(from);
    to = Bounded(to);
    const QPoint distance = to - from;
    const QPoint sign(distance.x() < 0 ? -1 : 1, distance.y() < 0 ? -1 : 1);
    const bool steep = std::abs(distance.y()) >= std::abs(distance.x());
    const Steps steps{std::max(std::abs(distance.x()), std::abs(distance.y())),
                      std::min(std::abs(distance.x()), std::abs(distance.y()))};
    QVector<QPoint> points;
    points.reserve(steps.length);
    for (qint64 i = 0; i < steps.length; ++i) {
        const int along = int(i);
        const int across = int(steps.Across(i));
        points << from + (steep ? QPoint(sign.x() * across, sign.y() * along)
                                : QPoint(sign.x() * along, sign.y() * across));
    }
    return points;
}

// A wide pen is a square that is moved along the line, as one thin line for each of its pixels.
void Surface::DrawThickLine(QPoint from, QPoint to) {
    const int width = std::min(pen_.width, widestPen);
    const int before = (width - 1) / 2;
    const bool steep = std::abs(to.y() - from.y()) >= std::abs(to.x() - from.x());
    for (int i = 0; i < width; ++i) {
        const QPoint shift = steep ? QPoint(i - before, 0) : QPoint(0, i - before);
        DrawThinLine(from + shift, to + shift, ToRgb(pen_.colour));
    }
}

void Surface::LineTo(int x, int y) {
    const QPoint from = Bounded(position_);
    position_ = {x, y};
    if (pen_.isNull || !IsDrawable())
        return;
    Detach();
    if (pen_.width == 1)
        DrawThinLine(from, position_, ToRgb(pen_.colour));
    else
        DrawThickLine(from, Bounded(position_));
}

void Surface::Line(int x1, int y1, int x2, int y2, base::Colour colour) {
    position_ = {x2, y2};
    if (!IsDrawable())
        return;
    Detach();
    DrawThinLine({x1, y1}, {x2, y2}, ToRgb(colour));
}

} // namespace draw
