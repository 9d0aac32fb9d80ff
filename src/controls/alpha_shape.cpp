#include "controls/alpha_shape.h"

#include "base/numbers.h"
#include "draw/picture.h"
#include "draw/system_colours.h"

#include <QPainter>
#include <QPainterPath>

namespace controls {

namespace {

// A cross whose arms end in the corners of the box, cut off along the axes.
QPainterPath CrossPath(double width, double height) {
    const double arm = qMax(1, base::RoundToInt(width * 0.2));
    const double middleX = width / 2;
    const double middleY = height / 2;
    QPainterPath path;
    path.addPolygon(QPolygonF({{0, 0},
                               {arm, 0},
                               {middleX, middleY - arm},
                               {width - arm, 0},
                               {width, 0},
                               {middleX + arm, middleY},
                               {width, height},
                               {width - arm, height},
                               {middleX, middleY + arm},
                               {arm, height},
                               {0, height},
                               {middleX - arm, middleY}}));
    path.closeSubpath();
    return path;
}

// The bar lies at the bottom of its box.
QPainterPath BarPath(double width, double height) {
    const double thickness = qMin(height, qMax(2.0, double(base::RoundToInt(height * 0.2))));
    QPainterPath path;
    path.addRect(0, height - thickness, width, thickness);
    return path;
}

// A hook from the left over the top to the middle, a short stem, and a square dot on whole pixels.
QPainterPath QuestionPath(double width, double height) {
    const double thickness = qMax(2.0, double(base::RoundToInt(height * 0.18)));
    const double dotTop = height - thickness;
    const double stemBottom = dotTop - qMax(1.0, double(base::RoundToInt(height * 0.08)));
    const double middle = base::RoundToInt((width - thickness) / 2) + thickness / 2;
    const double inset = thickness / 2;
    const QRectF bow(inset, inset, width - thickness, (stemBottom - thickness) * 0.85);
    QPainterPath hook;
    hook.arcMoveTo(bow, 180);
    hook.arcTo(bow, 180, -235);
    const QPointF turn(middle, bow.bottom() + inset);
    hook.quadTo(QPointF(middle, bow.bottom()), turn);
    hook.lineTo(middle, stemBottom);
    QPainterPathStroker stroker;
    stroker.setWidth(thickness);
    stroker.setCapStyle(Qt::FlatCap);
    stroker.setJoinStyle(Qt::MiterJoin);
    QPainterPath path = stroker.createStroke(hook);
    path.setFillRule(Qt::WindingFill);
    path.addRect(middle - inset, dotTop, thickness, thickness);
    return path;
}

QPainterPath PathOf(Glyph glyph, double width, double height) {
    switch (glyph) {
    case Glyph::X:
        return CrossPath(width, height);
    case Glyph::Bar:
        return BarPath(width, height);
    case Glyph::Question:
        return QuestionPath(width, height);
    }
    return {};
}

} // namespace

void AlphaShape::SetSize(int width, int height) {
    width_ = qMax(0, width);
    height_ = qMax(0, height);
}

void AlphaShape::PaintShape(draw::Surface& context, int x, int y) const {
    if (width_ < 1 || height_ < 1)
        return;
    const base::Colour fill = draw::OleTranslateColor(fillColor_);
    QImage image(width_, height_, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(PathOf(glyph_, width_, height_), QColor(fill.Red(), fill.Green(), fill.Blue()));
    painter.end();
    context.DrawPicture(draw::Picture::FromImage(image), x, y);
}

} // namespace controls
