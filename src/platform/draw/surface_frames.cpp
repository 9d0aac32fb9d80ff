// Outlines: rectangles, rounded rectangles, edges with light and shadow.
#include "draw/surface.h"

#include "draw/system_colours.h"

#include <algorithm>

namespace draw {

void Surface::FrameRect(const QRect& rect, const Brush& brush) {
    if (rect.isEmpty())
        return;
    FillRect(QRect(rect.left(), rect.top(), rect.width(), 1), brush);
    FillRect(QRect(rect.left(), rect.bottom(), rect.width(), 1), brush);
    FillRect(QRect(rect.left(), rect.top(), 1, rect.height()), brush);
    FillRect(QRect(rect.right(), rect.top(), 1, rect.height()), brush);
}

void Surface::Rectangle(int left, int top, int right, int bottom) { RoundRect(left, top, right, bottom, 0, 0); }

// The outline is what a region loses when it is moved by a pixel each way; so the outline of a corner has no gap and no
// step. A wider pen takes that away as often as it is wide.
void Surface::RoundRect(int left, int top, int right, int bottom, int width, int height) {
    const QRect rect = QRect(left, top, right - left, bottom - top).normalized();
    if (rect.isEmpty() || !IsDrawable())
        return;
    const Region shape =
        CreateRoundRectRgn(rect.left(), rect.top(), rect.right() + 2, rect.bottom() + 2, width, height);
    const QRegion whole = shape.ToQRegion() & rect;
    QRegion inside = whole;
    if (!pen_.isNull) {
        const int layers = std::min(pen_.width, std::max(rect.width(), rect.height()));
        for (int layer = 0; layer < layers && !inside.isEmpty(); ++layer)
            inside &=
                inside.translated(1, 0) & inside.translated(-1, 0) & inside.translated(0, 1) & inside.translated(0, -1);
    }
    FillRgn(Region(inside), brush_);
    if (!pen_.isNull)
        FillRgn(Region(whole - inside), Brush(pen_.colour));
}

namespace {

struct EdgeColours {
    int topLeft;
    int bottomRight;
};

// What one line of an edge looks like. "Soft" exchanges the two light and the two dark colours.
EdgeColours OuterColours(unsigned edge, bool soft) {
    if (edge & BDR_RAISEDOUTER)
        return {soft ? COLOR_BTNHIGHLIGHT : COLOR_3DLIGHT, COLOR_3DDKSHADOW};
    return {soft ? COLOR_3DDKSHADOW : COLOR_BTNSHADOW, COLOR_BTNHIGHLIGHT};
}

EdgeColours InnerColours(unsigned edge, bool soft) {
    if (edge & BDR_RAISEDINNER)
        return {soft ? COLOR_3DLIGHT : COLOR_BTNHIGHLIGHT, COLOR_BTNSHADOW};
    return {soft ? COLOR_BTNSHADOW : COLOR_3DDKSHADOW, COLOR_3DLIGHT};
}

} // namespace

void Surface::DrawEdge(QRect& rect, unsigned edge, unsigned flags) {
    QRect rest = rect;
    const auto drawLines = [&](EdgeColours colours) {
        if (rest.isEmpty())
            return;
        if (flags & BF_FLAT)
            colours = {COLOR_BTNSHADOW, COLOR_BTNSHADOW};
        const QRect line = rest;
        const Brush topLeft = GetSysColorBrush(colours.topLeft);
        const Brush bottomRight = GetSysColorBrush(colours.bottomRight);
        if (flags & BF_LEFT)
            FillRect(QRect(line.left(), line.top(), 1, line.height()), topLeft);
        if (flags & BF_TOP)
            FillRect(QRect(line.left(), line.top(), line.width(), 1), topLeft);
        if (flags & BF_RIGHT)
            FillRect(QRect(line.right(), line.top(), 1, line.height()), bottomRight);
        if (flags & BF_BOTTOM)
            FillRect(QRect(line.left(), line.bottom(), line.width(), 1), bottomRight);
        rest.adjust(flags & BF_LEFT ? 1 : 0, flags & BF_TOP ? 1 : 0, flags & BF_RIGHT ? -1 : 0,
                    flags & BF_BOTTOM ? -1 : 0);
    };
    const bool soft = (flags & BF_SOFT) != 0;
    if (edge & (BDR_RAISEDOUTER | BDR_SUNKENOUTER))
        drawLines(OuterColours(edge, soft));
    if (edge & (BDR_RAISEDINNER | BDR_SUNKENINNER))
        drawLines(InnerColours(edge, soft));
    if (flags & BF_MIDDLE)
        FillRect(rest, GetSysColorBrush(COLOR_BTNFACE));
    if (flags & BF_ADJUST)
        rect = rest;
}

} // namespace draw
