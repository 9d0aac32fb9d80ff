#include "controls/brindlex_pb.h"

#include "controls/gradient.h"
#include "draw/system_colours.h"
#include "forms/late_bound.h"
#include "forms/picture_box.h"
#include "forms/screen.h"

#include <QSignalSpy>
#include <gtest/gtest.h>
#include <limits>

using base::Colour;
using controls::BrindlexPB;

namespace {

constexpr Colour parentColour{0x102030};
constexpr Colour back{0xC0C0C0};
constexpr Colour bar{0x800000};

// A progress bar in solid colours without a border, on a box of a colour of its own.
class ProgressBar : public testing::Test {
  protected:
    ProgressBar() : box_(nullptr, QStringLiteral("Box")), control_(&box_, QStringLiteral("PB1")) {
        box_.SetBackColor(parentColour);
        control_.SetBlendToParent(false);
        control_.SetBackColor(back);
        control_.SetBarColor(bar);
        control_.SetBorderStyle(controls::NoBorder);
        control_.resize(80, 20);
    }

    Colour At(int x, int y) { return control_.UpToDateSurface().GetPixel(x, y); }
    // How many pixels of a row or column have the colour.
    int CountInRow(int y, Colour colour) {
        int count = 0;
        for (int x = 0; x < control_.width(); ++x)
            count += At(x, y) == colour ? 1 : 0;
        return count;
    }
    int CountInColumn(int x, Colour colour) {
        int count = 0;
        for (int y = 0; y < control_.height(); ++y)
            count += At(x, y) == colour ? 1 : 0;
        return count;
    }

    forms::PictureBox box_;
    BrindlexPB control_;
};

} // namespace

TEST_F(ProgressBar, GrowsRightwardWhenWideAndUpwardOtherwise) {
    control_.SetValue(25);
    EXPECT_EQ(CountInRow(10, bar), 20);
    // The bar's end is rounded with the border before it, to even: 1 + 0.5 gives 2, and so does 1 + 1.5.
    control_.SetBorderStyle(controls::SunkenBorder);
    control_.resize(52, 20);
    for (const int value : {1, 3}) {
        control_.SetValue(value);
        EXPECT_EQ(CountInRow(10, bar), 1) << value;
    }
    control_.SetBorderStyle(controls::NoBorder);
    control_.resize(80, 20);
    control_.SetValue(25);
    EXPECT_EQ(At(19, 0), bar);
    EXPECT_EQ(At(20, 0), back);
    control_.resize(20, 80);
    EXPECT_EQ(CountInColumn(10, bar), 20);
    EXPECT_EQ(At(10, 79), bar);
    EXPECT_EQ(At(10, 59), back);
    control_.resize(40, 40);
    EXPECT_EQ(At(0, 39), bar);
    EXPECT_EQ(At(0, 0), back) << "equal sides are tall";
}

TEST_F(ProgressBar, ValuesOutsideTheRangeShowFullOrEmpty) {
    control_.SetMin(-50);
    control_.SetMax(50);
    control_.SetValue(1000);
    EXPECT_EQ(control_.Value(), 1000);
    EXPECT_EQ(control_.Percent(), 100);
    EXPECT_EQ(CountInRow(10, bar), 80);
    control_.SetValue(-1000);
    EXPECT_EQ(control_.Percent(), 0);
    EXPECT_EQ(CountInRow(10, bar), 0);
    control_.SetValue(0);
    EXPECT_EQ(control_.Percent(), 50);
    control_.SetMax(-50); // equal ends
    EXPECT_EQ(control_.Percent(), 0);
    EXPECT_EQ(CountInRow(10, bar), 0);
    control_.SetMin(std::numeric_limits<int>::min());
    control_.SetMax(std::numeric_limits<int>::max());
    control_.SetValue(-1);
    EXPECT_NEAR(control_.Percent(), 50, 1e-6);
}

TEST_F(ProgressBar, SegmentsGrowByWholeStepsAndGapsShowTheParent) {
    control_.SetSegments(true);
    control_.SetMax(80);
    // 80 is a whole number of steps of 8 and 2, so no surplus; the bar ends at multiples of 10.
    control_.SetValue(39);
    EXPECT_EQ(CountInRow(10, bar), 24);
    for (const int value : {40, 44, 49}) {
        control_.SetValue(value);
        EXPECT_EQ(CountInRow(10, bar), 32) << value;
    }
    EXPECT_EQ(At(7, 10), bar);
    EXPECT_EQ(At(8, 10), parentColour);
    EXPECT_EQ(At(9, 10), parentColour);
    EXPECT_EQ(At(10, 10), bar);
    EXPECT_EQ(At(48, 10), back);
    // Three pixels too many for whole steps widen every segment by three.
    control_.resize(83, 20);
    control_.SetValue(80);
    EXPECT_EQ(At(10, 10), bar);
    EXPECT_EQ(At(11, 10), parentColour);
    EXPECT_EQ(At(13, 10), bar);
}

