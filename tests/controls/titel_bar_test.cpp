// What the title bar paints, keeps and lays out.
#include "controls/titel_bar.h"

#include "forms/form.h"
#include "forms/screen.h"

#include <QAccessible>
#include <gtest/gtest.h>

namespace controls {
namespace {

using base::Colour;

constexpr Colour keyColour = Colour::FromRgb(0xF8, 0xB8, 0xF7);

class TitelBarLook : public testing::Test {
  protected:
    TitelBarLook() : bar(&container, QStringLiteral("TitelBar1")) {
        bar.InitProperties();
        bar.SetCaption(QString());
        bar.SetBackColor(keyColour);
        bar.resize(600, 32);
        bar.Refresh();
    }

    Colour PixelAt(int x, int y) { return bar.UpToDateSurface().GetPixel(x, y); }
    int ButtonX(TitelBar::ButtonIndex index) { return bar.Button(index).x(); }
    // The first column that differs from a bar without caption; -1 if none does.
    int FirstCaptionColumn(const QString& caption) {
        bar.SetCaption(QString());
        const QImage empty = bar.UpToDateSurface().Image().copy();
        bar.SetCaption(caption);
        const QImage& full = bar.UpToDateSurface().Image();
        for (int x = 0; x < full.width(); ++x)
            for (int y = 0; y < full.height(); ++y)
                if (full.pixel(x, y) != empty.pixel(x, y))
                    return x;
        return -1;
    }
    static draw::Picture Icon(int side) {
        QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::red);
        return draw::Picture::IconFromImage(image);
    }

