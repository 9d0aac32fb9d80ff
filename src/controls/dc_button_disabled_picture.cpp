// The picture of a disabled button, blended faintly into what lies under it.
#include "controls/dc_button_painter.h"

#include "base/numbers.h"

#include <QByteArray>
#include <optional>

namespace controls {

namespace {

constexpr double disabledOpacity = 0.2; // whatever the button's own opacity

// The pixels of a surface as the platform hands out a 24-bit bitmap: bottom row first, blue, green, red, each row
// filled up to a multiple of four bytes. What lies outside the surface is black.
QByteArray To24Bit(const draw::Surface& surface, const QRect& area) {
    const qsizetype stride = (qsizetype(area.width()) * 3 + 3) / 4 * 4;
    QByteArray bytes(stride * area.height(), '\0');
    const QRect inside = area & surface.Bounds();
    for (int y = inside.top(); y <= inside.bottom(); ++y) {
        char* row = bytes.data() + stride * (area.bottom() - y);
        const auto* pixels = reinterpret_cast<const QRgb*>(surface.Image().constScanLine(y));
        for (int x = inside.left(); x <= inside.right(); ++x) {
            char* pixel = row + qsizetype(x - area.left()) * 3;
            pixel[0] = char(qBlue(pixels[x]));
            pixel[1] = char(qGreen(pixels[x]));
            pixel[2] = char(qRed(pixels[x]));
        }
    }
    return bytes;
}

void From24Bit(draw::Surface& surface, const QRect& area, const QByteArray& bytes) {
    const qsizetype stride = (qsizetype(area.width()) * 3 + 3) / 4 * 4;
    const QRect inside = area & surface.Bounds();
    for (int y = inside.top(); y <= inside.bottom(); ++y) {
        const auto* row = reinterpret_cast<const uchar*>(bytes.constData()) + stride * (area.bottom() - y);
        for (int x = inside.left(); x <= inside.right(); ++x) {
            const uchar* pixel = row + qsizetype(x - area.left()) * 3;
            surface.SetPixel(x, y, base::Colour::FromRgb(pixel[2], pixel[1], pixel[0]));
        }
    }
}

// The colour of the picture that stays away; none for an icon unless a mask colour is in use.
std::optional<base::Colour> TransparentKey(const ButtonPaint& paint, const draw::Surface& picture) {
    if (paint.useMaskColour)
        return paint.colours.transparent;
    if (paint.picture.Type() == draw::PictureType::Bitmap)
        return picture.GetPixel(0, 0);
    return std::nullopt;
}

draw::Surface PictureSurface(const ButtonPaint& paint) {
    if (paint.picture.Type() != draw::PictureType::Icon)
        return draw::Surface(paint.picture);
    draw::Surface surface(paint.picture.Width(), paint.picture.Height());
    surface.Cls(paint.useMaskColour ? paint.colours.transparent : base::Colour(0xFFFFFF));
    surface.DrawPicture(paint.picture, 0, 0);
    return surface;
}

} // namespace

void PaintDisabledPicture(draw::Surface& surface, const ButtonPaint& paint, const QRect& place) {
    const QRect target = paint.naturalPictureSize ? place & surface.Bounds() : place;
    if (target.isEmpty() || !draw::IsDrawableSize(target.size()))
        return;
    const draw::Surface picture = PictureSurface(paint);
    const std::optional<base::Colour> key = TransparentKey(paint, picture);
    const QPoint from = target.topLeft() - place.topLeft();
    const QSize fromSize = paint.naturalPictureSize ? target.size() : picture.Size();
    draw::Surface source(target.size());
    source.StretchBlt(0, 0, target.width(), target.height(), picture, from.x(), from.y(), fromSize.width(),
                      fromSize.height());

    QByteArray under = To24Bit(surface, target);
    const QByteArray over = To24Bit(source, source.Bounds());
    auto* out = reinterpret_cast<uchar*>(under.data());
    const auto* in = reinterpret_cast<const uchar*>(over.constData());
    // Pixels are taken one behind the other without regard to the filling at the rows' ends. So with a width that is no
    // multiple of four the key is compared out of step from the second row on, and the end of the array stays as it
    // was. That is how this control looks; keep it.
    const qsizetype pixels = qsizetype(target.width()) * target.height();
    for (qsizetype i = 0; i < pixels; ++i, out += 3, in += 3) {
        if (key && base::Colour::FromRgb(in[2], in[1], in[0]) == *key)
            continue;
        for (int channel = 0; channel < 3; ++channel)
            out[channel] =
                uchar(base::RoundToInt(disabledOpacity * (in[channel] - out[channel]) + double(out[channel])));
    }
    From24Bit(surface, target, under);
}

} // namespace controls
