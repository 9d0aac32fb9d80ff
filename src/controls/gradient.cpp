#include "controls/gradient.h"

#include "base/numbers.h"
#include "draw/system_colours.h"

#include <algorithm>
#include <cmath>

namespace controls {
namespace {

constexpr double radiansPerDegree = 0.017453292519943278;

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
    const float radians = float(degrees * radiansPerDegree);
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

// One line of the sweep stands where the first one stands, moved by as many steps. So a row (or a column) of pixels
// shows the sweep's colours one after the other, beginning where the first line meets it; painting whole rows shows
// what drawing the lines one by one would, without jumping from row to row for each pixel.
class SweepPainter {
  public:
    // `first` holds the pixels of the first line. `colours` has a colour for each line.
    SweepPainter(draw::Surface& target, const Sweep& sweep, const QVector<QPoint>& first,
                 const QVector<base::Colour>& colours, qsizetype lines)
        : target_(target), sweep_(sweep), first_(first), lead_(LeadIn(sweep, target.Size())) {
        pixels_.reserve(lead_ + lines);
        // A slanting sweep to the right or downwards begins inside the rectangle; the corner behind its first line
        // takes the first colour.
        pixels_.fill(draw::ToRgb(colours.first()), lead_);
        for (qsizetype i = 0; i < lines; ++i)
            pixels_.append(draw::ToRgb(colours[i]));
        if (sweep.stepX < 0 || sweep.stepY < 0)
            std::reverse(pixels_.begin(), pixels_.end());
    }

    void Paint() {
        if (sweep_.stepX != 0)
            PaintAlongRows();
        else
            PaintAlongColumns();
    }

  private:
    static qsizetype LeadIn(const Sweep& sweep, QSize size) {
        if (sweep.stepX < 0 || sweep.stepY < 0)
            return 0;
        // No first line begins further inside than the segment is long.
        return qsizetype(2) * std::max(size.width(), size.height());
    }

    // Where the first of the pixels goes, given where the first line is.
    int Origin(int firstLine, int step) const {
        return step > 0 ? firstLine - int(lead_) : firstLine - int(pixels_.size()) + 1;
    }

    void PaintAlongRows() {
        for (const QPoint& point : first_)
            target_.SetDIBitsToDevice(Origin(point.x(), sweep_.stepX), point.y(), int(pixels_.size()), 1,
                                      pixels_.constData());
    }

    void PaintAlongColumns() {
        const auto [left, right] =
            std::minmax_element(first_.begin(), first_.end(), [](QPoint a, QPoint b) { return a.x() < b.x(); });
        const int from = std::max(left->x(), 0);
        const int to = std::min(right->x() + 1, target_.Width());
        if (from >= to)
            return;
        QVector<int> origins(to - from, 0);
        for (const QPoint& point : first_)
            if (point.x() >= from && point.x() < to)
                origins[point.x() - from] = Origin(point.y(), sweep_.stepY);
        if (std::count(origins.begin(), origins.end(), origins.first()) == origins.size()) {
            PaintStraight(from, to, origins.first());
            return;
        }
        QVector<QRgb> row(to - from);
        const auto last = int(pixels_.size()) - 1;
        for (int y = 0; y < target_.Height(); ++y) {
            for (qsizetype x = 0; x < row.size(); ++x)
                row[x] = pixels_[std::clamp(y - origins.at(x), 0, last)];
            target_.SetDIBitsToDevice(from, y, int(row.size()), 1, row.constData());
        }
    }

    // A sweep that is not slanted: each row has one colour.
    void PaintStraight(int from, int to, int origin) {
        const auto last = int(pixels_.size()) - 1;
        for (int y = 0; y < target_.Height(); ++y)
            target_.FillRect(QRect(from, y, to - from, 1), draw::FromRgb(pixels_[std::clamp(y - origin, 0, last)]));
    }

    draw::Surface& target_;
    const Sweep& sweep_;
    const QVector<QPoint>& first_;
    qsizetype lead_;
    QVector<QRgb> pixels_;
};

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
    const qint32 middleColumn = width / 2;
    const qint32 middleRow = height / 2;
    const FloatPoint centre{float(middleColumn), float(middleRow)};
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

    const qsizetype lines = points.size() / 2; // an odd point at the end is not used
    SweepPainter(context, sweep, draw::LinePoints(points[0], points[1]), ramp, lines).Paint();
    return qint32(2 * lines);
}

draw::Surface BlendFace(QSize size, base::Colour top, base::Colour middle, base::Colour bottom) {
    draw::Surface whole(size);
    const int half = size.height() / 2;
    clsGradient gradient;
    gradient.SetColor1(middle);
    const auto pasteHalf = [&](int from, int height, double angle, base::Colour edge) {
        draw::Surface part(size.width(), height);
        part.Cls(middle); // what shows where the half is too thin for a gradient
        gradient.SetAngle(angle);
        gradient.SetColor2(edge);
        gradient.Draw(part);
        whole.BitBlt(0, from, part.Width(), part.Height(), part, 0, 0);
    };
    pasteHalf(0, half, 90, top);
    // An odd height gives the lower half the row that is left.
    pasteHalf(half, size.height() - half, 270, bottom);
    return whole;
}

} // namespace controls