    QWidget container;
    TitelBar bar;
};

// Close stands at 600 - 20 - 3 - 20, minimise one button and its own width further left; the diagonal starts 1.2
// heights left of that: round(516 - 38.4).
TEST_F(TitelBarLook, StripRunsToTheDiagonalAndTheKeyColourStaysRightOfIt) {
    ASSERT_EQ(ButtonX(TitelBar::CloseButton), 557);
    ASSERT_EQ(ButtonX(TitelBar::MinimiseButton), 516);
    const int slant = 478;
    EXPECT_EQ(PixelAt(2, 0), Colour::FromRgb(230, 230, 230));
    EXPECT_EQ(PixelAt(2, 16), Colour::FromRgb(160, 170, 185));
    EXPECT_EQ(PixelAt(2, 31), Colour::FromRgb(94, 114, 143)); // 140 * 31 / 32 and so on off 230
    for (const int row : {0, 1, 16, 31}) {
        EXPECT_EQ(PixelAt(slant + row - 1, row), PixelAt(2, row)) << row;
        EXPECT_EQ(PixelAt(slant + row, row), keyColour) << row;
        EXPECT_EQ(PixelAt(599, row), keyColour) << row;
    }
}

TEST_F(TitelBarLook, DotsFormTwoTrianglesBesideTheButtons) {
    const Colour grey = Colour::FromRgb(90, 90, 90);
    const Colour white = Colour::FromRgb(255, 255, 255);
    EXPECT_EQ(PixelAt(511, 11), grey);
    EXPECT_EQ(PixelAt(510, 12), white);
    EXPECT_EQ(PixelAt(511 - 12, 11), grey); // four in the first row
    EXPECT_EQ(PixelAt(511, 23), grey);      // one in the last
    EXPECT_EQ(PixelAt(507, 23), keyColour);
    EXPECT_EQ(PixelAt(580, 12), grey);
    EXPECT_EQ(PixelAt(581, 13), white);
    EXPECT_EQ(PixelAt(584, 12), keyColour); // one in the first row
    EXPECT_EQ(PixelAt(580 + 12, 24), grey); // four in the last
}

TEST_F(TitelBarLook, CoverLetsTheSecondBandInBelowItsRow) {
    bar.SetBackColorV2Begin(Colour::FromRgb(0, 0, 0));
    bar.SetBackColorV2End(Colour::FromRgb(32, 64, 96));
    bar.SetBackColorCover(0);
    EXPECT_EQ(PixelAt(490, 0), keyColour);
    EXPECT_EQ(PixelAt(490, 1), Colour::FromRgb(1, 2, 3));
    EXPECT_EQ(PixelAt(600 - 16 + 1 - 1, 1), Colour::FromRgb(1, 2, 3));
    EXPECT_EQ(PixelAt(600 - 16 + 1, 1), keyColour);
    bar.SetBackColorCover(15 * 10);
    EXPECT_EQ(PixelAt(490, 10), keyColour);
    EXPECT_EQ(PixelAt(490, 11), Colour::FromRgb(11, 22, 33));
}

TEST_F(TitelBarLook, DiagonalStartsBesideTheLastButtonShownAndFollowsAtTheNextRefresh) {
    EXPECT_EQ(PixelAt(478, 0), keyColour);
    bar.SetShowClose(false);
    EXPECT_FALSE(bar.Button(TitelBar::CloseButton).Visible());
    const int minimise = 600 - 3 - 20 - 20 - 1 - 20; // from W - 3 - M on
    EXPECT_EQ(ButtonX(TitelBar::MinimiseButton), minimise);
    EXPECT_NE(PixelAt(477, 0), keyColour);
    EXPECT_EQ(PixelAt(478, 0), keyColour) << "a Show flag alone does not paint";
    bar.Refresh();
    const int slant = 498; // 536 - 38.4
    EXPECT_NE(PixelAt(slant - 1, 0), keyColour);
    EXPECT_EQ(PixelAt(slant, 0), keyColour);
    bar.SetShowMinimized(false);
    bar.Refresh();
    EXPECT_NE(PixelAt(599, 31), keyColour) << "without buttons the strip is as wide as the bar";
}

TEST_F(TitelBarLook, MarginAndTopFollowTheStyle) {
    bar.SetShowMaximized(true);
    bar.SetShowHelp(true);
    EXPECT_EQ(ButtonX(TitelBar::MaximiseButton), 516);
    EXPECT_EQ(ButtonX(TitelBar::MinimiseButton), 475);
    EXPECT_EQ(ButtonX(TitelBar::HelpButton), 434);
    for (int index = 0; index < TitelBar::ButtonCount; ++index)
        EXPECT_EQ(bar.Button(TitelBar::ButtonIndex(index)).y(), 9);
    bar.SetStyle(14);
    EXPECT_EQ(ButtonX(TitelBar::CloseButton), 600 - 20 - 3 - 6);
    EXPECT_EQ(ButtonX(TitelBar::MaximiseButton), 571 - 20 - 1 - 6);
    bar.SetStyle(0);
    EXPECT_EQ(ButtonX(TitelBar::CloseButton), 577);
    EXPECT_EQ(bar.Button(TitelBar::CloseButton).y(), 8);
    EXPECT_EQ(PixelAt(2, 16), keyColour);
    bar.SetStyle(15);
    EXPECT_EQ(bar.Style(), 0);
}

TEST_F(TitelBarLook, CaptionStartsBehindTheIconAndStaysOnTheStrip) {
    EXPECT_NEAR(FirstCaptionColumn(QStringLiteral("HHH")), 6, 2);
    bar.SetPicture(Icon(24));
    EXPECT_EQ(PixelAt(6, 4), Colour::FromRgb(255, 0, 0));
    EXPECT_EQ(PixelAt(30, 4), PixelAt(2, 4));
    EXPECT_NEAR(FirstCaptionColumn(QStringLiteral("HHH")), 36, 2);
    bar.SetCaption(QString(40000, QLatin1Char('W')));
    for (int row = 0; row < 32; ++row)
        EXPECT_EQ(PixelAt(478 + row, row), keyColour) << row;
}

TEST_F(TitelBarLook, CaptionHasAShadowOneStepDarkerThanTheStripsMiddle) {
    bar.SetFont(QFont(QStringLiteral("Sans"), 18, QFont::Black)); // strokes wide enough for unsmoothed pixels
    bar.SetCaption(QStringLiteral("HHH"));
    bar.SetCaptionColor(Colour::FromRgb(255, 255, 0));
    EXPECT_EQ(bar.ForeColor(), Colour::FromRgb(255, 255, 0));
    const Colour shadow = Colour::FromRgb(134, 144, 160); // (230 + 90) / 2 - 25.5 and so on, ties to even
    bool foreground = false;
    bool dark = false;
    for (int y = 0; y < 32; ++y)
        for (int x = 6; x < 90; ++x) {
            foreground = foreground || PixelAt(x, y) == bar.CaptionColor();
            dark = dark || PixelAt(x, y) == shadow;
        }
    EXPECT_TRUE(foreground);
    EXPECT_TRUE(dark);
}

TEST_F(TitelBarLook, CentredIconOverwritesTheStoredPlace) {
    bar.SetPicture(Icon(20));
    bar.SetPicturePosMode(3);
    EXPECT_EQ(bar.PicturePosX(), 290);
    EXPECT_EQ(bar.PicturePosY(), 6);
    bar.SetPicturePosMode(0);
    EXPECT_EQ(PixelAt(290, 6), Colour::FromRgb(255, 0, 0));
    EXPECT_EQ(PixelAt(6, 4), PixelAt(2, 4));
}

TEST_F(TitelBarLook, BorderClosesAllFourCorners) {
    bar.SetBorderColorHighLight(Colour(0x112233));
    bar.SetBorderColorDarkLight(Colour(0x445566));
    bar.SetBorderNormal(1);
    EXPECT_EQ(PixelAt(0, 0), Colour(0x112233));
    EXPECT_EQ(PixelAt(300, 0), Colour(0x112233));
    EXPECT_EQ(PixelAt(0, 16), Colour(0x112233));
    EXPECT_EQ(PixelAt(599, 16), Colour(0x445566));
    EXPECT_EQ(PixelAt(300, 31), Colour(0x445566));
    EXPECT_EQ(PixelAt(599, 31), Colour(0x445566));
}

TEST_F(TitelBarLook, FaceRunsFromTopOverMiddleToBottomColour) {
    const QImage close = bar.Button(TitelBar::CloseButton).Picture().Image();
    ASSERT_EQ(close.size(), QSize(20, 20));
    const auto pixel = [&](int x, int y) { return close.pixelColor(x, y); };
    const auto distance = [](const QColor& a, const QColor& b) {
        return qAbs(a.red() - b.red()) + qAbs(a.green() - b.green()) + qAbs(a.blue() - b.blue());
    };
    EXPECT_LT(distance(pixel(0, 0), QColor(90, 110, 140)), 80);
    EXPECT_LT(distance(pixel(0, 10), QColor(217, 35, 0)), 40);
    EXPECT_LT(distance(pixel(0, 19), QColor(38, 48, 79)), 80);
    EXPECT_EQ(pixel(10, 10), QColor(255, 255, 255)); // the middle of the cross
    // Outline from a quarter to three quarters, its bar a tenth of the height.
    const QImage maximise = bar.Button(TitelBar::MaximiseButton).Picture().Image();
    for (const QPoint& point : {QPoint(5, 5), QPoint(10, 6), QPoint(14, 14), QPoint(5, 10)})
        EXPECT_EQ(maximise.pixelColor(point), QColor(255, 255, 255)) << point.x() << ',' << point.y();
    for (const QPoint& point : {QPoint(4, 5), QPoint(10, 7), QPoint(15, 15), QPoint(10, 10)})
        EXPECT_NE(maximise.pixelColor(point), QColor(255, 255, 255)) << point.x() << ',' << point.y();
}

// Corner and size of the outline are rounded each by itself, to even halves.
TEST_F(TitelBarLook, GlyphsAtOneAndAHalfTimesTheSize) {
    forms::SetDotsPerInch(144);
    TitelBar large(&container, QStringLiteral("TitelBar2"));
    const QImage maximise = large.Button(TitelBar::MaximiseButton).Picture().Image();
    forms::SetDotsPerInch(0);
    ASSERT_EQ(maximise.size(), QSize(30, 30));
    for (const QPoint& point : {QPoint(8, 8), QPoint(22, 10), QPoint(22, 22), QPoint(15, 10)})
        EXPECT_EQ(maximise.pixelColor(point), QColor(255, 255, 255)) << point.x() << ',' << point.y();
    for (const QPoint& point : {QPoint(7, 8), QPoint(23, 10), QPoint(22, 23), QPoint(15, 11)})
        EXPECT_NE(maximise.pixelColor(point), QColor(255, 255, 255)) << point.x() << ',' << point.y();
}

TEST_F(TitelBarLook, FacesAreRebuiltByTheirOwnColoursOnly) {
    const draw::Picture before = bar.Button(TitelBar::CloseButton).Picture();
    bar.SetBackColorV2Begin(Colour(0));
    EXPECT_EQ(bar.Button(TitelBar::CloseButton).Picture(), before);
    bar.SetButtonBackColor(bar.ButtonBackColor());
    EXPECT_NE(bar.Button(TitelBar::CloseButton).Picture(), before);
}

TEST_F(TitelBarLook, LoadDefaultsDifferFromANewControl) {
    TitelBar fresh(&container, QStringLiteral("TitelBar2"));
    fresh.InitProperties();
    EXPECT_EQ(fresh.Caption(), QStringLiteral("TitelBar2"));
    EXPECT_EQ(fresh.BackColorCover(), 2000);
    EXPECT_DOUBLE_EQ(fresh.Height(), 480);
    base::PropertyBag bag;
    fresh.WriteProperties(bag);
    EXPECT_TRUE(bag.Contains(QStringLiteral("backcolorcover")));
    EXPECT_TRUE(bag.Contains(QStringLiteral("caption")));
    EXPECT_TRUE(bag.Contains(QStringLiteral("forecolor")));
    EXPECT_EQ(bag.Count(), 3);

    fresh.ReadProperties(base::PropertyBag());
    EXPECT_EQ(fresh.Caption(), QString());
    EXPECT_EQ(fresh.BackColorCover(), 0);
    EXPECT_FALSE(fresh.ShowMaximized());
}

TEST_F(TitelBarLook, PropertiesComeBackFromTheBag) {
    bar.SetCaption(QStringLiteral("Caption"));
    bar.SetPicture(Icon(16));
    bar.SetPicturePosX(-3);
    bar.SetIconStyle(9);
    bar.SetShowHelp(true);
    bar.SetButtonXBackColor(Colour(0x010203));
    bar.SetToolTipText(QStringLiteral("tip"));
    bar.SetStyle(7);
    bar.SetFont(QFont(QStringLiteral("Sans"), 19));
    bar.SetPicturePosY(40000);
    EXPECT_EQ(bar.IconStyle(), 2);
    EXPECT_EQ(bar.PicturePosY(), 4);
    base::PropertyBag bag;
    bar.WriteProperties(bag);
    TitelBar other(&container, QStringLiteral("TitelBar2"));
    other.ReadProperties(bag);
    EXPECT_EQ(other.Caption(), bar.Caption());
    EXPECT_EQ(other.Picture(), bar.Picture());
    EXPECT_EQ(other.PicturePosX(), -3);
    EXPECT_EQ(other.IconStyle(), 2);
    EXPECT_TRUE(other.ShowHelp());
    EXPECT_EQ(other.ButtonXBackColor(), Colour(0x010203));
    EXPECT_EQ(other.BackColor(), keyColour);
    EXPECT_EQ(other.ToolTipText(), QStringLiteral("tip"));
    EXPECT_EQ(other.Style(), 7);
    EXPECT_EQ(other.Font().pointSize(), 19);
}

TEST_F(TitelBarLook, AnySizePaints) {
    bar.SetCaption(QStringLiteral("Caption"));
    bar.SetPicture(Icon(24));
    bar.SetDashBack(true);
    bar.SetBackColorCover(0);
    bar.SetBorderNormal(40);
    for (const QSize size : {QSize(0, 0), QSize(1, 1), QSize(0, 32), QSize(32767, 1), QSize(1, 32767), QSize(2, 2),
                             QSize(32767, 32), QSize(120, 32)}) {
        bar.resize(size);
        EXPECT_EQ(bar.UpToDateSurface().Size(), size);
    }
    bar.SetBorderNormal(32767);
    EXPECT_EQ(bar.UpToDateSurface().Size(), QSize(120, 32));
}

TEST_F(TitelBarLook, ScreenReadersMeetATitleBarWithNamedButtons) {
    bar.SetCaption(QStringLiteral("Window"));
    const QAccessibleInterface* title = QAccessible::queryAccessibleInterface(&bar);
    ASSERT_NE(title, nullptr);
    EXPECT_EQ(title->role(), QAccessible::TitleBar);
    EXPECT_EQ(title->text(QAccessible::Name), QStringLiteral("Window"));
    bar.SetShowHelp(true);
    bar.SetShowHelpEnabled(true);
    QAccessibleInterface* help = QAccessible::queryAccessibleInterface(&bar.Button(TitelBar::HelpButton));
    ASSERT_NE(help, nullptr);
    EXPECT_EQ(help->role(), QAccessible::Button);
    EXPECT_EQ(help->text(QAccessible::Name), QStringLiteral("Help"));
    int pressed = 0;
    QObject::connect(&bar, &TitelBar::HelpButtonClick, [&] { ++pressed; });
    ASSERT_NE(help->actionInterface(), nullptr);
    help->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(pressed, 1);
}

} // namespace
} // namespace controls
