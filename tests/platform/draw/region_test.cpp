#include "surface_art.h"

#include <gtest/gtest.h>

using draw_test::Art;
using draw_test::white;

namespace {

std::string ArtOf(const draw::Region& region, int width, int height) {
    draw::Surface surface(width, height);
    surface.FillRgn(region, white);
    return Art(surface);
}

} // namespace

TEST(Region, ARoundRectangleEndsOnePixelBeforeAPlainOne) {
    EXPECT_EQ(draw::CreateRectRgn(0, 0, 6, 4).ToQRegion().boundingRect(), QRect(0, 0, 6, 4));
    EXPECT_EQ(draw::CreateRoundRectRgn(0, 0, 7, 5, 4, 4).ToQRegion().boundingRect(), QRect(0, 0, 6, 4));
    EXPECT_EQ(draw::CreateRoundRectRgn(0, 0, 6, 4, 0, 0), draw::CreateRectRgn(0, 0, 6, 4));
    EXPECT_TRUE(draw::CreateRectRgn(3, 3, 3, 9).IsEmpty());
    EXPECT_TRUE(draw::CreateRoundRectRgn(0, 0, 1, 1, 5, 5).IsEmpty());
}

TEST(Region, ACornerOfFiveLeavesOutThreePixelsAtEachCorner) {
    EXPECT_EQ(ArtOf(draw::CreateRoundRectRgn(0, 0, 11, 8, 5, 5), 10, 7), "..XXXXXX..\n"
                                                                         ".XXXXXXXX.\n"
                                                                         "XXXXXXXXXX\n"
                                                                         "XXXXXXXXXX\n"
                                                                         "XXXXXXXXXX\n"
                                                                         ".XXXXXXXX.\n"
                                                                         "..XXXXXX..\n");
}

TEST(Region, CornersAreSymmetricAtAnySize) {
    for (int corner : {2, 3, 7, 12, 29, 40, 300}) {
        const QRegion region = draw::CreateRoundRectRgn(0, 0, 42, 42, corner, corner).ToQRegion();
        for (int y = 0; y < 41; ++y)
            for (int x = 0; x < 41; ++x) {
                const bool inside = region.contains(QPoint(x, y));
                ASSERT_EQ(inside, region.contains(QPoint(y, x))) << corner << ": " << x << ',' << y;
                ASSERT_EQ(inside, region.contains(QPoint(40 - x, y))) << corner << ": " << x << ',' << y;
                ASSERT_EQ(inside, region.contains(QPoint(x, 40 - y))) << corner << ": " << x << ',' << y;
            }
    }
}

TEST(Region, CombinesWithItselfAsTheTarget) {
    draw::Region region = draw::CreateRoundRectRgn(0, 0, 11, 8, 5, 5);
    draw::CombineRgn(region, region, draw::CreateRectRgn(0, 0, 5, 8), draw::RGN_OR);
    EXPECT_EQ(ArtOf(region, 10, 3), "XXXXXXXX..\nXXXXXXXXX.\nXXXXXXXXXX\n");
    draw::CombineRgn(region, draw::CreateRectRgn(0, 0, 4, 1), draw::CreateRectRgn(2, 0, 6, 1), draw::RGN_AND);
    EXPECT_EQ(ArtOf(region, 6, 1), "..XX..\n");
    draw::CombineRgn(region, draw::CreateRectRgn(0, 0, 4, 1), draw::CreateRectRgn(2, 0, 6, 1), draw::RGN_XOR);
    EXPECT_EQ(ArtOf(region, 6, 1), "XX..XX\n");
    draw::CombineRgn(region, draw::CreateRectRgn(0, 0, 4, 1), draw::CreateRectRgn(2, 0, 6, 1), draw::RGN_DIFF);
    EXPECT_EQ(ArtOf(region, 6, 1), "XX....\n");
}
