#include "surface_art.h"

#include <gtest/gtest.h>
#include <limits>

using draw_test::Art;
using draw_test::black;
using draw_test::white;

TEST(Lines, LeaveOutTheEndPointInEveryDirection) {
    draw::Surface surface(7, 7);
    surface.Line(3, 3, 6, 3, white);
    surface.Line(3, 3, 0, 3, white);
    surface.Line(3, 3, 3, 6, white);
    surface.Line(3, 3, 3, 0, white);
    EXPECT_EQ(Art(surface), ".......\n"
                            "...X...\n"
                            "...X...\n"
                            ".XXXXX.\n"
                            "...X...\n"
                            "...X...\n"
                            ".......\n");
    surface.Cls(black);
    surface.Line(1, 1, 5, 5, white);
    surface.Line(5, 1, 3, 3, white);
    surface.Line(2, 5, 2, 5, white); // no length, no pixel
    EXPECT_EQ(Art(surface), ".......\n"
                            ".X...X.\n"
                            "..X.X..\n"
                            "...X...\n"
                            "....X..\n"
                            ".......\n"
                            ".......\n");
}

TEST(Lines, LineToMovesTheCurrentPositionAlsoWithTheNullPen) {
    draw::Surface surface(6, 2);
    surface.SelectPen({white});
    surface.MoveToEx(0, 0);
    surface.LineTo(2, 0);
    EXPECT_FALSE(surface.SelectPen(draw::NullPen).isNull);
    surface.LineTo(4, 0);
    surface.SelectPen({white});
    surface.LineTo(6, 0);
    EXPECT_EQ(Art(surface), "XX..XX\n......\n");
    EXPECT_EQ(surface.CurrentPosition(), QPoint(6, 0));
    surface.Cls(black);
    EXPECT_EQ(surface.CurrentPosition(), QPoint(0, 0));
}

// A line that is cut by the surface's edge or a clipping region shows exactly the pixels that it would have shown
// there.
TEST(Lines, ClippingNeverChangesWhichPixelsALineTakes) {
    constexpr int side = 40;
    constexpr int margin = 60;
    const QPoint ends[] = {{-55, 13}, {97, 31}, {12, -48}, {20, 99}, {-31, -7},
                           {70, 44},  {5, 5},   {39, 38},  {99, 0},  {-1, 39}};
    for (const QPoint& from : ends) {
        for (const QPoint& to : ends) {
            draw::Surface clipped(side, side);
            draw::Surface whole(side + 2 * margin, side + 2 * margin);
            QRegion shape(3, 2, 11, 30);
            shape += QRect(20, 0, 20, 17);
            clipped.SelectClipRgn(draw::Region(shape));
            clipped.Line(from.x(), from.y(), to.x(), to.y(), white);
            clipped.ResetClip();
            whole.Line(from.x() + margin, from.y() + margin, to.x() + margin, to.y() + margin, white);
            for (int y = 0; y < side; ++y)
                for (int x = 0; x < side; ++x)
                    ASSERT_EQ(clipped.GetPixel(x, y),
                              shape.contains(QPoint(x, y)) ? whole.GetPixel(x + margin, y + margin) : black)
                        << from.x() << ',' << from.y() << " to " << to.x() << ',' << to.y() << " at " << x << ',' << y;
        }
    }
}

TEST(Lines, SurviveCoordinatesFarBeyondTheSurface) {
    draw::Surface surface(4, 4);
    surface.Line(std::numeric_limits<int>::min(), 1, std::numeric_limits<int>::max(), 1, white);
    EXPECT_EQ(Art(surface), "....\nXXXX\n....\n....\n");
    surface.Line(0, 2, std::numeric_limits<int>::max(), std::numeric_limits<int>::max(), white);
    surface.SelectPen({white, std::numeric_limits<int>::max()});
    surface.LineTo(3, -10);
    EXPECT_EQ(surface.GetPixel(0, 3), white);
}

TEST(Lines, LinePointsAreThePixelsThatALineTakes) {
    for (const QPoint to :
         {QPoint(19, 7), QPoint(3, 18), QPoint(0, 0), QPoint(10, 9), QPoint(18, 18), QPoint(10, 10)}) {
        draw::Surface drawn(20, 20);
        draw::Surface listed(20, 20);
        drawn.Line(10, 10, to.x(), to.y(), white);
        for (const QPoint point : draw::LinePoints(QPoint(10, 10), to))
            EXPECT_TRUE(listed.SetPixel(point.x(), point.y(), white));
        EXPECT_EQ(Art(drawn), Art(listed));
    }
}

TEST(Lines, AWidePenIsCentredOnTheLine) {
    draw::Surface surface(5, 5);
    surface.SelectPen({white, 3});
    surface.MoveToEx(1, 2);
    surface.LineTo(4, 2);
    EXPECT_EQ(Art(surface), ".....\n"
                            ".XXX.\n"
                            ".XXX.\n"
                            ".XXX.\n"
                            ".....\n");
}
