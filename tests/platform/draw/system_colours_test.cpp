#include "draw/system_colours.h"
#include "surface_art.h"

#include <QPalette>
#include <gtest/gtest.h>

TEST(SystemColours, TranslateOnlyWhatTheTableHas) {
    draw::SetSysColor(draw::COLOR_WINDOW, base::Colour(0x123456));
    EXPECT_EQ(draw::TryOleTranslateColor(base::Colour(0x80000005U)), base::Colour(0x123456));
    EXPECT_EQ(draw::TryOleTranslateColor(base::Colour(0x00ABCDEF)), base::Colour(0x00ABCDEF));
    EXPECT_EQ(draw::TryOleTranslateColor(base::Colour(0x02ABCDEF)), base::Colour(0x00ABCDEF));
    EXPECT_EQ(draw::TryOleTranslateColor(base::Colour(0x8000001FU)), std::nullopt);
    EXPECT_EQ(draw::TryOleTranslateColor(base::Colour(0xFFFFFFFFU)), std::nullopt);
    EXPECT_EQ(draw::OleTranslateColor(base::Colour(0x8000001FU)), base::Colour(0x1F));
    draw::ResetSysColors();
    EXPECT_EQ(draw::GetSysColor(draw::COLOR_WINDOW), base::Colour(0xFFFFFF));
}

TEST(SystemColours, IgnoreIndicesOutsideAndColoursThatAreIndicesThemselves) {
    const base::Colour before = draw::GetSysColor(30);
    draw::SetSysColor(31, base::Colour(1));
    draw::SetSysColor(-1, base::Colour(1));
    draw::SetSysColor(30, draw::SystemColour(5));
    EXPECT_EQ(draw::GetSysColor(30), before);
    EXPECT_EQ(draw::GetSysColor(-1), base::Colour());
    EXPECT_EQ(draw::GetSysColor(31), base::Colour());
}

TEST(SystemColours, ComeFromThePalette) {
    QPalette palette;
    palette.setColor(QPalette::Button, QColor(1, 2, 3));
    palette.setColor(QPalette::Disabled, QPalette::WindowText, QColor(4, 5, 6));
    draw::SetSysColors(palette);
    EXPECT_EQ(draw::GetSysColor(draw::COLOR_BTNFACE), base::Colour(0x030201));
    EXPECT_EQ(draw::GetSysColor(draw::COLOR_GRAYTEXT), base::Colour(0x060504));
    draw::ResetSysColors();
}