TEST_F(ProgressBar, ATallBarsFirstGapLiesAtTheBottomEdgeItself) {
    control_.SetSegments(true);
    control_.resize(20, 80);
    control_.SetValue(100);
    // From the bottom: no gap inside the bar before the first step of 10 is over.
    EXPECT_EQ(At(10, 79), bar);
    EXPECT_EQ(At(10, 72), bar);
    EXPECT_EQ(At(10, 71), parentColour);
    EXPECT_EQ(At(10, 70), parentColour);
    EXPECT_EQ(At(10, 69), bar);
}

TEST(ProgressSegments, FollowTheScreensScale) {
    EXPECT_EQ(controls::SegmentSizeFor(150, 1.5).chunk, 12);
    EXPECT_EQ(controls::SegmentSizeFor(150, 1.5).gap, 3);
    EXPECT_EQ(controls::SegmentSizeFor(80, 0).chunk, 8);
    EXPECT_EQ(controls::SegmentSizeFor(125, 1.25).gap, 2) << "2.5 rounds to even";
}

TEST_F(ProgressBar, TextChangesColourExactlyAtTheBarsEnd) {
    constexpr Colour outside{0x00FF00};
    constexpr Colour inside{0x0000FF};
    control_.SetBackColor(Colour(0));
    control_.SetBarColor(Colour(0xFF0000));
    control_.SetForeColor(outside);
    control_.SetBarForeColor(inside);
    control_.SetText(QStringLiteral("WWWWWWWWWWWW"));
    control_.SetValue(50);
    EXPECT_EQ(CountInRow(10, Colour(0)), 40) << "no text before ShowText";
    control_.SetShowText(true);
    int greenLeft = 0;
    int redLeft = 0;
    int greenRight = 0;
    int redRight = 0;
    for (int x = 0; x < 80; ++x)
        for (int y = 0; y < 20; ++y) {
            (x < 40 ? greenLeft : greenRight) += At(x, y).Green() > 0 ? 1 : 0;
            (x < 40 ? redLeft : redRight) += At(x, y).Red() > 0 ? 1 : 0;
        }
    EXPECT_EQ(greenLeft, 0);
    EXPECT_EQ(redRight, 0);
    EXPECT_GT(redLeft, 50);
    EXPECT_GT(greenRight, 50);
}

TEST_F(ProgressBar, BordersByKindAndStyle) {
    const auto corners = [this](int appearance, int style) {
        control_.SetAppearance(appearance);
        control_.SetBorderStyle(style);
        return std::pair(At(0, 5), At(79, 5));
    };
    const Colour shadow = draw::GetSysColor(draw::COLOR_BTNSHADOW);
    const Colour highlight = draw::GetSysColor(draw::COLOR_BTNHIGHLIGHT);
    EXPECT_EQ(corners(0, 1), std::pair(Colour(0), Colour(0)));
    EXPECT_EQ(corners(0, 2), std::pair(Colour(0), Colour(0)));
    EXPECT_EQ(corners(1, 1), std::pair(shadow, highlight));
    EXPECT_EQ(corners(1, 2), std::pair(highlight, shadow));
    EXPECT_EQ(corners(2, 1), std::pair(draw::GetSysColor(draw::COLOR_3DDKSHADOW), highlight));
    EXPECT_EQ(corners(1, 0), std::pair(back, back));
    // Within a border of two pixels the bar spans 76: half of it ends at 2 + 38.
    corners(2, 1);
    control_.SetValue(50);
    EXPECT_EQ(At(39, 10), bar);
    EXPECT_EQ(At(40, 10), back);
}

TEST_F(ProgressBar, BlendsIntoTheParentAtUpperAndLowerEdge) {
    control_.SetBlendToParent(true);
    control_.resize(160, 100);
    control_.SetValue(50);
    const auto nearTo = [](Colour a, Colour b) {
        return std::abs(a.Red() - b.Red()) + std::abs(a.Green() - b.Green()) + std::abs(a.Blue() - b.Blue()) < 40;
    };
    EXPECT_TRUE(nearTo(At(120, 0), parentColour));
    EXPECT_TRUE(nearTo(At(120, 99), parentColour));
    EXPECT_TRUE(nearTo(At(120, 49), back));
    EXPECT_TRUE(nearTo(At(120, 50), back));
    EXPECT_TRUE(nearTo(At(20, 0), parentColour));
    EXPECT_TRUE(nearTo(At(20, 50), bar));
    // A new colour of the parent reaches the images at the next paint of the bar.
    box_.SetBackColor(Colour(0xFFFFFF));
    control_.Refresh();
    EXPECT_TRUE(nearTo(At(120, 99), Colour(0xFFFFFF)));
}

