// What the button shows, keeps and computes.
#include "controls/dc_button.h"

#include <QAccessible>
#include <QFocusEvent>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QToolTip>
#include <QWidget>
#include <gtest/gtest.h>

namespace controls {
namespace {

using base::Colour;

quint32 PixelOf(dcButton& button, int x, int y) { return button.UpToDateSurface().GetPixel(x, y).Value(); }

draw::Picture PictureOf(int width, int height, QRgb colour) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(colour);
    return draw::Picture::FromImage(image);
}

class ButtonLook : public testing::Test {
  protected:
    ButtonLook() : button(&container, QStringLiteral("CommandTest")) {
        button.SetCaption(QString());
        button.resize(40, 30);
    }

    // Gives the button the focus without a window system.
    void Focus() {
        QFocusEvent event(QEvent::FocusIn, Qt::TabFocusReason);
        QCoreApplication::sendEvent(&button, &event);
    }
    void PointerOver() {
        const QPointF at(20, 15);
        QMouseEvent event(QEvent::MouseMove, at, button.mapToGlobal(at), Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&button, &event);
    }

    QWidget container;
    dcButton button;
};

TEST_F(ButtonLook, GradientMeetsInTheMiddleRow) {
    EXPECT_EQ(PixelOf(button, 20, 0), 0xFFFFFFU);
    EXPECT_EQ(PixelOf(button, 20, 1), 0x424242U);  // 64 + 32 / 14
    EXPECT_EQ(PixelOf(button, 20, 14), 0x606060U); // half of 28 rows
    EXPECT_EQ(PixelOf(button, 20, 15), 0x626262U); // 96 + 32 / 15
    EXPECT_EQ(PixelOf(button, 38, 28), 0x7E7E7EU); // 96 + 32 * 14 / 15
    EXPECT_EQ(PixelOf(button, 39, 29), 0xFFFFFFU);
}

TEST_F(ButtonLook, FillFollowsTheStateAndOverridesLastUntilTheNextColour) {
    PointerOver();
    EXPECT_EQ(button.CurrentState(), HotState);
    EXPECT_EQ(PixelOf(button, 20, 28), 0xAFAFAFU); // towards 128 + 51
    EXPECT_EQ(button.OverrideColor(4, Colour(0x0000FF), false), 0);
    EXPECT_GT(PixelOf(button, 20, 28) & 0xFFU, 0xF0U);
    EXPECT_EQ(button.OverrideColor(1, Colour(0x123456), false), 0);
    EXPECT_EQ(button.OverrideColor(6, Colour(), false), dcButton::InvalidArgument);
    EXPECT_EQ(button.OverrideColor(-1, Colour(), false), dcButton::InvalidArgument);
    button.SetMaskColor(Colour(0xC0C0C0));
    EXPECT_EQ(PixelOf(button, 20, 28), 0xAFAFAFU);

    button.SetEnabled(false);
    EXPECT_EQ(button.CurrentState(), DisabledState);
    EXPECT_EQ(PixelOf(button, 20, 1), 0xE6E6E6U);
    EXPECT_EQ(PixelOf(button, 20, 28), 0xE6E6E6U);
    button.SetEnabled(true);
    EXPECT_EQ(button.CurrentState(), HotState);
}

TEST_F(ButtonLook, SystemColoursAreResolvedAndTheSchemeRestoresTheBuiltInOnes) {
    button.SetBackColor(Colour(0x80000005U));
    EXPECT_GT(PixelOf(button, 20, 28), 0xE0E0E0U);
    button.ColorScheme(false);
    EXPECT_EQ(button.BackColor(), Colour(0x808080));
    EXPECT_EQ(button.BackStartColor(), Colour(0x404040));
    EXPECT_EQ(PixelOf(button, 20, 28), 0x7E7E7EU);
}

TEST_F(ButtonLook, ShapesCutTheCornersOfRoundSidesAndMarkThem) {
    EXPECT_TRUE(button.mask().isEmpty());
    EXPECT_EQ(PixelOf(button, 1, 1), 0x424242U);
    struct Case {
        int shape;
        bool roundLeft;
        bool roundRight;
    };
    for (const Case& each : {Case{RoundBoth, true, true}, Case{SquareLeft, false, true}, Case{SquareRight, true, false},
                             Case{SquareBoth, false, false}}) {
        button.SetButtonShape(each.shape);
        const auto visible = [this](int x, int y) {
            return button.mask().isEmpty() || button.mask().contains(QPoint(x, y));
        };
        EXPECT_EQ(visible(0, 0), !each.roundLeft) << each.shape;
        EXPECT_EQ(visible(0, 29), !each.roundLeft) << each.shape;
        EXPECT_EQ(visible(39, 0), !each.roundRight) << each.shape;
        EXPECT_EQ(visible(39, 29), !each.roundRight) << each.shape;
        EXPECT_TRUE(visible(20, 29) && visible(0, 15) && visible(39, 15)) << each.shape;
        EXPECT_EQ(PixelOf(button, 1, 28) == 0xFFFFFFU, each.roundLeft) << each.shape;
        EXPECT_EQ(PixelOf(button, 38, 1) == 0xFFFFFFU, each.roundRight) << each.shape;
    }
}

TEST_F(ButtonLook, FocusFrameLeavesSquareSidesOpen) {
    EXPECT_EQ(PixelOf(button, 20, 1), 0x424242U);
    Focus();
    EXPECT_EQ(PixelOf(button, 20, 1), 0x808080U);
    EXPECT_EQ(PixelOf(button, 38, 28), 0x808080U);
    EXPECT_EQ(PixelOf(button, 1, 14), 0x606060U);
    EXPECT_EQ(PixelOf(button, 2, 2), PixelOf(button, 20, 2));
    button.SetButtonShape(SquareRight);
    EXPECT_EQ(PixelOf(button, 1, 14), 0x808080U);
    EXPECT_EQ(PixelOf(button, 2, 2), 0x808080U);
    EXPECT_EQ(PixelOf(button, 2, 27), 0x808080U);
    EXPECT_EQ(PixelOf(button, 38, 14), 0x606060U);
    button.SetEnabled(false);
    EXPECT_EQ(PixelOf(button, 20, 1), 0xE6E6E6U);
}

TEST_F(ButtonLook, FocusIsSeenOnAFlatButtonToo) {
    button.SetBackStartColor(Colour(0x808080));
    button.SetBackColor(Colour(0x808080));
    const QImage plain = button.UpToDateSurface().Image().copy();
    Focus();
    EXPECT_NE(button.UpToDateSurface().Image(), plain);
    EXPECT_EQ(PixelOf(button, 1, 14), 0xFFFFFFU);
    EXPECT_EQ(PixelOf(button, 2, 14), 0x808080U);
}

TEST_F(ButtonLook, CheckedFillAndContentOffsetFollowDifferentStates) {
    button.SetCheckBoxMode(true);
    button.SetPictureNormal(PictureOf(4, 4, qRgb(0, 0, 255)));
    button.SetSpecialEffect(NoEffect);
    button.SetPictureAlignment(PictureCentred); // at (18, 13)
    button.SetValue(true);
    // Fill down (128 - 26), content moved by one although nothing is pressed.
    EXPECT_EQ(PixelOf(button, 30, 28), 0x656565U);
    EXPECT_EQ(PixelOf(button, 22, 17), 0xFF0000U);
    EXPECT_NE(PixelOf(button, 18, 13), 0xFF0000U);
    PointerOver();
    QMouseEvent press(QEvent::MouseButtonPress, QPointF(20, 15), button.mapToGlobal(QPointF(20, 15)), Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&button, &press);
    EXPECT_EQ(PixelOf(button, 30, 28), 0x656565U);
    EXPECT_EQ(PixelOf(button, 23, 18), 0xFF0000U);
    EXPECT_NE(PixelOf(button, 19, 14), 0xFF0000U);
    // Disabled keeps the offset and loses the fill.
    button.SetEnabled(false);
    EXPECT_EQ(PixelOf(button, 30, 28), 0xE6E6E6U);
    EXPECT_EQ(PixelOf(button, 22, 17), 0xEBB8B8U); // a fifth of the way to the picture
    EXPECT_EQ(PixelOf(button, 18, 13), 0xE6E6E6U);
}

TEST_F(ButtonLook, EveryStateShowsTheNormalPictureAndEffectsDoubleIt) {
    button.SetPictureNormal(PictureOf(6, 6, qRgb(255, 0, 0)));
    button.SetPictureHot(PictureOf(6, 6, qRgb(0, 255, 0)));
    PointerOver();
    EXPECT_EQ(PixelOf(button, 5, 15), 0x0000FFU);
    EXPECT_EQ(PixelOf(button, 3, 11), PixelOf(button, 30, 11));
    button.SetSpecialEffect(Raised); // at (4, 12), doubled one pixel up-left and down-right
    EXPECT_EQ(PixelOf(button, 3, 11), 0x0000FFU);
    EXPECT_EQ(PixelOf(button, 10, 18), 0x0000FFU);
    EXPECT_NE(PixelOf(button, 11, 19), 0x0000FFU);
}

TEST_F(ButtonLook, DisabledPictureLeavesItsKeyAndIgnoresRowPadding) {
    // Two rows of three: nine bytes a row, filled up to twelve.
    QImage image(3, 2, QImage::Format_RGB32);
    image.fill(qRgb(255, 0, 0));
    image.setPixel(1, 1, qRgb(0xC0, 0xC0, 0xC0));
    button.SetPictureNormal(draw::Picture::FromImage(image)); // at (4, 14)
    button.SetEnabled(false);
    // Bottom row first: blended, key, blended; then three bytes of filling and two pixels less of the top row's end.
    EXPECT_EQ(PixelOf(button, 4, 15), 0xB8B8EBU);
    EXPECT_EQ(PixelOf(button, 5, 15), 0xE6E6E6U);
    EXPECT_EQ(PixelOf(button, 6, 15), 0xB8B8EBU);
    EXPECT_EQ(PixelOf(button, 4, 14), 0xB8B8EBU);
    EXPECT_EQ(PixelOf(button, 5, 14), 0xB8B8EBU);
    EXPECT_EQ(PixelOf(button, 6, 14), 0xE6E6E6U);

    button.SetUseMaskColor(false); // the key is the top left pixel now: all red stays away
    EXPECT_EQ(PixelOf(button, 4, 15), 0xE6E6E6U);
    EXPECT_NE(PixelOf(button, 5, 15), 0xE6E6E6U);
}

TEST_F(ButtonLook, PicturesMoveIntoTheNormalSlotAndForceTheCustomSize) {
    button.SetPictureHot(PictureOf(8, 8, qRgb(1, 2, 3)));
    EXPECT_FALSE(button.PictureNormal().IsEmpty());
    EXPECT_TRUE(button.PictureHot().IsEmpty());
    EXPECT_EQ(button.PictureSizeW(), 8);
    button.SetPictureDown(PictureOf(9, 8, qRgb(1, 2, 3)));
    EXPECT_EQ(button.PictureSize(), 5);
    EXPECT_EQ(button.PictureSizeW(), 8);
    button.SetPictureSize(3);
    EXPECT_EQ(button.PictureSizeH(), 32);
    button.SetPictureSizeH(7);
    EXPECT_EQ(button.PictureSize(), 5);
    EXPECT_EQ(button.PictureSizeW(), 32);

    button.SetPictureNormal(draw::Picture());
    EXPECT_TRUE(button.PictureDown().IsEmpty());
    EXPECT_EQ(button.PictureOpacity(), 0);
    EXPECT_EQ(button.PictureSizeW(), 0);
    button.SetPictureNormal(PictureOf(2, 2, 0));
    EXPECT_EQ(button.PictureOpacity(), 100);
    button.SetPictureOpacity(250);
    EXPECT_EQ(button.PictureOpacity(), 100);
    button.SetPictureOpacity(29);
    EXPECT_EQ(button.PictureOpacity(), 29);
}

TEST(ButtonLayoutTest, NineAlignments) {
    ButtonPaint paint;
    paint.size = QSize(120, 81);
    paint.caption = QStringLiteral("Go");
    paint.picture = PictureOf(1, 1, 0);
    paint.pictureSize = QSize(20, 10);
    const auto at = [&paint](int alignment) {
        paint.pictureAlignment = alignment;
        return LayoutContent(paint);
    };
    const QRect text = at(PictureCentred).caption;
    const int w = text.width();
    const int h = text.height();
    ASSERT_GT(w, 0);
    EXPECT_EQ(text.topLeft(), QPoint((120 - w) / 2, (81 - h) / 2));
    const QSize size(20, 10);
    EXPECT_EQ(at(PictureCentred).picture, QRect(QPoint(50, 35), size));
    EXPECT_EQ(at(PictureAtBottom).picture, QRect(QPoint(50, 67), size));
    EXPECT_EQ(at(PictureAtLeft).picture, QRect(QPoint(4, 35), size));
    EXPECT_EQ(at(PictureAtRight).picture, QRect(QPoint(96, 35), size));
    EXPECT_EQ(at(PictureAtTop).picture, QRect(QPoint(50, 4), size));
    EXPECT_EQ(at(9).picture, QRect(QPoint(0, 0), size));
    // Pairs: side by side with a gap of 2, stacked without one, centred as one.
    EXPECT_EQ(at(PictureLeftOfCaption).picture.x(), (120 - w - 22) / 2);
    EXPECT_EQ(at(PictureLeftOfCaption).caption.x(), (120 - w - 22) / 2 + 22);
    EXPECT_EQ(at(PictureRightOfCaption).caption.x(), (120 - w - 22) / 2);
    EXPECT_EQ(at(PictureRightOfCaption).picture.x(), (120 - w - 22) / 2 + w + 2);
    EXPECT_EQ(at(PictureAboveCaption).picture.y(), (81 - h - 10) / 2);
    EXPECT_EQ(at(PictureAboveCaption).caption.y(), (81 - h - 10) / 2 + 10);
    EXPECT_EQ(at(PictureBelowCaption).picture.y(), (81 - h - 10) / 2 + h);
    paint.caption.clear();
    EXPECT_EQ(at(PictureLeftOfCaption).picture.x(), 50);
}

TEST_F(ButtonLook, CaptionIsDrawnOverItsShadow) {
    button.SetForeColor(Colour(0x0000FF));
    button.SetCaption(QStringLiteral("&I&&"));
    EXPECT_FALSE(button.Layout().caption.isEmpty());
    const auto count = [this](auto matches) {
        int found = 0;
        const QRect inside = button.Layout().caption & QRect(1, 1, 38, 28);
        for (int y = inside.top(); y <= inside.bottom(); ++y)
            for (int x = inside.left(); x <= inside.right(); ++x)
                found += matches(button.UpToDateSurface().GetPixel(x, y)) ? 1 : 0;
        return found;
    };
    EXPECT_GT(count([](Colour c) { return c.Red() > 200 && c.Green() < 100; }), 3);
    EXPECT_GT(count([](Colour c) { return c.Red() < 0x50 && c.Blue() < 0x50; }), 1);
    button.SetSpecialEffect(NoEffect);
    EXPECT_EQ(count([](Colour c) { return c.Red() < 0x40; }), 0);
}

TEST(AccessKey, IsFoundFromTheRight) {
    struct Case {
        const char* caption;
        char16_t key;
    };
    for (const Case& each : {Case{"", 0},
                             {"&", 0},
                             {"A", 0},
                             {"&Open", u'o'},
                             {"S&Ave", u'a'},
                             {"&&Open", 0},
                             {"Salt && Pepper", 0},
                             {"&Salt && Pepper", u's'},
                             {"A&b&C", u'c'},
                             {"Trailing&", 0},
                             {"Done&&", u'&'},
                             {"x&&y&Zz", u'z'}})
        EXPECT_EQ(FindAccessKey(QString::fromLatin1(each.caption)).unicode(), each.key) << each.caption;
}

TEST(ButtonBag, KeepsEverythingButThePictureAlignment) {
    QWidget container;
    dcButton saved(&container, QStringLiteral("CommandOne"));
    base::PropertyBag empty;
    saved.SetForeColor(Colour(0x80000012U)); // the container's, which a saved control falls back to
    saved.WriteProperties(empty);
    EXPECT_EQ(empty.Count(), 0);

    saved.SetBackColor(Colour(0x010203));
    saved.SetForeColor(Colour(0xFFFFFF));
    saved.SetUseMaskColor(false);
    saved.SetButtonShape(RoundBoth);
    saved.SetSpecialEffect(Sunken);
    saved.SetCaption(QStringLiteral("&Go"));
    saved.SetCheckBoxMode(true);
    saved.SetValue(true);
    saved.SetFontBold(true);
    saved.SetMousePointer(2);
    saved.SetPictureNormal(PictureOf(3, 4, qRgb(9, 8, 7)));
    saved.SetPictureOpacity(40);
    saved.SetPictureSizeW(11);
    saved.SetPictureAlignment(PictureAtTop);
    saved.SetEnabled(false);
    base::PropertyBag bag;
    saved.WriteProperties(bag);
    for (const char* key : {"backcolor", "UseMask", "Effects", "CheckBox", "PicNormal", "PicOpacity", "PicSizeW",
                            "PicAlign", "State", "Enabled", "Font"})
        EXPECT_TRUE(bag.Contains(QString::fromLatin1(key))) << key;
    EXPECT_FALSE(bag.Contains(QStringLiteral("PicHot")));

    dcButton loaded(&container, QStringLiteral("CommandTwo"));
    loaded.ReadProperties(bag);
    EXPECT_EQ(loaded.BackColor(), Colour(0x010203));
    EXPECT_FALSE(loaded.UseMaskColor());
    EXPECT_EQ(loaded.ButtonShape(), RoundBoth);
    EXPECT_EQ(loaded.SpecialEffect(), Sunken);
    EXPECT_EQ(loaded.Caption(), QStringLiteral("&Go"));
    EXPECT_TRUE(loaded.Value());
    EXPECT_TRUE(loaded.FontBold());
    EXPECT_EQ(loaded.MousePointer(), 2);
    EXPECT_EQ(loaded.PictureNormal(), saved.PictureNormal());
    EXPECT_EQ(loaded.PictureOpacity(), 40);
    EXPECT_EQ(loaded.PictureSize(), 5);
    EXPECT_EQ(loaded.PictureSizeW(), 11);
    EXPECT_FALSE(loaded.Enabled());
    EXPECT_EQ(loaded.CurrentState(), DisabledState);
    EXPECT_EQ(loaded.PictureAlignment(), PictureAtLeft);

    dcButton plain(&container, QStringLiteral("CommandThree"));
    EXPECT_EQ(plain.ForeColor(), Colour(0xFFFFFF));
    plain.ReadProperties(empty);
    EXPECT_EQ(plain.ForeColor(), Colour(0x80000012U));
    EXPECT_EQ(plain.Caption(), QStringLiteral("CommandThree"));
}

TEST(ButtonSize, IsAtLeastFifteenPixelsAndMayBeHuge) {
    QWidget container;
    dcButton button(&container, QStringLiteral("CommandBig"));
    button.resize(10, 0);
    EXPECT_EQ(button.size(), QSize(15, 15));
    button.SetButtonShape(RoundBoth);
    button.SetCaption(QString(100000, u'W') + QStringLiteral(" and more"));
    for (const QSize& size : {QSize(32767, 15), QSize(15, 32767), QSize(32767, 32767)}) {
        button.resize(size);
        EXPECT_EQ(button.UpToDateSurface().Size(), size);
        button.SetEnabled(!button.Enabled());
    }
}

TEST(ButtonAccessibility, TellsRoleNameKeyAndCheckedState) {
    QWidget container;
    dcButton button(&container, QStringLiteral("CommandSay"));
    button.SetCaption(QStringLiteral("Save && &Close"));
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(&button);
    ASSERT_NE(spoken, nullptr);
    EXPECT_EQ(spoken->role(), QAccessible::Button);
    EXPECT_EQ(spoken->text(QAccessible::Name), QStringLiteral("Save & Close"));
    EXPECT_EQ(spoken->text(QAccessible::Accelerator), QStringLiteral("Alt+C"));
    EXPECT_TRUE(spoken->state().focusable);
    button.SetCheckBoxMode(true);
    EXPECT_EQ(spoken->role(), QAccessible::CheckBox);
    EXPECT_FALSE(spoken->state().checked);
    spoken->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_TRUE(spoken->state().checked);
    button.SetEnabled(false);
    EXPECT_TRUE(spoken->state().disabled);
}

TEST(ButtonToolTip, TellsACaptionThatIsCutOffAsItStands) {
    QWidget container;
    dcButton button(&container, QStringLiteral("CommandTip"));
    container.show();
    const auto ask = [&button](const QString& caption, int width) {
        button.SetCaption(caption);
        button.resize(width, 20);
        const QPoint at(5, 5);
        QHelpEvent help(QEvent::ToolTip, at, button.mapToGlobal(at));
        QCoreApplication::sendEvent(&button, &help);
        return QToolTip::text();
    };
    EXPECT_EQ(ask(QStringLiteral("Look &Up"), 100), QString());
    EXPECT_EQ(ask(QStringLiteral("Look &Up Everything"), 30), QStringLiteral("Look Up Everything"));
    EXPECT_EQ(ask(QStringLiteral("<b>Everything</b>"), 30), QStringLiteral("<qt>&lt;b&gt;Everything&lt;/b&gt;</qt>"));
    QToolTip::hideText();
}

} // namespace
} // namespace controls
