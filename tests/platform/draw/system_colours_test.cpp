#include "draw/system_colours.h"

#include "draw/contrast.h"
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

    // Captions, which no palette has, are the classic ones in a light theme and readable in each.
    const QRgb themes[][3] = {// text on buttons, buttons, highlight
                              {0xFF000000, 0xFFEFEFEF, 0xFF308CC6},
                              {0xFFFFFFFF, 0xFF323232, 0xFF2A82DA},
                              {0xFFFCFCFC, 0xFF31363B, 0xFF3DAEE9},
                              {0xFFFFFFFF, 0xFF000000, 0xFFFFFF00}};
    for (const auto& [text, button, highlight] : themes) {
        palette.setColor(QPalette::ButtonText, QColor(text));
        palette.setColor(QPalette::Button, QColor(button));
        palette.setColor(QPalette::Highlight, QColor(highlight));
        draw::SetSysColors(palette);
        const base::Colour caption = draw::GetSysColor(draw::COLOR_ACTIVECAPTION);
        EXPECT_EQ(caption == base::Colour(0xD1B499), text == 0xFF000000);
        EXPECT_GE(draw::Contrast(draw::GetSysColor(draw::COLOR_BTNTEXT), caption), 4.5) << text;
        EXPECT_GE(draw::Contrast(draw::GetSysColor(draw::COLOR_CAPTIONTEXT), caption), 4.5) << text;
    }
    draw::ResetSysColors();
}