TEST_F(ProgressBar, PicturesTileOrStretch) {
    draw::Surface tile(4, 4);
    tile.Cls(Colour(0xFFFFFF));
    tile.SetPixel(0, 0, Colour(0x00FF00));
    control_.SetPicture(tile.ToPicture());
    EXPECT_EQ(At(0, 0), Colour(0x00FF00));
    EXPECT_EQ(At(76, 16), Colour(0x00FF00));
    EXPECT_EQ(At(77, 16), Colour(0xFFFFFF));
    control_.SetBackPictureMode(2);
    EXPECT_EQ(At(76, 16), Colour(0xFFFFFF));
    EXPECT_EQ(At(2, 1), Colour(0x00FF00));
    control_.SetBarPicture(tile.ToPicture());
    control_.SetValue(50);
    EXPECT_EQ(At(36, 16), Colour(0x00FF00));
    EXPECT_EQ(At(40, 16), Colour(0xFFFFFF));
    control_.ModifyBarPicture(0, 1, 0, 0);
    EXPECT_EQ(At(36, 16), Colour(0));
    control_.SetBarPicture(draw::Picture());
    control_.ModifyBarPicture(1, 1, 1, 1);
    EXPECT_TRUE(control_.BarPicture().IsEmpty());

    // Through a picture one sees the colour, whatever was painted before, and recoloured it stays see-through.
    QImage half(80, 20, QImage::Format_ARGB32_Premultiplied);
    half.fill(qRgba(0, 64, 0, 128));
    control_.SetPicture(draw::Picture::FromImage(half));
    control_.SetValue(0);
    const Colour mixed = At(70, 10);
    control_.SetValue(1);
    EXPECT_EQ(At(70, 10), mixed);
    EXPECT_NEAR(mixed.Red(), 96, 2);
    control_.ModifyPicture(0, 1, 0, 0);
    EXPECT_NEAR(At(70, 10).Red(), 96, 2);
    EXPECT_NEAR(At(70, 10).Green(), 96, 2);
}

TEST_F(ProgressBar, ReportsEachChangeAndBothPictures) {
    QSignalSpy changes(&control_, &BrindlexPB::PropertyChanged);
    control_.SetBarPicture(draw::Picture());
    ASSERT_EQ(changes.size(), 2);
    EXPECT_EQ(changes.at(0).at(0).toString(), QStringLiteral("Picture"));
    EXPECT_EQ(changes.at(1).at(0).toString(), QStringLiteral("BarPicture"));
    EXPECT_EQ(forms::SetProperty(&control_, "Value", 7), forms::PropertyResult::Set);
    EXPECT_EQ(changes.last().at(0).toString(), QStringLiteral("Value"));
}

TEST_F(ProgressBar, GoesThroughABagAndWritesNoDefaults) {
    base::PropertyBag empty;
    BrindlexPB fresh(&box_, QStringLiteral("PB2"));
    fresh.WriteProperties(empty);
    EXPECT_EQ(empty.Count(), 0);

    draw::Surface picture(3, 2);
    control_.SetPicture(picture.ToPicture());
    control_.SetForeColor(Colour(0x8000000DU));
    control_.SetMin(-3);
    control_.SetMax(9);
    control_.SetValue(12);
    control_.SetText(QStringLiteral("half"));
    control_.SetTextAlignY(2);
    control_.SetSegments(true);
    QFont bold = control_.Font();
    bold.setBold(true);
    control_.SetFont(bold);
    base::PropertyBag bag;
    control_.WriteProperties(bag);
    EXPECT_TRUE(bag.Contains(QStringLiteral("blendtoparent")));
    EXPECT_FALSE(bag.Contains(QStringLiteral("ShowText")));
    fresh.ReadProperties(bag);
    base::PropertyBag again;
    fresh.WriteProperties(again);
    EXPECT_EQ(again.Count(), bag.Count());
    EXPECT_EQ(fresh.Picture(), control_.Picture());
    EXPECT_EQ(fresh.ForeColor(), Colour(0x8000000DU));
    EXPECT_EQ(fresh.Value(), 12);
    EXPECT_EQ(fresh.Text(), QStringLiteral("half"));
    EXPECT_TRUE(fresh.Font().bold());
    EXPECT_FALSE(fresh.BlendToParent());
}

TEST_F(ProgressBar, PaintsAtAnySizeAndInTheVisualStyle) {
    control_.SetText(QString(100000, u'x'));
    control_.SetShowText(true);
    control_.SetSegments(true);
    for (const bool blended : {false, true})
        for (const bool themed : {false, true})
            for (const QSize size :
                 {QSize(0, 0), QSize(1, 1), QSize(1, 300), QSize(32767, 1), QSize(3, 3), QSize(90, 20)}) {
                control_.SetBlendToParent(blended);
                control_.SetXpStyle(themed);
                control_.resize(size);
                control_.SetValue(60);
                EXPECT_EQ(control_.UpToDateSurface().Size(), control_.size());
            }
    control_.SetBlendToParent(false);
    control_.SetShowText(false);
    control_.SetXpStyle(true);
    EXPECT_NE(At(10, 10), At(85, 10)) << "the style draws a bar";
    EXPECT_NE(At(85, 10), back) << "and its own background";
    control_.resize(20, 90);
    EXPECT_NE(At(10, 80), At(10, 5)) << "upward, when tall";
    EXPECT_NE(At(10, 5), back);
}
