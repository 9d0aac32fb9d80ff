// Pictures as files bring them: icons, bitmaps and whatever else the input looks like. A picture that is made can be
// drawn at any size without a touch outside the surface.
#include "draw/picture.h"
#include "draw/pixels.h"
#include "draw/surface.h"
#include "fuzz_support.h"

#include <QBuffer>
#include <QGuiApplication>
#include <QImageReader>

namespace {

// Formats as they claim to be, so that a mutated first byte does not end the input. Larger sides than this only cost
// time here; the limit itself has its test.
constexpr int largestSide = 512;

bool IsSmall(const QByteArray& bytes) {
    QBuffer buffer;
    buffer.setData(bytes);
    QImageReader reader(&buffer);
    const QSize size = reader.size();
    return size.width() <= largestSide && size.height() <= largestSide;
}

void CheckPicture(const draw::Picture& picture, fuzz::Reader reader) {
    fuzz::Require(picture.IsEmpty() == (picture.Width() == 0), "only no picture has no size");
    draw::Surface surface(reader.Number(0, 40), reader.Number(0, 40));
    const auto place = [&reader] { return reader.Number(-50, 50); };
    surface.DrawPicture(picture, place(), place());
    surface.DrawPicture(picture, place(), place(), place(), place());
    surface.TilePicture(picture, QRect(place(), place(), place(), place()));
    surface.DrawStateA(picture, place(), place(), place(), place(),
                       picture.Type() == draw::PictureType::Icon ? draw::DST_ICON : draw::DST_BITMAP);
    if (picture.IsEmpty())
        return;
    const draw::Surface copy(picture);
    fuzz::Require(copy.Size() == QSize(picture.Width(), picture.Height()), "a copy has the picture's size");
    surface.StretchBlt(place(), place(), place(), place(), copy, place(), place(), place(), place());
    for (int y = 0; surface.IsDrawable() && y < surface.Height(); ++y) {
        for (int x = 0; x < surface.Width(); ++x)
            fuzz::Require(qAlpha(surface.Image().pixel(x, y)) == 0xFF, "a surface stays opaque");
    }
    const draw::Picture again = draw::Picture::FromImage(copy.Image());
    fuzz::Require(draw::Surface(again).Image() == copy.Image(), "pixels come out as they went in");
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static int count = 1;
    static char name[] = "fuzz";
    static char* arguments[] = {name, nullptr};
    static const QGuiApplication application(count, arguments);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    if (!IsSmall(bytes))
        return 0;
    for (const char* name : {"picture.ico", "picture.bmp"}) {
        const draw::Picture picture = draw::LoadPicture(fuzz::WriteFile(QLatin1String(name), bytes));
        fuzz::Require(picture.Width() <= largestSide * 4, "a picture has the size that its file says");
        CheckPicture(picture, fuzz::Reader(data, size));
    }
    return 0;
}
