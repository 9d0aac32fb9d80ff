#include "forms/form.h"
#include "forms/late_bound.h"
#include "suite/tab_control.h"

#include <QAccessible>
#include <QTabBar>
#include <QTest>
#include <gtest/gtest.h>

namespace {

using base::Colour;

class TabControlTest : public testing::Test {
  protected:
    TabControlTest()
        : form(QStringLiteral("FrmTest"), 9000, 6000),
          tabs(new suite::TabControl(form.Client(), QStringLiteral("Tabs"))) {
        tabs->Move(0, 0, 9000, 6000);
        for (int i = 0; i < 4; ++i) {
            auto* page = new suite::TabControlPage(tabs, QStringLiteral("TabControlPage%1").arg(i + 1));
            tabs->AddItem(QStringLiteral("Tab %1").arg(i), page);
        }
    }
    void Set(const char* name, const Colour& colour) {
        EXPECT_EQ(forms::SetProperty(tabs, name, QVariant::fromValue(colour)), forms::PropertyResult::Set) << name;
    }

    forms::Form form;
    suite::TabControl* tabs;
};

TEST_F(TabControlTest, ShowsThePageOfTheSelectedTab) {
    form.Show();
    EXPECT_TRUE(tabs->Item(0)->Selected());
    EXPECT_TRUE(tabs->Page(0)->isVisible());
    QList<int> changes;
    QObject::connect(tabs, &suite::TabControl::SelectedChanged, tabs, [&](int index) { changes << index; });
    tabs->Item(2)->SetSelected(true);
    EXPECT_FALSE(tabs->Page(0)->isVisible());
    EXPECT_TRUE(tabs->Page(2)->isVisible());
    EXPECT_FALSE(tabs->Item(0)->Selected());
    QTest::keyClick(tabs->Strip(), Qt::Key_Right);
    EXPECT_TRUE(tabs->Item(3)->Selected());
    QTest::mouseClick(tabs->Strip(), Qt::LeftButton, {}, tabs->Strip()->tabRect(1).center());
    EXPECT_TRUE(tabs->Page(1)->isVisible());
    EXPECT_EQ(changes, QList<int>({2, 3, 1}));
    tabs->SetSelectedIndex(9);
    EXPECT_EQ(tabs->SelectedIndex(), 1);
    EXPECT_EQ(tabs->Item(4), nullptr);
    EXPECT_EQ(tabs->Item(-1), nullptr);
    EXPECT_EQ(tabs->Page(1)->geometry(), tabs->PaneRect());
}

TEST_F(TabControlTest, CaptionsChangeAndThePlainTitleStays) {
    suite::TabItem* item = tabs->Item(0);
    EXPECT_EQ(item->Tag(), QStringLiteral("Tab 0"));
    const int before = tabs->Strip()->tabRect(0).width();
    item->SetCaption(item->Tag() + QStringLiteral(" (137)"));
    EXPECT_EQ(tabs->Strip()->tabText(0), QStringLiteral("Tab 0 (137)"));
    EXPECT_EQ(item->Tag(), QStringLiteral("Tab 0"));
    EXPECT_GT(tabs->Strip()->tabRect(0).width(), before);
}

TEST_F(TabControlTest, TheColoursOfTheSetReachThePicture) {
    form.Show();
    const Colour normal(0x111111), selected(0x222222), pane(0x444444), frame(0x555555), header(0x666666);
    Set("PaintManager.ColorSet.ButtonNormal", normal);
    Set("PaintManager.ColorSet.ButtonSelected", selected);
    Set("PaintManager.ColorSet.ButtonHighlighted", Colour(0x333333));
    Set("PaintManager.ColorSet.PaneFace", pane);
    Set("PaintManager.ColorSet.FrameBorder", frame);
    Set("PaintManager.ColorSet.HeaderFaceDark", header);
    Set("PaintManager.ColorSet.HeaderFaceLight", header);
    Set("PaintManager.ColorSet.BorderHighlight", Colour(0x777777));
    Set("PaintManager.ColorSet.SelectedText", Colour::FromRgb(255, 0, 0));
    Set("PaintManager.ColorSet.NormalText", Colour::FromRgb(0, 255, 0));
    Set("PaintManager.ColorSet.HighlightText", Colour(0xFF0000));
    Set("PaintManager.ColorSet.ControlFace", Colour(0x888888));
    Set("BackColor", Colour(0x999999));
    for (int i = 0; i < 4; ++i)
        EXPECT_TRUE(forms::SetProperty(tabs->Page(i), "BackColor", QVariant::fromValue(pane)) ==
                    forms::PropertyResult::Set);
    // Letters without curves or slopes have pixels of the plain colour.
    tabs->Item(0)->SetCaption(QString(4, QChar(0x2588)));
    tabs->Item(1)->SetCaption(QString(4, QChar(0x2588)));
    const QImage picture = tabs->grab().toImage();
    const auto grey = [](int value) { return QColor(value, value, value); };
    const QRect first = tabs->Strip()->tabRect(0), second = tabs->Strip()->tabRect(1);
    EXPECT_EQ(picture.pixelColor(first.left() + 5, first.center().y()), grey(0x22));
    EXPECT_EQ(picture.pixelColor(second.left() + 5, second.center().y()), grey(0x11));
    EXPECT_EQ(picture.pixelColor(first.center()), QColor(255, 0, 0));
    EXPECT_EQ(picture.pixelColor(second.center()), QColor(0, 255, 0));
    EXPECT_EQ(picture.pixelColor(first.center().x(), first.top() + 1), grey(0x77));
    EXPECT_EQ(picture.pixelColor(picture.width() - 5, 5), grey(0x66));
    EXPECT_EQ(picture.pixelColor(picture.width() / 2, picture.height() / 2), grey(0x44));
    EXPECT_EQ(picture.pixelColor(0, picture.height() / 2), grey(0x55));
    EXPECT_EQ(picture.pixelColor(picture.width() - 5, tabs->Strip()->height() - 1), grey(0x55));
    // The selected tab is open towards its page.
    EXPECT_EQ(picture.pixelColor(first.center().x(), tabs->Strip()->height() - 1), grey(0x22));
}

TEST_F(TabControlTest, MetricsMakeTabsHigher) {
    const int plain = tabs->Strip()->height();
    tabs->PaintManager()->SetEnlarged(true);
    const int enlarged = tabs->Strip()->height();
    EXPECT_GT(enlarged, plain);
    tabs->PaintManager()->SetItemMetrics(16, 48);
    EXPECT_GE(tabs->Strip()->height(), 48);
    EXPECT_EQ(tabs->Page(0)->y(), tabs->Strip()->height());
    QFont large = tabs->font();
    large.setPointSize(60);
    tabs->PaintManager()->SetFont(large);
    EXPECT_GE(tabs->Strip()->height(), QFontMetrics(large).height());
}

TEST_F(TabControlTest, TabsThatDoNotFitShrinkInsteadOfVanishing) {
    form.Show();
    for (int i = 0; i < 4; ++i)
        tabs->Item(i)->SetCaption(QStringLiteral("A very long caption of a tab that will not fit (%1)").arg(i));
    EXPECT_LE(tabs->Strip()->tabRect(3).right(), tabs->width());
}

TEST_F(TabControlTest, ReadsAsTabsAndPages) {
    form.Show();
    QAccessibleInterface* strip = QAccessible::queryAccessibleInterface(tabs->Strip());
    ASSERT_NE(strip, nullptr);
    EXPECT_EQ(strip->role(), QAccessible::PageTabList);
    EXPECT_EQ(strip->child(1)->text(QAccessible::Name), QStringLiteral("Tab 1"));
    QAccessibleInterface* page = QAccessible::queryAccessibleInterface(tabs->Page(0));
    ASSERT_NE(page, nullptr);
    EXPECT_EQ(page->role(), QAccessible::PropertyPage);
    EXPECT_EQ(page->text(QAccessible::Name), QStringLiteral("Tab 0"));
}

} // namespace
