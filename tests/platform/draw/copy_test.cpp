#include "surface_art.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using draw_test::Art;
using draw_test::black;
using draw_test::white;

namespace {

// Row y holds white up to and including column y.
draw::Surface Stairs(int side) {
    draw::Surface surface(side, side);
    for (int y = 0; y < side; ++y)
        surface.Line(0, y, y + 1, y, white);
    return surface;
}

} // namespace

TEST(Copy, BitBltCutsOffWhatLiesOutsideEitherSurface) {
    const draw::Surface source = Stairs(3);
    draw::Surface target(4, 3);
    EXPECT_TRUE(target.BitBlt(-1, 1, 9, 9, source, 0, 1));
    EXPECT_EQ(Art(target), "....\nX...\nXX..\n");
    target.Cls(black);
    EXPECT_TRUE(target.BitBlt(0, 0, 4, 3, source, -1, -1));
    EXPECT_EQ(Art(target), "....\n.X..\n.XX.\n");
    EXPECT_FALSE(target.BitBlt(0, 0, 1, 1, source, 0, 0, 0x123456));
}

TEST(Copy, BitBltWithinOneSurfaceMayOverlap) {
    draw::Surface surface = Stairs(4);
    surface.BitBlt(0, 1, 4, 3, surface, 0, 0);
    EXPECT_EQ(Art(surface), "X...\nX...\nXX..\nXXX.\n");
}

TEST(Copy, RowsOfPixelsAreCutOffAndClipped) {
    const std::vector<QRgb> rows(6, draw::ToRgb(white));
    draw::Surface surface(4, 3);
    surface.SelectClipRgn(draw::CreateRectRgn(0, 0, 2, 3));
    surface.SetDIBitsToDevice(-1, 1, 3, 2, rows.data());
    surface.SetDIBitsToDevice(1, -1, 3, 2, rows.data());
    surface.ResetClip();
    EXPECT_EQ(Art(surface), ".X..\nXX..\nXX..\n");
}

TEST(Copy, RasterOperationsCombine) {
    const draw::Surface source = Stairs(2);
    const auto result = [&source](quint32 operation) {
        draw::Surface target(2, 2);
        target.Line(0, 0, 2, 0, white);
        target.BitBlt(0, 0, 2, 2, source, 0, 0, operation);
        return Art(target);
    };
    EXPECT_EQ(result(draw::SRCAND), "X.\n..\n");
    EXPECT_EQ(result(draw::SRCPAINT), "XX\nXX\n");
    EXPECT_EQ(result(draw::SRCINVERT), ".X\nXX\n");
    EXPECT_EQ(result(draw::NOTSRCCOPY), ".X\n..\n");
    EXPECT_EQ(result(draw::DSTINVERT), "..\nXX\n");
}

TEST(Copy, StretchBltTakesTheNearestPixelAndMirrors) {
    const draw::Surface source = Stairs(2);
    draw::Surface target(4, 4);
    target.StretchBlt(0, 0, 4, 4, source, 0, 0, 2, 2);
    EXPECT_EQ(Art(target), "XX..\nXX..\nXXXX\nXXXX\n");
    target.StretchBlt(4, 0, -4, 4, source, 0, 0, 2, 2);
    EXPECT_EQ(Art(target), "..XX\n..XX\nXXXX\nXXXX\n");
    target.Cls(black);
    EXPECT_TRUE(target.StretchBlt(0, 0, 4, 0, source, 0, 0, 2, 2));
    EXPECT_TRUE(target.StretchBlt(0, 0, 4, 4, source, 0, 0, 0, 2));
    EXPECT_TRUE(target.StretchBlt(0, 0, 4, 4, source, 5, 5, 2, 2));
    EXPECT_EQ(Art(target), "....\n....\n....\n....\n");
}

