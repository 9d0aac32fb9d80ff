#include "controls/animation_bar.h"
#include "controls/panel_fx.h"
#include "forms/late_bound.h"

#include <QTest>
#include <QWidget>
#include <gtest/gtest.h>

namespace controls {
namespace {

using base::Colour;

class Bars : public testing::Test {
  protected:
    Bars() : bar(&container, QStringLiteral("DB1")) {
        bar.resize(200, 10); // 3000 twips wide
        bar.SetTiming(1);
        bar.SetBackGroundColor(QStringLiteral("0"));
        bar.SetLeftColorBarColor(QStringLiteral("255"));
        bar.SetRightColorBarColor(QStringLiteral("16711680"));
        bar.SetPulseColor(QStringLiteral("65280"));
    }
    double L() const { return bar.BarLeft(AnimationBar::LeftBar); }
    double R() const { return bar.BarLeft(AnimationBar::RightBar); }
    // Waits until `reached` or for two seconds.
    template <typename Condition> bool Until(Condition reached) { return QTest::qWaitFor(reached, 2000); }

    QWidget container;
    AnimationBar bar;
};

TEST_F(Bars, EachResetPushesThemFurtherOut) {
    bar.EndDisplay();
    EXPECT_EQ(L(), -1650);
    EXPECT_EQ(R(), 3150);
    bar.SetColorBars(true); // moves the second pair: the first shows what the reset alone does
    bar.BeginDisplay();
    EXPECT_EQ(L(), -3300);
    EXPECT_EQ(R(), 6300);
    bar.BeginDisplay();
    EXPECT_EQ(R(), 9450);
    EXPECT_TRUE(bar.IsRunning());
    bar.EndDisplay();
    EXPECT_FALSE(bar.IsRunning());
    EXPECT_EQ(R(), 12600);
}

TEST_F(Bars, ZeroesBecomeDefaultsAndEmptyColoursTheContainers) {
    PanelFx panel(&container, QStringLiteral("PanelTest"));
    AnimationBar inner(&panel, QStringLiteral("DB1"));
    inner.SetBackGroundColor(QStringLiteral("12"));
    inner.SetPulseColor(QStringLiteral("no colour"));
    inner.BeginDisplay();
    EXPECT_EQ(inner.Style(), AnimationBar::Monic);
    EXPECT_EQ(inner.Timing(), 75);
    EXPECT_EQ(inner.Increment(), 150);
    EXPECT_EQ(inner.BackGroundColor(), QStringLiteral("12"));
    EXPECT_EQ(inner.PulseColor(), QStringLiteral("no colour"));
    EXPECT_EQ(inner.UpToDateSurface().GetPixel(0, 0), Colour(12));
    // A skin hands over colours and calls by name.
    EXPECT_EQ(forms::SetProperty(&inner, "BackGroundColor", QVariant::fromValue(Colour(0x404040))),
              forms::PropertyResult::Set);
    EXPECT_EQ(inner.BackGroundColor(), QStringLiteral("4210752"));
    EXPECT_EQ(inner.UpToDateSurface().GetPixel(0, 0), Colour(12));
    EXPECT_TRUE(forms::CallByName(&inner, "ApplyBackGroundColor"));
    EXPECT_EQ(inner.UpToDateSurface().GetPixel(0, 0), Colour(0x404040));
    inner.SetStyle(9);
    inner.BeginDisplay();
    EXPECT_FALSE(inner.IsRunning());
}

TEST_F(Bars, MonicGoesRightAndStartsAgain) {
    bar.SetIncrement(1200);
    bar.BeginDisplay(); // from -1650 to 3150 in four steps of 1200, then back
    EXPECT_TRUE(Until([this] { return L() == 1950; }));
    EXPECT_EQ(R(), 3150);
    EXPECT_TRUE(Until([this] { return L() == -1650; }));
}

TEST_F(Bars, RightGoesLeftAndStepsOnFromItsStart) {
    bar.SetStyle(AnimationBar::Right);
    bar.SetIncrement(2400);
    bar.BeginDisplay(); // 3150, 750, -1650, then back and a step in one tick
    std::vector<double> places;
    EXPECT_TRUE(Until([&] {
        if (places.empty() || places.back() != R())
            places.push_back(R());
        return places.size() >= 5;
    }));
    for (const double place : places)
        EXPECT_TRUE(place == 3150 || place == 750 || place == -1650) << place;
    EXPECT_EQ(L(), -1650);
}

TEST_F(Bars, PaceMovesOneAfterTheOther) {
    bar.SetStyle(AnimationBar::Pace);
    bar.SetIncrement(1200);
    bar.BeginDisplay();
    EXPECT_TRUE(Until([this] { return L() >= 3150; }));
    EXPECT_TRUE(Until([this] { return R() <= -1650; }));
    EXPECT_GE(L(), 3150);
    EXPECT_TRUE(Until([this] { return L() < 3150; }));
}

TEST_F(Bars, BouncyPassesAndShowsBothSolidEndsAhead) {
    bar.SetStyle(AnimationBar::Bouncy);
    bar.SetIncrement(1650);
    bar.BeginDisplay();
    bar.BeginDisplay(); // -3300 and 6300
    EXPECT_TRUE(Until([this] { return L() == 0; }));
    EXPECT_EQ(R(), 3000);
    const draw::Surface& surface = bar.UpToDateSurface();
    EXPECT_GT(surface.GetPixel(99, 5).Red(), 0xF0);
    EXPECT_LT(surface.GetPixel(1, 5).Red(), 0x10);
    EXPECT_EQ(surface.GetPixel(150, 5), Colour(0));
    EXPECT_TRUE(Until([this] { return R() == 1350; }));
    EXPECT_GT(bar.UpToDateSurface().GetPixel(90, 5).Blue() + bar.UpToDateSurface().GetPixel(91, 5).Blue(), 0x100);
}

TEST_F(Bars, PulseBreathesAlsoInAStripNarrowerThanAStep) {
    bar.SetStyle(AnimationBar::Pulse);
    bar.SetIncrement(1000);
    bar.BeginDisplay();
    EXPECT_EQ(bar.PulseWidth(), 0.0);
    EXPECT_TRUE(Until([this] { return bar.PulseWidth() == 1000.0; }));
    EXPECT_EQ(bar.UpToDateSurface().GetPixel(100, 5), Colour(0x00FF00));
    EXPECT_EQ(bar.UpToDateSurface().GetPixel(60, 5), Colour(0));
    EXPECT_EQ(bar.UpToDateSurface().GetPixel(140, 5), Colour(0));
    EXPECT_TRUE(Until([this] { return bar.PulseWidth() == 3000.0; }));
    EXPECT_TRUE(Until([this] { return bar.PulseWidth() == 0.0; }));
    bar.EndDisplay();
    EXPECT_FALSE(bar.PulseWidth().has_value());
    bar.resize(10, 10);
    bar.BeginDisplay();
    EXPECT_TRUE(Until([this] { return bar.PulseWidth() == 1000.0; }));
    EXPECT_TRUE(Until([this] { return bar.PulseWidth() == 0.0; }));
}

TEST_F(Bars, SizesAndResizesWhileItRuns) {
    for (const QSize& size : {QSize(0, 0), QSize(1, 1), QSize(32767, 1), QSize(200, 40)}) {
        bar.resize(size);
        bar.BeginDisplay();
        bar.UpToDateSurface();
    }
    bar.resize(200, 20);
    EXPECT_TRUE(bar.IsRunning());
    EXPECT_EQ(bar.UpToDateSurface().GetPixel(100, 19), Colour(0));
}

TEST_F(Bars, BagRoundTrip) {
    base::PropertyBag bag;
    AnimationBar(&container, QStringLiteral("DB2")).WriteProperties(bag);
    EXPECT_EQ(bag.Count(), 0);
    bar.SetStyle(4);
    bar.SetColorBars(true);
    bar.WriteProperties(bag);
    AnimationBar loaded(&container, QStringLiteral("DB3"));
    loaded.ReadProperties(bag);
    EXPECT_EQ(loaded.Style(), 4);
    EXPECT_EQ(loaded.Timing(), 1);
    EXPECT_TRUE(loaded.ColorBars());
    EXPECT_EQ(loaded.RightColorBarColor(), QStringLiteral("16711680"));
}

} // namespace
} // namespace controls
