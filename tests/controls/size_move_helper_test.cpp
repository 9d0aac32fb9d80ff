// The size and move helper: order of its events, rectangles by reference, and the drag setting it borrows.
#include "controls/size_move_helper.h"

#include "forms/screen.h"

#include <gtest/gtest.h>

namespace controls {
namespace {

class SizeMoveHelperTest : public testing::Test {
  protected:
    SizeMoveHelperTest() : form(QStringLiteral("FrmTest"), 3000, 3000) {
        forms::SetDragFullWindows(true);
        const auto note = [this](const char* name) { return [this, name] { order << QLatin1String(name); }; };
        QObject::connect(&helper, &cSizeMoveHelper::EnterSizeMove, note("enter"));
        QObject::connect(&helper, &cSizeMoveHelper::ExitSizeMove, note("exit"));
        QObject::connect(&helper, &cSizeMoveHelper::Moving, note("moving"));
        QObject::connect(&helper, &cSizeMoveHelper::Sizing, note("sizing"));
        QObject::connect(&helper, &cSizeMoveHelper::Deactivate, note("deactivate"));
        QObject::connect(&helper, &cSizeMoveHelper::Activate, [this](bool byMouse) {
            order << (byMouse ? QStringLiteral("mouse") : QStringLiteral("other"));
        });
        helper.Attach(&form);
    }
    ~SizeMoveHelperTest() override { forms::SetDragFullWindows(true); }

    forms::Form form;
    cSizeMoveHelper helper;
    QStringList order;
};

TEST_F(SizeMoveHelperTest, MessagesBecomeEvents) {
    QRect proposed(10, 20, 300, 200);
    Q_EMIT form.Activated(true);
    Q_EMIT form.EnterSizeMove();
    Q_EMIT form.Moving(&proposed);
    Q_EMIT form.Sized(); // inside the loop the proposals tell the size
    Q_EMIT form.Sizing(&proposed);
    Q_EMIT form.ExitSizeMove();
    Q_EMIT form.Deactivated();
    Q_EMIT form.Activated(false);
    EXPECT_EQ(order.join(QLatin1Char(' ')), QStringLiteral("mouse enter moving sizing exit deactivate other"));
    EXPECT_EQ(proposed, QRect(10, 20, 300, 200));
}

TEST_F(SizeMoveHelperTest, AHandlerChangesTheProposalButNotAReportedSize) {
    QObject::connect(&helper, &cSizeMoveHelper::Moving, [](int& left, int&, int& width, int&) {
        left += 5;
        width = 111;
    });
    QObject::connect(&helper, &cSizeMoveHelper::Sizing, [](int&, int&, int& width, int& height) {
        width += 1;
        height = 7;
    });
    QRect proposed(10, 20, 300, 200);
    Q_EMIT form.Moving(&proposed);
    EXPECT_EQ(proposed, QRect(15, 20, 111, 200));
    Q_EMIT form.Sizing(&proposed);
    EXPECT_EQ(proposed, QRect(15, 20, 112, 7));
    order.clear();
    form.SetWidth(4500);
    EXPECT_EQ(order, QStringList(QStringLiteral("sizing")));
    EXPECT_EQ(form.WindowRect().size(), QSize(300, 200));
}

TEST_F(SizeMoveHelperTest, TheDragSettingIsBorrowedWhileActive) {
    helper.SetNoFullDrag(true);
    EXPECT_TRUE(forms::DragFullWindows()) << "the window is not active yet";
    Q_EMIT form.Activated(false);
    EXPECT_FALSE(forms::DragFullWindows());
    Q_EMIT form.Deactivated();
    EXPECT_TRUE(forms::DragFullWindows());
    Q_EMIT form.Activated(false);
    helper.SetNoFullDrag(false);
    EXPECT_TRUE(forms::DragFullWindows());
    helper.SetNoFullDrag(true);
    EXPECT_FALSE(forms::DragFullWindows()) << "at once in an active window";
    form.Unload();
    EXPECT_TRUE(forms::DragFullWindows());
    EXPECT_FALSE(helper.Active());
}

TEST_F(SizeMoveHelperTest, ASettingThatWasOffStaysOff) {
    forms::SetDragFullWindows(false);
    helper.SetNoFullDrag(true);
    Q_EMIT form.Activated(false);
    EXPECT_FALSE(helper.ChangedFullDrag());
    Q_EMIT form.Deactivated();
    EXPECT_FALSE(forms::DragFullWindows());
}

TEST_F(SizeMoveHelperTest, TheEndOfTheHelperRestoresTheSetting) {
    {
        cSizeMoveHelper other;
        other.SetNoFullDrag(true);
        other.Attach(&form);
        Q_EMIT form.Activated(false);
        EXPECT_FALSE(forms::DragFullWindows());
    }
    EXPECT_TRUE(forms::DragFullWindows());
}

TEST_F(SizeMoveHelperTest, AttachTwiceLeavesTheSecondWindow) {
    forms::Form second(QStringLiteral("FrmOther"), 3000, 3000);
    helper.Attach(&second);
    Q_EMIT form.EnterSizeMove();
    EXPECT_TRUE(order.isEmpty());
    Q_EMIT second.EnterSizeMove();
    EXPECT_EQ(order, QStringList(QStringLiteral("enter")));
    helper.Detach();
    EXPECT_FALSE(helper.Active());
    Q_EMIT second.ExitSizeMove();
    EXPECT_EQ(order.size(), 1);
}

TEST_F(SizeMoveHelperTest, AHandlerMayEndTheHelper) {
    auto* shortLived = new cSizeMoveHelper;
    shortLived->Attach(&form);
    QObject::connect(shortLived, &cSizeMoveHelper::ExitSizeMove, [shortLived] { delete shortLived; });
    Q_EMIT form.EnterSizeMove();
    Q_EMIT form.ExitSizeMove();
    Q_EMIT form.EnterSizeMove();
    EXPECT_EQ(order, (QStringList{QStringLiteral("enter"), QStringLiteral("exit"), QStringLiteral("enter")}));
}

} // namespace
} // namespace controls
