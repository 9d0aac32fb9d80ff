#include "controls/colour_helpers.h"

#include <gtest/gtest.h>

using base::Colour;
using controls::LerpColour;
using controls::ShiftColour;

TEST(ColourHelpers, LerpTakesLowBytesOnlyAndRoundsTiesToEven) {
    EXPECT_EQ(LerpColour(Colour(0xFF000000U), Colour(0x80FFFFFFU), 0), Colour(0));
    EXPECT_EQ(LerpColour(Colour(0x102030), Colour(0x405060), 1), Colour(0x405060));
    // halves: 0.5 to 0, 1.5 to 2, and 2.5 to 2
    EXPECT_EQ(LerpColour(Colour(0x020100), Colour(0x030201), 0.5), Colour(0x020200));
    EXPECT_EQ(LerpColour(Colour(0x000000), Colour(0xFFFFFF), 0.6), Colour(0x999999));
    EXPECT_EQ(LerpColour(Colour(0xFFFFFF), Colour(0x000000), 0.6), Colour(0x666666));
}

TEST(ColourHelpers, ShiftClampsAtTheEndItMovesTo) {
    EXPECT_EQ(ShiftColour(Colour(0x808080), -0.1), Colour(0x666666)); // 102.5 to 102
    EXPECT_EQ(ShiftColour(Colour(0x808080), 0.2), Colour(0xB3B3B3));
    EXPECT_EQ(ShiftColour(Colour(0x0580F0), 0.2), Colour(0x38B3FF));
    EXPECT_EQ(ShiftColour(Colour(0x0580F0), -0.2), Colour(0x004DBD));
    EXPECT_EQ(ShiftColour(Colour(0x123456), 0), Colour(0x123456));
    EXPECT_EQ(ShiftColour(Colour(0xFF123456U), 0), Colour(0x123456));
}
