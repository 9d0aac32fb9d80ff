#include "forms/control.h"

#include "forms/drawn_control.h"
#include "forms/form.h"
#include "forms/label.h"
#include "forms/menu.h"
#include "forms/picture_box.h"
#include "forms/text_box.h"
#include "forms/timer.h"

#include <QAccessible>
#include <QApplication>
#include <QHelpEvent>
#include <QPlainTextEdit>
#include <QTest>
#include <QToolTip>
#include <gtest/gtest.h>

namespace {

class Square : public forms::DrawnControl {
  public:
    using DrawnControl::DrawnControl;
    int draws = 0;

  protected:
    void Draw(draw::Surface& surface) override {
        ++draws;
        surface.Cls(base::Colour::FromRgb(1, 2, 3));
    }
};

} // namespace

TEST(Control, StandsOnItsFormInOrderOfCreation) {
    forms::Form form("FrmTest", 3000, 3000);
    forms::PictureBox box(form.Client(), "Picture1");
    forms::Timer timer(&form, "Timer1", 50, false);
    auto* inner = new forms::Label(&box, "Label1");
    EXPECT_EQ(form.Controls(), (QList<QObject*>{&box, &timer, inner}));
    EXPECT_EQ(form.FindControl("Label1"), inner);
    EXPECT_EQ(form.Find<forms::Timer>("Label1"), nullptr);
    delete inner;
    EXPECT_EQ(form.Controls().size(), 2);
}

TEST(Control, KeepsItsOwnVisibilityAndTwips) {
    forms::Form form("FrmTest", 3000, 3000);
    forms::Label label(form.Client(), "Label1");
    EXPECT_TRUE(label.Visible());
    label.SetVisible(false);
    EXPECT_FALSE(label.Visible());
    label.Move(150, 300, 1500, -20);
    EXPECT_EQ(label.geometry(), QRect(10, 20, 100, 0));
    EXPECT_EQ(label.Left(), 150);
}

TEST(Control, ReportsPlatformCodes) {
    forms::Form form("FrmTest", 3000, 3000);
    forms::Label label(form.Client(), "Label1");
    label.Move(0, 0, 1500, 1500);
    QStringList events;
    QObject::connect(&label, &forms::Control::MouseDown,
                     [&](int b, int s) { events << QString("down %1 %2").arg(b).arg(s); });
    QObject::connect(&label, &forms::Control::MouseUp, [&](int b) { events << QString("up %1").arg(b); });
    QObject::connect(&label, &forms::Control::Click, [&] { events << "click"; });
    QObject::connect(&label, &forms::Control::KeyDown,
                     [&](int k, int s) { events << QString("key %1 %2").arg(k).arg(s); });
    QTest::mouseClick(&label, Qt::RightButton, Qt::ControlModifier, {5, 5});
    QTest::mouseClick(&label, Qt::LeftButton, {}, {5, 5});
    QTest::mousePress(&label, Qt::LeftButton, {}, {5, 5});
    QTest::mouseRelease(&label, Qt::LeftButton, {}, {500, 5});
    QTest::keyClick(&label, Qt::Key_Delete, Qt::ShiftModifier);
    EXPECT_EQ(events, (QStringList{"down 2 2", "up 2", "down 1 0", "up 1", "click", "down 1 0", "up 1", "key 16 1",
                                   "key 46 1"}));
}

TEST(DrawnControl, DrawsOnceForManyChanges) {
    forms::Form form("FrmTest", 3000, 3000);
    Square square(form.Client(), "Square1");
    square.Move(0, 0, 150, 150);
    square.MarkDirty();
    square.MarkDirty();
    EXPECT_EQ(square.UpToDateSurface().GetPixel(9, 9), base::Colour::FromRgb(1, 2, 3));
    square.UpToDateSurface();
    EXPECT_EQ(square.draws, 1);
    square.Move(0, 0, 300, 150);
    EXPECT_EQ(square.UpToDateSurface().Width(), 20);
    EXPECT_EQ(square.draws, 2);
}

TEST(TextBox, GivesBackWhatItWasGivenUntilEdited) {
    forms::Form form("FrmTest", 3000, 3000);
    forms::TextBox box(form.Client(), "TextID");
    box.SetText("A\r\nB\r\n");
    EXPECT_EQ(box.Text(), "A\r\nB\r\n");
    QTest::keyClicks(box.Editor(), "x");
    EXPECT_EQ(box.Text(), "xA\r\nB\r\n");
}

// A label may hold a device's name, and its tip must not load what the name would have it load.
TEST(Label, ANameThatLooksLikeMarkupIsNoneInItsTip) {
    forms::Form form("FrmTest", 3000, 3000);
    forms::Label label(form.Client(), "ImportantLabelName");
    label.Move(0, 0, 300, 300);
    const auto tip = [&label](const QString& caption) {
        label.SetCaption(caption);
        QHelpEvent help(QEvent::ToolTip, QPoint(5, 5), label.mapToGlobal(QPoint(5, 5)));
        QApplication::sendEvent(&label, &help);
        return QToolTip::text();
    };
    EXPECT_EQ(tip("A device with a long name"), "A device with a long name");
    EXPECT_EQ(tip("<img src='/dev/zero'>"), "<qt>&lt;img src='/dev/zero'&gt;</qt>");
    EXPECT_EQ(tip("A <b>device</b>"), "<qt>A &lt;b&gt;device&lt;/b&gt;</qt>");
}

// The name is not stored with each caption but asked for, and the two parts of a caption may change one at a time.
TEST(Label, IsReadAsItIsShown) {
    forms::Form form("FrmTest", 3000, 3000);
    forms::Label label(form.Client(), "lblStatus", "Drivers && Devices");
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(&label);
    EXPECT_EQ(spoken->text(QAccessible::Name), "Drivers & Devices");
    label.SetCaption("Status - ", "Paused.");
    label.SetCaption("Status - ", "Opening");
    EXPECT_EQ(label.Caption(), "Status - Opening");
    label.SetCaption("Result - ", "Opening");
    EXPECT_EQ(label.Caption(), "Result - Opening");
    EXPECT_EQ(spoken->text(QAccessible::Name), "Result - Opening");
    label.SetGrip(true);
    EXPECT_EQ(spoken->text(QAccessible::Name), "Size Grip");
}

TEST(Menu, EntriesByNameAndSeparators) {
    forms::Form form("FrmTest", 3000, 3000);
    forms::Menu menu(&form, "MenuMain", "MainList");
    menu.AddEntry("MenuMainLookup", "Lookup");
    menu.AddEntry("MenuMainLine1", "-");
    QStringList clicked;
    QObject::connect(&menu, &forms::Menu::Click, [&](const QString& name) { clicked << name; });
    menu.Choose("MenuMainLookup");
    menu.Choose("MenuMainLine1");
    menu.Choose("MenuMainNothing");
    EXPECT_EQ(clicked, QStringList{"MenuMainLookup"});
    EXPECT_EQ(menu.EntryNames(), (QStringList{"MenuMainLookup", "MenuMainLine1"}));
}
