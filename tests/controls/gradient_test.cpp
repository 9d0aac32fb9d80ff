#include "controls/gradient.h"

#include "draw/system_colours.h"

#include <gtest/gtest.h>
#include <limits>

using base::Colour;
using controls::clsGradient;

namespace {

constexpr Colour red{0x0000FF};
constexpr Colour blue{0xFF0000};
constexpr Colour untouched{0x00FF00};

draw::Surface Painted(int width, int height, double angle) {
    draw::Surface surface(width, height);
    surface.Cls(untouched);
    clsGradient gradient;
    gradient.SetColor1(red);
    gradient.SetColor2(blue);
    gradient.SetAngle(angle);
    EXPECT_TRUE(gradient.Draw(surface));
    return surface;
}

int CountOf(const draw::Surface& surface, Colour colour) {
    int count = 0;
    for (int y = 0; y < surface.Height(); ++y)
        for (int x = 0; x < surface.Width(); ++x)
            count += surface.GetPixel(x, y) == colour ? 1 : 0;
    return count;
}

} // namespace

TEST(Gradient, AnglesAreBroughtIntoTheCircle) {
    clsGradient gradient;
    EXPECT_EQ(gradient.Angle(), 315.0F);
    for (const auto& [given, stored] :
         {std::pair(360.0, 0.0F), {450.0, 90.0F}, {-45.0, 315.0F}, {-720.0, 0.0F}, {12.5, 12.5F}}) {
        gradient.SetAngle(given);
        EXPECT_EQ(gradient.Angle(), stored) << given;
    }
    gradient.SetAngle(std::numeric_limits<double>::quiet_NaN());
    gradient.SetAngle(std::numeric_limits<double>::infinity());
    EXPECT_EQ(gradient.Angle(), 12.5F);
}

TEST(Gradient, SystemColoursBelow25AreStoredResolved) {
    clsGradient gradient;
    EXPECT_EQ(gradient.Color1(), Colour(0x00FFFFD0));
    EXPECT_EQ(gradient.Color2(), Colour(0x00400000));
    gradient.SetColor1(Colour(0x80000005U));
    EXPECT_EQ(gradient.Color1(), draw::GetSysColor(draw::COLOR_WINDOW));
    gradient.SetColor2(Colour(0x80000019U));
    EXPECT_EQ(gradient.Color2(), Colour(0x80000019U));
}

TEST(Gradient, TheRampDividesByItsLength) {
    const clsGradient gradient;
    QVector<Colour> ramp;
    ASSERT_EQ(gradient.BlendColors(Colour(0xFF000000U), Colour(0x64), 4, ramp), 4);
    // 25 a step, and the last step takes the rest
    EXPECT_EQ(ramp, QVector<Colour>({Colour(0xFF000000U), Colour(25), Colour(50), Colour(0x64)}));
    ASSERT_EQ(gradient.BlendColors(Colour(0x05), Colour(0x00), 2, ramp), 2);
    for (const int steps : {1, 0, -7}) {
        ASSERT_EQ(gradient.BlendColors(red, blue, steps, ramp), 2);
        EXPECT_EQ(ramp, QVector<Colour>({red, blue}));
    }
    gradient.BlendColors(blue, blue, 9, ramp);
    EXPECT_EQ(ramp.count(blue), 9);
    // 2.5 and 7.5: ties to the even number
    gradient.BlendColors(Colour(0), Colour(10), 4, ramp);
    EXPECT_EQ(ramp, QVector<Colour>({Colour(0), Colour(2), Colour(5), Colour(10)}));
}

TEST(Gradient, RunsTheWayOfItsAngle) {
    const draw::Surface right = Painted(60, 20, 0);
    EXPECT_EQ(right.GetPixel(0, 10), red);
    EXPECT_GT(right.GetPixel(59, 10).Blue(), 240);
    EXPECT_EQ(right.GetPixel(30, 2), right.GetPixel(30, 17));
    const draw::Surface up = Painted(20, 60, 90);
    EXPECT_GT(up.GetPixel(10, 59).Red(), 240);
    EXPECT_GT(up.GetPixel(10, 0).Blue(), 240);
    const draw::Surface left = Painted(60, 20, 180);
    EXPECT_GT(left.GetPixel(59, 10).Red(), 240);
    EXPECT_GT(left.GetPixel(0, 10).Blue(), 240);
    const draw::Surface down = Painted(20, 60, 270);
    EXPECT_EQ(down.GetPixel(10, 0), red);
    EXPECT_GT(down.GetPixel(10, 59).Blue(), 240);
    const draw::Surface diagonal = Painted(50, 50, 315);
    // The sweep's first line is the diagonal; the corner behind it has the first colour.
    EXPECT_EQ(diagonal.GetPixel(0, 0), red);
    EXPECT_EQ(diagonal.GetPixel(20, 20), red);
    EXPECT_GT(diagonal.GetPixel(49, 49).Blue(), 225);
    EXPECT_NEAR(diagonal.GetPixel(49, 30).Red(), diagonal.GetPixel(30, 49).Red(), 6);
}

TEST(Gradient, CoversEverySizeAtEveryAngleAndLeavesThePenAlone) {
    for (const QSize size : {QSize(2, 2), QSize(3, 80), QSize(120, 7), QSize(2300, 4), QSize(33, 33)})
        for (double angle = 0; angle < 360; angle += 22.5)
            EXPECT_EQ(CountOf(Painted(size.width(), size.height(), angle), untouched), 0)
                << size.width() << 'x' << size.height() << " at " << angle;
    draw::Surface surface(9, 9);
    surface.SelectPen({Colour(0x123456), 3});
    EXPECT_TRUE(clsGradient().Draw(surface));
    EXPECT_EQ(surface.CurrentPen().colour, Colour(0x123456));
    EXPECT_EQ(surface.CurrentPen().width, 3);
}

TEST(Gradient, ASideOfOnePixelIsNotPainted) {
    const clsGradient gradient;
    for (const QSize size : {QSize(1, 9), QSize(9, 1), QSize(0, 0), QSize(32767, 32767)}) {
        draw::Surface surface(size);
        EXPECT_FALSE(gradient.Draw(surface));
        if (surface.IsDrawable()) {
            EXPECT_EQ(CountOf(surface, Colour(0)), size.width() * size.height());
        }
    }
    draw::Surface wide(32767, 2);
    EXPECT_TRUE(gradient.Draw(wide));
    EXPECT_EQ(wide.GetPixel(0, 0), gradient.Color1());
}
