#include "controls/gradient.h"

#include "base/numbers.h"
#include "draw/system_colours.h"

#include <algorithm>
#include <cmath>

namespace controls {
namespace {

struct FloatPoint {
    float x;
    float y;
};

// Where the sweep begins, relative to the segment, and which way it goes.
struct Sweep {
    float offsetX;
    float offsetY;
    int stepX;
    int stepY;
};

double SafeDivide(double a, double b) { return b == 0 ? 0 : a / b; }

double WithinCircle(double degrees) { return degrees - base::Int(base::Int(degrees / 360) * 360); }

base::Colour Resolved(base::Colour colour) {
    const quint32 index = colour.Value() & 0x7FFFFFFFU;
    return colour.IsSystemColour() && index < 25 ? draw::GetSysColor(int(index)) : colour;
}

// Products in double precision, everything else in single.
void RotatePoint(const FloatPoint& centre, FloatPoint& point, float degrees) {
    const float radians = float(degrees * 0.017453292519943278);
    const double sine = std::sin(radians);
    const double cosine = std::cos(radians);
    const float dx = point.x - centre.x;
    const float dy = point.y - centre.y;
    point.x = float(dy * sine + dx * cosine + centre.x);
    point.y = float(-(dx * sine - dy * cosine) + centre.y);
}

// The offset shifts the segment so that it just touches the edge where the sweep begins.
Sweep ChooseSweep(float angle, const FloatPoint& p0, const FloatPoint& p1, qint32 width, qint32 height) {
    const bool steep = std::abs(p0.y - p1.y) >= std::abs(p0.x - p1.x);
    const float minX = std::min(p0.x, p1.x);
    const float minY = std::min(p0.y, p1.y);
    const bool leftward = angle > 90 && angle <= 270;
    const bool upward = angle >= 0 && angle <= 180;
    if (steep)
        return leftward ? Sweep{float(width) - minX, 0, -1, 0} : Sweep{-minX, 0, 1, 0};
    return upward ? Sweep{0, float(height) - minY, 0, -1} : Sweep{0, -minY, 0, 1};
}

bool HasLeft(const Sweep& sweep, QPoint a, QPoint b, qint32 width, qint32 height) {
    if (sweep.stepX >= 1)
        return a.x() > width && b.x() > width;
    if (sweep.stepX < 0)
        return a.x() < 0 && b.x() < 0;
    if (sweep.stepY >= 1)
        return a.y() > height && b.y() > height;
    return a.y() < 0 && b.y() < 0;
}

// Both ends of the segment in turn, one pair for each step. The last pair may lack its second end.
QVector<QPoint> SweepPoints(const Sweep& sweep, const FloatPoint& p0, const FloatPoint& p1, qint32 width,
                            qint32 height) {
    QVector<QPoint> points;
    points.reserve(2000);
    points << QPoint(base::RoundToInt(p0.x + sweep.offsetX), base::RoundToInt(p0.y + sweep.offsetY))
           << QPoint(base::RoundToInt(p1.x + sweep.offsetX), base::RoundToInt(p1.y + sweep.offsetY));
    do {
        points << points[points.size() - 2] + QPoint(sweep.stepX, sweep.stepY);
    } while (!HasLeft(sweep, points[points.size() - 1], points[points.size() - 2], width, height));
    return points;
}

// A slanting sweep to the right or downwards begins inside the rectangle; the corner behind its first line takes the
// first colour.
void DrawLeadIn(draw::Surface& context, const Sweep& sweep, QPoint p0, QPoint p1, base::Colour colour) {
    const QPoint step(sweep.stepX, sweep.stepY);
    const Sweep back{0, 0, -sweep.stepX, -sweep.stepY};
    if (sweep.stepX < 0 || sweep.stepY < 0)
        return;
    for (;;) {
        p0 -= step;
        p1 -= step;
        if (HasLeft(back, p0, p1, context.Width(), context.Height()))
            return;
        context.Line(p0.x(), p0.y(), p1.x(), p1.y(), colour);
    }
}

} // namespace

void clsGradient::SetColor1(base::Colour colour) { color1_ = Resolved(colour); }

void clsGradient::SetColor2(base::Colour colour) { color2_ = Resolved(colour); }

void clsGradient::SetAngle(double degrees) {
    if (std::isfinite(degrees))
        angle_ = float(WithinCircle(degrees));
}

qint32 clsGradient::BlendColors(base::Colour from, base::Colour to, qint32 steps,
                                QVector<base::Colour>& colours) const {
    steps = std::max(steps, 2);
    const float red = float(SafeDivide(to.Red() - from.Red(), steps));
    const float green = float(SafeDivide(to.Green() - from.Green(), steps));
    const float blue = float(SafeDivide(to.Blue() - from.Blue(), steps));
    colours.resize(steps);
    colours.front() = from;
    colours.back() = to;
    for (qint32 i = 1; i < steps - 1; ++i)
        colours[i] = base::Colour::FromRgb(base::RoundToInt(double(i) * red + from.Red()),
                                           base::RoundToInt(double(i) * green + from.Green()),
                                           base::RoundToInt(double(i) * blue + from.Blue()));
    return steps;
}

bool clsGradient::Draw(draw::Surface& target) const {
    if (!target.IsDrawable() || target.Width() <= 1 || target.Height() <= 1)
        return false;
    return DrawGradientLines(target, target.Width(), target.Height()) >= 1;
}

qint32 clsGradient::DrawGradientLines(draw::Surface& context, qint32 width, qint32 height) const {
    const FloatPoint centre{float(width / 2), float(height / 2)};
    const double longer = std::max(width, height);
    const float halfLength = float((std::sqrt(longer * longer + longer * longer) + 2) / 2);
    FloatPoint p0{centre.x - halfLength, centre.y};
    FloatPoint p1{centre.x + halfLength, centre.y};
    const float rotation = float(WithinCircle(double(angle_) + 90));
    RotatePoint(centre, p0, rotation);
    RotatePoint(centre, p1, rotation);

    const Sweep sweep = ChooseSweep(angle_, p0, p1, width, height);
    const QVector<QPoint> points = SweepPoints(sweep, p0, p1, width, height);
    QVector<base::Colour> ramp;
    BlendColors(color1_, color2_, base::RoundToInt(double(points.size()) / 2), ramp);

    DrawLeadIn(context, sweep, points[0], points[1], color1_);
    const draw::Pen oldPen = context.CurrentPen();
    qint32 k = 0;
    for (; k < points.size() - 1; k += 2) {
        context.MoveToEx(points[k].x(), points[k].y());
        context.SelectPen({ramp[k / 2]});
        context.LineTo(points[k + 1].x(), points[k + 1].y());
        context.SelectPen(oldPen);
    }
    return k;
}

} // namespace controls
