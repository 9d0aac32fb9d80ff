#include "controls/dc_button_painter.h"

#include "base/numbers.h"
#include "controls/colour_helpers.h"

#include <algorithm>

namespace controls {

namespace {

constexpr int margin = 4;
constexpr int pairGap = 2; // between picture and caption side by side
constexpr unsigned captionFormat = draw::DT_CENTER | draw::DT_WORDBREAK | draw::DT_NOCLIP;

// Channels that differ by less than this cannot be told apart on a thin line.
constexpr int leastContrast = 24;

constexpr QPoint below(1, 1);
constexpr QPoint above(-1, -1);

// Both ends included.
void DrawLine(draw::Surface& surface, int x, int y, int x2, int y2, base::Colour colour) {
    if (x == x2)
        ++y2;
    if (y == y2)
        ++x2;
    surface.Line(x, y, x2, y2, colour);
}

QRect CaptionPlace(const ButtonPaint& paint) {
    draw::Surface measure;
    measure.SetFont(paint.font);
    QRect box(0, 0, paint.size.width(), 0);
    measure.DrawTextW(paint.caption, box, captionFormat | draw::DT_CALCRECT);
    box.moveTo((paint.size.width() - box.width()) / 2, (paint.size.height() - box.height()) / 2);
    return box;
}

// Two spans one behind the other, centred as one in `whole`.
void CentrePair(int& first, int firstLength, int& second, int secondLength, int gap, int whole) {
    const int total = firstLength + gap + secondLength;
    first = (whole - total) / 2;
    second = first + firstLength + gap;
}

QPoint ContentOffset(const ButtonPaint& paint) {
    if (paint.currentState == DownState)
        return paint.value ? QPoint(2, 2) : QPoint(1, 1);
    return paint.value ? QPoint(1, 1) : QPoint(0, 0);
}

void DrawCaption(draw::Surface& surface, const ButtonPaint& paint, const QRect& place, base::Colour colour) {
    surface.SetTextColor(colour);
    surface.DrawTextW(paint.caption, place, captionFormat);
}

// The first and the second underlay of an effect, and how many there are.
struct Underlays {
    int count = 0;
    QPoint first;
    QPoint second;
};

Underlays UnderlaysOf(int effect) {
    switch (effect) {
    case Raised:
        return {2, below, above};
    case Sunken:
        return {2, above, below};
    case DarkBelow:
        return {1, below, {}};
    default:
        return {};
    }
}

void DrawPictureAt(draw::Surface& surface, const draw::Picture& picture, const QPoint& place) {
    const unsigned form = picture.Type() == draw::PictureType::Icon ? draw::DST_ICON : draw::DST_BITMAP;
    surface.DrawStateA(picture, std::max(0, place.x()), std::max(0, place.y()), 0, 0, form | draw::DSS_NORMAL);
}

void PaintEnabledContent(draw::Surface& surface, const ButtonPaint& paint, const ButtonLayout& layout,
                         base::Colour shadeBase) {
    const QPoint offset = ContentOffset(paint);
    const Underlays under = UnderlaysOf(paint.effect);
    if (!paint.picture.IsEmpty()) {
        const QPoint place = layout.picture.topLeft() + offset;
        if (under.count == 2) {
            DrawPictureAt(surface, paint.picture, place + under.first);
            DrawPictureAt(surface, paint.picture, place + under.second);
        }
        DrawPictureAt(surface, paint.picture, place);
    }
    if (paint.caption.isEmpty())
        return;
    const QRect place = layout.caption.translated(offset);
    if (under.count > 0)
        DrawCaption(surface, paint, place.translated(under.first), ShiftColour(shadeBase, -0.1));
    if (under.count > 1)
        DrawCaption(surface, paint, place.translated(under.second), ShiftColour(shadeBase, 0.1));
    DrawCaption(surface, paint, place, paint.colours.text);
}

void PaintDisabledContent(draw::Surface& surface, const ButtonPaint& paint, const ButtonLayout& layout) {
    const QPoint offset = paint.value ? QPoint(1, 1) : QPoint(0, 0);
    if (!paint.picture.IsEmpty())
        PaintDisabledPicture(surface, paint, layout.picture.translated(offset));
    if (!paint.caption.isEmpty())
        DrawCaption(surface, paint, layout.caption.translated(offset), paint.colours.disabledText);
}

bool LookAlike(base::Colour a, base::Colour b) {
    return std::abs(a.Red() - b.Red()) < leastContrast && std::abs(a.Green() - b.Green()) < leastContrast &&
           std::abs(a.Blue() - b.Blue()) < leastContrast;
}

void PaintFocusFrame(draw::Surface& surface, const ButtonPaint& paint) {
    const int right = paint.size.width() - 2;
    const int bottom = paint.size.height() - 2;
    const bool squareLeft = HasSquareLeft(paint.shape);
    const bool squareRight = HasSquareRight(paint.shape);
    base::Colour colour = paint.colours.normal;
    // On a button of one flat colour that frame would not be seen: it is closed then, in the colour of the text.
    const bool flat = LookAlike(paint.colours.start, paint.colours.normal);
    if (flat)
        colour = paint.colours.text;
    DrawLine(surface, 1, 1, right, 1, colour);
    DrawLine(surface, 1, bottom, right, bottom, colour);
    if (!squareLeft || flat)
        DrawLine(surface, 1, 1, 1, bottom, colour);
    if (!squareRight || flat)
        DrawLine(surface, right, 1, right, bottom, colour);
    if (!squareLeft) {
        surface.SetPixel(2, 2, colour);
        surface.SetPixel(2, bottom - 1, colour);
    }
    if (!squareRight) {
        surface.SetPixel(right - 1, 2, colour);
        surface.SetPixel(right - 1, bottom - 1, colour);
    }
}

void PaintOuterFrame(draw::Surface& surface, const ButtonPaint& paint) {
    const base::Colour colour = paint.currentState == DisabledState ? paint.colours.disabledText : paint.colours.text;
    surface.FrameRect(QRect(QPoint(0, 0), paint.size), colour);
    const int right = paint.size.width() - 2;
    const int bottom = paint.size.height() - 2;
    if (!HasSquareLeft(paint.shape)) {
        surface.SetPixel(1, 1, colour);
        surface.SetPixel(1, bottom, colour);
    }
    if (!HasSquareRight(paint.shape)) {
        surface.SetPixel(right, 1, colour);
        surface.SetPixel(right, bottom, colour);
    }
}

} // namespace

ButtonLayout LayoutContent(const ButtonPaint& paint) {
    ButtonLayout layout;
    const int width = paint.size.width();
    const int height = paint.size.height();
    if (!paint.caption.isEmpty())
        layout.caption = CaptionPlace(paint);
    if (paint.picture.IsEmpty())
        return layout;
    const int pictureWidth = std::max(0, paint.pictureSize.width());
    const int pictureHeight = std::max(0, paint.pictureSize.height());
    const int gap = paint.caption.isEmpty() ? 0 : pairGap;
    QPoint text = layout.caption.topLeft();
    const QSize textSize = layout.caption.size();
    const QPoint centred((width - pictureWidth) / 2, (height - pictureHeight) / 2);
    int x = centred.x();
    int y = centred.y();
    switch (paint.pictureAlignment) {
    case PictureCentred:
        break;
    case PictureAtBottom:
        y = height - margin - pictureHeight;
        break;
    case PictureBelowCaption:
        CentrePair(text.ry(), textSize.height(), y, pictureHeight, 0, height);
        break;
    case PictureAtLeft:
        x = margin;
        break;
    case PictureLeftOfCaption:
        CentrePair(x, pictureWidth, text.rx(), textSize.width(), gap, width);
        break;
    case PictureAtRight:
        x = width - margin - pictureWidth;
        break;
    case PictureRightOfCaption:
        CentrePair(text.rx(), textSize.width(), x, pictureWidth, gap, width);
        break;
    case PictureAtTop:
        y = margin;
        break;
    case PictureAboveCaption:
        CentrePair(y, pictureHeight, text.ry(), textSize.height(), 0, height);
        break;
    default:
        x = 0;
        y = 0;
    }
    layout.caption.moveTopLeft(text);
    layout.picture = QRect(x, y, pictureWidth, pictureHeight);
    return layout;
}

void PaintGradient(draw::Surface& surface, base::Colour top, base::Colour bottom, int percent) {
    const int height = surface.Height();
    double middleRow = std::clamp(percent, 0, 100) * (height - 2) / 100.0;
    if (middleRow == 0)
        middleRow = 1;
    const base::Colour middle = LerpColour(top, bottom, 0.5);
    for (int y = 0; y < height; ++y) {
        const bool upper = middleRow >= y;
        const double t = upper ? y / middleRow : (y - middleRow) / (height - 1 - middleRow);
        const base::Colour row = upper ? LerpColour(top, middle, t) : LerpColour(middle, bottom, t);
        DrawLine(surface, 0, y, surface.Width() - 1, y, row);
    }
}

void PaintButton(draw::Surface& surface, const ButtonPaint& paint) {
    if (!surface.IsDrawable())
        return;
    const ButtonLayout layout = LayoutContent(paint);
    surface.SetFont(paint.font);
    const ButtonColours& colours = paint.colours;
    const base::Colour fill = paint.state == HotState    ? colours.hot
                              : paint.state == DownState ? colours.down
                                                         : colours.normal;
    if (paint.state == DisabledState)
        surface.FillRect(surface.Bounds(), colours.disabledFill);
    else
        PaintGradient(surface, colours.start, fill, 50);
    if (paint.currentState == DisabledState)
        PaintDisabledContent(surface, paint, layout);
    else
        PaintEnabledContent(surface, paint, layout, LerpColour(colours.start, fill, 0.5));
    if (paint.currentState != DisabledState && paint.focusFrame)
        PaintFocusFrame(surface, paint);
    PaintOuterFrame(surface, paint);
}

} // namespace controls
