#include "forms/density.h"

#include "forms/screen.h"
#include "forms/work_area.h"

#include <gtest/gtest.h>

namespace {

constexpr double widest = 11250; // twips
constexpr double highest = 8715;
constexpr QSize large(3840, 2160);

TEST(Density, WindowsGrowWithTextThatIsLargerThanTheDesigns) {
    const std::pair<double, double> expected[] = {{0.5, 96}, {1.0, 96}, {1.04, 96}, {1.5, 144}};
    for (const auto& [ratio, dotsPerInch] : expected) {
        const forms::Density density = forms::FitDensity(96, ratio, large, widest, highest);
        EXPECT_EQ(density.dotsPerInch, dotsPerInch);
        EXPECT_EQ(density.textFactor, 1);
    }
}

TEST(Density, EveryWindowFitsIntoASmallScreenWithItsText) {
    const forms::Density density = forms::FitDensity(192, 1, QSize(1024, 768), widest, highest);
    EXPECT_LE(widest / 1440 * density.dotsPerInch, 1024);
    EXPECT_NEAR(highest / 1440 * density.dotsPerInch, 768, 0.01);
    EXPECT_NEAR(density.textFactor, density.dotsPerInch / 192, 1e-9);
    // Too small to be read is worse than too large to be seen whole; unless the desktop itself wants it that small.
    EXPECT_EQ(forms::FitDensity(96, 1, QSize(320, 240), widest, highest).dotsPerInch, 72);
    EXPECT_EQ(forms::FitDensity(60, 1, QSize(320, 240), widest, highest).dotsPerInch, 60);
    EXPECT_EQ(forms::FitDensity(96, 1, QSize(), widest, highest).dotsPerInch, 96);
}

TEST(Density, EverythingIsMeasuredWithWhatWasSet) {
    forms::SetDotsPerInch(144);
    EXPECT_EQ(forms::ToPixels(1440), 144);
    EXPECT_EQ(forms::GetSystemMetrics(49), 24);
    forms::SetDotsPerInch(0);
    EXPECT_EQ(forms::ToPixels(1440), 96);
}

// The primary monitor of two stands right of a smaller one whose upper edge is lower.
TEST(Screen, PanelsTakeTheirStripOfTheirMonitor) {
    const QRect desktop(0, 0, 3288, 1080), small(0, 312, 1368, 768), primary(1368, 0, 1920, 1080);
    struct Case {
        QList<quint32> strut;
        QRect small, primary;
    };
    const quint32 huge = 0xFFFFFFFFU;
    const Case cases[] = {
        {{0, 0, 0, 40, 0, 0, 0, 0, 0, 0, 1368, 3287}, small, {1368, 0, 1920, 1040}},
        {{0, 0, 0, 40}, {0, 312, 1368, 728}, {1368, 0, 1920, 1040}},
        {{0, 0, 30, 0}, small, {1368, 30, 1920, 1050}},
        {{1408, 0, 0, 0, 0, 1079, 0, 0, 0, 0, 0, 0}, small, {1408, 0, 1880, 1080}},
        {{50, 60, 0, 0}, {50, 312, 1318, 768}, {1368, 0, 1860, 1080}},
        {{0, 0, 0, 40, 0, 0, 0, 0, 0, 0, 3287, 1368}, small, primary},
        {{huge, huge, huge, huge}, small, primary},
        {{0, 0, 40}, small, primary},
    };
    for (const auto& [strut, ofSmall, ofPrimary] : cases) {
        const forms::Reserved reserved{forms::StripsOf(strut, desktop), {}};
        EXPECT_EQ(forms::WithoutReserved(small, reserved), ofSmall);
        EXPECT_EQ(forms::WithoutReserved(primary, reserved), ofPrimary);
    }
    const forms::Reserved told{{}, {{0, 312, 1368, 768}, {1368, 27, 1920, 1053}}};
    EXPECT_EQ(forms::WithoutReserved(primary, told), QRect(1368, 27, 1920, 1053));
    EXPECT_EQ(forms::MovedInto({3000, -50, 750, 550}, primary), QRect(2538, 0, 750, 550));
    EXPECT_EQ(forms::MovedInto({0, 0, 2000, 2000}, small).topLeft(), small.topLeft());
}

TEST(Screen, StepsOfTheScale) {
    const std::pair<int, double> steps[] = {{72, 1.0},  {96, 1.0},  {97, 1.25}, {120, 1.25}, {121, 1.5},
                                            {144, 1.5}, {145, 2.0}, {192, 2.0}, {193, 2.25}, {216, 2.25},
                                            {217, 2.5}, {240, 2.5}, {241, 3.0}, {600, 3.0}};
    for (const auto& [dotsPerInch, scale] : steps)
        EXPECT_EQ(forms::ScaleForDotsPerInch(dotsPerInch), scale) << dotsPerInch;
}

} // namespace
