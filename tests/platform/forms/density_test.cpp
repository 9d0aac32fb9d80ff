#include "forms/density.h"

#include "forms/screen.h"

#include <gtest/gtest.h>

namespace {

constexpr double widest = 11250; // twips
constexpr double highest = 8715;
constexpr QSize large(3840, 2160);

TEST(Density, TextOfTheDesignsSizeLeavesTheScreensOwn) {
    for (const double ratio : {0.5, 1.0, 1.04}) {
        const forms::Density density = forms::FitDensity(144, ratio, large, widest, highest);
        EXPECT_EQ(density.dotsPerInch, 144);
        EXPECT_EQ(density.textFactor, 1);
    }
}

TEST(Density, LargerTextGetsLargerWindows) {
    const forms::Density density = forms::FitDensity(96, 1.5, large, widest, highest);
    EXPECT_EQ(density.dotsPerInch, 144);
    EXPECT_EQ(density.textFactor, 1);
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

TEST(Screen, StepsOfTheScale) {
    const std::pair<int, double> steps[] = {{72, 1.0},  {96, 1.0},  {97, 1.25}, {120, 1.25}, {121, 1.5},
                                            {144, 1.5}, {145, 2.0}, {192, 2.0}, {193, 2.25}, {216, 2.25},
                                            {217, 2.5}, {240, 2.5}, {241, 3.0}, {600, 3.0}};
    for (const auto& [dotsPerInch, scale] : steps)
        EXPECT_EQ(forms::ScaleForDotsPerInch(dotsPerInch), scale) << dotsPerInch;
}

} // namespace
