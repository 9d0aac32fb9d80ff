#include "draw/system_colours.h"
#include "surface_art.h"

#include <gtest/gtest.h>

using draw_test::Art;
using draw_test::black;
using draw_test::white;

TEST(Shapes, FillsAndFramesLeaveOutRightColumnAndBottomRow) {
    draw::Surface surface(6, 4);
    surface.FillRect(draw::RectOf(1, 1, 3, 3), white);
    surface.FrameRect(draw::RectOf(3, 0, 6, 4), white);
    surface.FillRect(draw::RectOf(2, 2, 1, 1), white); // inverted: empty
    EXPECT_EQ(Art(surface), "...XXX\n"
                            ".XXX.X\n"
                            ".XXX.X\n"
                            "...XXX\n");
    surface.Cls(black);
    surface.SelectPen({white});
    surface.SelectBrush(draw::Brush());
    surface.Rectangle(6, 4, 0, 0); // corners in any order
    EXPECT_EQ(Art(surface), "XXXXXX\nX....X\nX....X\nXXXXXX\n");
}

TEST(Shapes, ARoundRectanglesOutlineIsClosedAndItsInsideFilled) {
    draw::Surface surface(10, 7);
    surface.SelectPen({white});
    surface.RoundRect(0, 0, 10, 7, 5, 5);
    EXPECT_EQ(Art(surface), "..XXXXXX..\n"
                            ".X......X.\n"
                            "X........X\n"
                            "X........X\n"
                            "X........X\n"
                            ".X......X.\n"
                            "..XXXXXX..\n");
    surface.Cls(black);
    surface.SelectPen(draw::NullPen);
    surface.SelectBrush(white);
    surface.RoundRect(0, 0, 10, 7, 5, 5);
    EXPECT_EQ(Art(surface).substr(0, 22), "..XXXXXX..\n.XXXXXXXX.\n");
}

TEST(Shapes, ClippingHoldsForPixelsFillsAndReads) {
    draw::Surface surface(4, 1);
    surface.SelectClipRgn(draw::CreateRectRgn(1, 0, 3, 1));
    EXPECT_FALSE(surface.SetPixel(0, 0, white));
    EXPECT_EQ(surface.GetPixel(0, 0), draw::CLR_INVALID);
    surface.FillRect(surface.Bounds(), white);
    surface.ResetClip();
    EXPECT_EQ(Art(surface), ".XX.\n");
    surface.SelectClipRgn(draw::Region());
    surface.FillRect(surface.Bounds(), white);
    surface.ResetClip();
    EXPECT_EQ(Art(surface), ".XX.\n");
}

TEST(Shapes, APatternBrushRepeatsFromTheSurfacesOrigin) {
    draw::Surface tile(2, 2);
    tile.SetPixel(0, 0, white);
    draw::Surface surface(5, 3);
    surface.FillRect(draw::RectOf(1, 0, 5, 3), draw::CreatePatternBrush(tile.ToPicture()));
    EXPECT_EQ(Art(surface), "..X.X\n.....\n..X.X\n");
    surface.FillRect(surface.Bounds(), draw::CreatePatternBrush(draw::Picture()));
    EXPECT_EQ(Art(surface), "..X.X\n.....\n..X.X\n");
}

TEST(Shapes, AGradientStartsAtTheFirstCornersColourAndStopsShortOfTheSecond) {
    draw::Surface surface(4, 2);
    const draw::TriVertex vertices[] = {draw::MakeTriVertex(0, 0, base::Colour(0x000000)),
                                        draw::MakeTriVertex(4, 2, base::Colour(0x0080FF))};
    const draw::GradientRect rects[] = {{0, 1}};
    ASSERT_TRUE(surface.GradientFill(vertices, rects, draw::GRADIENT_FILL_RECT_H));
    EXPECT_EQ(surface.GetPixel(0, 0), base::Colour(0x000000));
    EXPECT_EQ(surface.GetPixel(2, 1), base::Colour(0x00407F));
    EXPECT_EQ(surface.GetPixel(3, 1), base::Colour(0x0060BF));
    ASSERT_TRUE(surface.GradientFill(vertices, rects, draw::GRADIENT_FILL_RECT_V));
    EXPECT_EQ(surface.GetPixel(3, 0), base::Colour(0x000000));
    EXPECT_EQ(surface.GetPixel(0, 1), base::Colour(0x00407F));

    const draw::GradientRect swapped[] = {{1, 0}};
    ASSERT_TRUE(surface.GradientFill(vertices, swapped, draw::GRADIENT_FILL_RECT_H));
    EXPECT_EQ(surface.GetPixel(0, 0), base::Colour(0x000000)) << "the colour belongs to the vertex, not to the order";

    const draw::GradientRect outside[] = {{0, 2}};
    EXPECT_FALSE(surface.GradientFill(vertices, outside, draw::GRADIENT_FILL_RECT_H));
    EXPECT_FALSE(surface.GradientFill(vertices, rects, 2));
}