TEST(Copy, AlphaBlendRoundsToNearestAndRefusesASourceThatIsNotThere) {
    draw::Surface source(1, 1);
    source.Cls(base::Colour(0x0364FF));
    draw::Surface target(1, 1);
    target.Cls(base::Colour(0x010101));
    ASSERT_TRUE(target.AlphaBlend(0, 0, 1, 1, source, 0, 0, 1, 1, 51));
    // a fifth of the way from 1 to 255, 100 and 3
    EXPECT_EQ(target.GetPixel(0, 0), base::Colour(0x011534));
    ASSERT_TRUE(target.AlphaBlend(0, 0, 1, 1, source, 0, 0, 1, 1, 255));
    EXPECT_EQ(target.GetPixel(0, 0), base::Colour(0x0364FF));
    EXPECT_FALSE(target.AlphaBlend(0, 0, 1, 1, source, 0, 0, 2, 1, 255));
    EXPECT_FALSE(target.AlphaBlend(0, 0, 1, 1, source, -1, 0, 1, 1, 255));
}

TEST(Copy, PicturesTileFromTheRectanglesCorner) {
    draw::Surface surface(6, 4);
    surface.TilePicture(Stairs(2).ToPicture(), draw::RectOf(1, 1, 6, 4));
    EXPECT_EQ(Art(surface), "......\n.X.X.X\n.XXXXX\n.X.X.X\n");
    surface.TilePicture(Stairs(2).ToPicture(), draw::RectOf(-32767, -32767, 32767, 32767));
    EXPECT_EQ(surface.GetPixel(1, 1), white);
}

TEST(Copy, TransparencyOfAnIconIsKept) {
    QImage image(2, 1, QImage::Format_ARGB32);
    image.setPixel(0, 0, qRgba(255, 255, 255, 255));
    image.setPixel(1, 0, qRgba(255, 255, 255, 0));
    const draw::Picture icon = draw::Picture::IconFromImage(image);
    EXPECT_EQ(icon.Type(), draw::PictureType::Icon);
    draw::Surface surface(4, 1);
    surface.Cls(base::Colour(0x0000FF));
    EXPECT_FALSE(surface.DrawStateA(icon, 0, 0, 0, 0, draw::DST_BITMAP)) << "the form must fit the picture";
    EXPECT_TRUE(surface.DrawStateA(icon, 1, 0, 0, 0, draw::DST_ICON));
    EXPECT_EQ(surface.GetPixel(1, 0), white);
    EXPECT_EQ(surface.GetPixel(2, 0), base::Colour(0x0000FF));
}

TEST(Copy, LoadPictureGivesNoneForWhatIsNoPicture) {
    QTemporaryDir folder;
    const QString text = folder.filePath(QStringLiteral("text.png"));
    QFile file(text);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("no picture");
    file.close();
    const QString bitmap = folder.filePath(QStringLiteral("stairs.bmp"));
    ASSERT_TRUE(Stairs(3).Image().save(bitmap));
    EXPECT_TRUE(draw::LoadPicture(text).IsEmpty());
    EXPECT_TRUE(draw::LoadPicture(QString()).IsEmpty());
    EXPECT_TRUE(draw::LoadPicture(folder.path()).IsEmpty());
    EXPECT_TRUE(draw::LoadPicture(folder.filePath(QStringLiteral("missing.bmp"))).IsEmpty());
    EXPECT_EQ(Art(draw::Surface(draw::LoadPicture(bitmap))), Art(Stairs(3)));
    EXPECT_TRUE(draw::Picture::FromImage(QImage()).IsEmpty());
}

// A picture handed out keeps its pixels while its surface is drawn on.
TEST(Copy, APictureDoesNotChangeWithItsSurface) {
    draw::Surface surface = Stairs(2);
    const draw::Picture picture = surface.ToPicture();
    surface.FillRect(surface.Bounds(), white);
    surface.SetPixel(0, 0, black);
    EXPECT_EQ(Art(draw::Surface(picture)), Art(Stairs(2)));
}
