// What screen readers hear of the controls that the toolkit knows nothing of.
#include "controls/animation_bar.h"
#include "controls/brindlex_pb.h"
#include "controls/panel_fx.h"

#include <QAccessible>
#include <QWidget>
#include <gtest/gtest.h>

using controls::AnimationBar;
using controls::BrindlexPB;
using controls::PanelFx;

namespace {

QAccessibleInterface* Of(QObject* control) { return QAccessible::queryAccessibleInterface(control); }

TEST(AccessibleTest, AProgressBarTellsTheValueThatItShows) {
    QWidget container;
    BrindlexPB bar(&container, "PB1");
    bar.SetMin(1000);
    bar.SetMax(2000);
    bar.SetValue(1250);
    ASSERT_EQ(Of(&bar)->role(), QAccessible::ProgressBar);
    QAccessibleValueInterface* value = Of(&bar)->valueInterface();
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->minimumValue().toInt(), 1000);
    EXPECT_EQ(value->maximumValue().toInt(), 2000);
    EXPECT_EQ(value->currentValue().toInt(), 1250);
    EXPECT_EQ(Of(&bar)->text(QAccessible::Value), "25%");
    bar.SetValue(5000);
    EXPECT_EQ(value->currentValue().toInt(), 2000);
    EXPECT_EQ(Of(&bar)->text(QAccessible::Value), "100%");
}

TEST(AccessibleTest, ABarThatShowsWorkIsBusyWhileItRuns) {
    QWidget container;
    AnimationBar bar(&container, "DB1");
    EXPECT_FALSE(Of(&bar)->text(QAccessible::Name).isEmpty());
    EXPECT_FALSE(Of(&bar)->state().busy);
    bar.SetStyle(AnimationBar::Bouncy);
    bar.BeginDisplay();
    EXPECT_TRUE(Of(&bar)->state().busy);
    bar.EndDisplay();
    EXPECT_FALSE(Of(&bar)->state().busy);
}

TEST(AccessibleTest, APanelIsExpandedOrCollapsedWhereItCanBe) {
    QWidget container;
    PanelFx panel(&container, "PanelProgress");
    panel.resize(200, 100);
    panel.SetTitleCaption("Please Wait...");
    EXPECT_EQ(Of(&panel)->role(), QAccessible::Grouping);
    EXPECT_EQ(Of(&panel)->text(QAccessible::Name), "Please Wait...");
    EXPECT_FALSE(Of(&panel)->state().expandable);
    panel.SetCanCollapse(true);
    EXPECT_TRUE(Of(&panel)->state().expanded);
    panel.SetCollapse(true);
    EXPECT_TRUE(Of(&panel)->state().collapsed);
    EXPECT_FALSE(Of(&panel)->state().expanded);
}

} // namespace