TEST(Shapes, AnEdgeTakesItsFourSystemColours) {
    draw::Surface surface(6, 6);
    QRect rect = surface.Bounds();
    surface.DrawEdge(rect, draw::EDGE_SUNKEN, draw::BF_RECT | draw::BF_SOFT | draw::BF_ADJUST);
    EXPECT_EQ(surface.GetPixel(0, 0), draw::GetSysColor(draw::COLOR_3DDKSHADOW));
    EXPECT_EQ(surface.GetPixel(1, 1), draw::GetSysColor(draw::COLOR_BTNSHADOW));
    EXPECT_EQ(surface.GetPixel(5, 5), draw::GetSysColor(draw::COLOR_BTNHIGHLIGHT));
    EXPECT_EQ(surface.GetPixel(4, 4), draw::GetSysColor(draw::COLOR_3DLIGHT));
    EXPECT_EQ(surface.GetPixel(2, 2), black);
    EXPECT_EQ(rect, QRect(2, 2, 2, 2));
    rect = surface.Bounds();
    surface.DrawEdge(rect, draw::EDGE_RAISED, draw::BF_RECT);
    EXPECT_EQ(surface.GetPixel(0, 0), draw::GetSysColor(draw::COLOR_3DLIGHT));
    EXPECT_EQ(surface.GetPixel(5, 5), draw::GetSysColor(draw::COLOR_3DDKSHADOW));
    EXPECT_EQ(rect, surface.Bounds());
}

// Every operation on surfaces that have no pixels, and far outside of one that has.
TEST(Shapes, SizesThatCannotBeHadIgnoreAllDrawing) {
    for (const QSize size : {QSize(0, 0), QSize(0, 32767), QSize(-5, 7), QSize(32768, 1), QSize(32767, 32767)}) {
        draw::Surface surface(size);
        EXPECT_EQ(surface.Size(), size);
        EXPECT_FALSE(surface.IsDrawable());
        const draw::Surface other(3, 3);
        QRect rect(0, 0, 10, 10);
        surface.Line(0, 0, 5, 5, white);
        surface.FillRect(rect, white);
        surface.RoundRect(0, 0, 5, 5, 2, 2);
        surface.DrawEdge(rect, draw::EDGE_RAISED, draw::BF_RECT);
        surface.DrawTextW(QStringLiteral("text"), std::as_const(rect), draw::DT_CENTER);
        surface.TextOutW(0, 0, QStringLiteral("text"));
        surface.DrawPicture(other.ToPicture(), 0, 0);
        surface.TilePicture(other.ToPicture(), rect);
        EXPECT_FALSE(surface.SetPixel(0, 0, white));
        EXPECT_FALSE(surface.BitBlt(0, 0, 3, 3, other, 0, 0));
        EXPECT_FALSE(surface.StretchBlt(0, 0, 3, 3, other, 0, 0, 1, 1));
        EXPECT_FALSE(surface.AlphaBlend(0, 0, 3, 3, other, 0, 0, 3, 3, 128));
        EXPECT_EQ(surface.GetPixel(0, 0), draw::CLR_INVALID);
        EXPECT_TRUE(surface.ToPicture().IsEmpty());
    }
    draw::Surface wide(32767, 1);
    wide.FillRect(wide.Bounds(), white);
    EXPECT_EQ(wide.GetPixel(32766, 0), white);
}
