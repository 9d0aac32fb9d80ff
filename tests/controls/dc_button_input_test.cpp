// The button under mouse and keyboard: which events it raises in which order, and what state it shows meanwhile.
#include "base/yield.h"
#include "button_input_fixture.h"

namespace controls {
namespace {

TEST_F(ButtonInput, ClickComesAfterMouseUp) {
    Move(inside);
    EXPECT_EQ(button->CurrentState(), HotState);
    Press();
    EXPECT_EQ(button->CurrentState(), DownState);
    Release();
    EXPECT_EQ(button->CurrentState(), HotState);
    Leave();
    EXPECT_EQ(button->CurrentState(), NormalState);
    EXPECT_THAT(Taken(), ElementsAre("MouseEnter", "MouseDown", "MouseUp", "Click", "MouseLeave"));
}

TEST_F(ButtonInput, DragOutAndBackInClicks) {
    Move(inside);
    Press();
    Move(outside);
    EXPECT_EQ(button->CurrentState(), DownState);
    Move(outside);
    EXPECT_EQ(button->CurrentState(), HotState);
    Move(inside);
    EXPECT_EQ(button->CurrentState(), DownState);
    Release();
    EXPECT_THAT(Taken(), ElementsAre("MouseEnter", "MouseDown", "MouseLeave", "MouseMove", "MouseUp", "Click"));
}

TEST_F(ButtonInput, ReleaseOutsideIsNoClick) {
    Move(inside);
    Press();
    Move(outside); // over the other button
    Release(outside);
    Leave();
    EXPECT_EQ(button->CurrentState(), NormalState);
    EXPECT_THAT(Taken(), ElementsAre("MouseEnter", "MouseDown", "MouseLeave", "MouseUp", "MouseLeave"));
    // Inside the button's rectangle and under another control is outside.
    other->setGeometry(10, 10, 100, 30);
    Press();
    Release();
    EXPECT_THAT(Taken(), ElementsAre("MouseDown", "MouseUp"));
}

TEST_F(ButtonInput, DoubleClickRaisesOneClick) {
    Move(inside);
    Press();
    Release();
    Mouse(QEvent::MouseButtonDblClick, inside);
    EXPECT_EQ(button->CurrentState(), DownState);
    Release();
    EXPECT_EQ(button->CurrentState(), HotState);
    EXPECT_THAT(Taken(), ElementsAre("MouseEnter", "MouseDown", "MouseUp", "Click", "DblClick", "MouseUp"));
    Press();
    Release();
    EXPECT_THAT(Taken(), ElementsAre("MouseDown", "MouseUp", "Click"));
}

TEST_F(ButtonInput, OtherButtonsOnlyGoDown) {
    Mouse(QEvent::MouseButtonPress, inside, Qt::RightButton);
    Mouse(QEvent::MouseButtonRelease, inside, Qt::RightButton);
    EXPECT_THAT(Taken(), ElementsAre("MouseDown"));
    EXPECT_EQ(button->CurrentState(), NormalState);
}

TEST_F(ButtonInput, SpaceClicksWhenItGoesUp) {
    Focus();
    QTest::keyPress(button, Qt::Key_Space);
    EXPECT_EQ(button->CurrentState(), DownState);
    EXPECT_EQ(QWidget::mouseGrabber(), button);
    EXPECT_THAT(Taken(), ElementsAre("KeyDown", "KeyPress"));
    QTest::keyRelease(button, Qt::Key_Space);
    EXPECT_EQ(QWidget::mouseGrabber(), nullptr);
    EXPECT_THAT(Taken(), ElementsAre("Click", "KeyUp"));
    EXPECT_EQ(button->CurrentState(), NormalState);

    QTest::keyClick(button, Qt::Key_Space, Qt::AltModifier);
    EXPECT_THAT(Taken(), testing::Not(testing::Contains("Click")));
}

TEST_F(ButtonInput, AnotherKeyCancelsTheSpace) {
    Focus();
    QTest::keyPress(button, Qt::Key_Space);
    QTest::keyPress(button, Qt::Key_X);
    EXPECT_EQ(button->CurrentState(), NormalState);
    EXPECT_EQ(QWidget::mouseGrabber(), nullptr);
    QTest::keyRelease(button, Qt::Key_X);
    QTest::keyRelease(button, Qt::Key_Space);
    EXPECT_THAT(Taken(), ElementsAre("KeyDown", "KeyPress", "KeyDown", "KeyPress", "KeyUp", "KeyUp"));
}

TEST_F(ButtonInput, ArrowMovesTheFocusAndClicksDuringASpace) {
    Focus();
    QTest::keyClick(button, Qt::Key_Right);
    EXPECT_TRUE(other->hasFocus());
    EXPECT_THAT(Taken(), ElementsAre("KeyUp"));
    QTest::keyClick(other, Qt::Key_Up);
    EXPECT_TRUE(button->hasFocus());
    QTest::keyClick(button, Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_TRUE(button->hasFocus());
    Taken();

    QTest::keyPress(button, Qt::Key_Space);
    QTest::keyPress(button, Qt::Key_Down);
    EXPECT_TRUE(other->hasFocus());
    EXPECT_EQ(QWidget::mouseGrabber(), nullptr);
    EXPECT_EQ(button->CurrentState(), NormalState);
    EXPECT_THAT(Taken(), ElementsAre("KeyDown", "KeyPress", "Click"));
}

TEST_F(ButtonInput, LosingTheFocusDropsWhatIsHeld) {
    Focus();
    QTest::keyPress(button, Qt::Key_Space);
    other->SetFocus();
    EXPECT_EQ(button->CurrentState(), NormalState);
    EXPECT_EQ(QWidget::mouseGrabber(), nullptr);
    QTest::keyRelease(button, Qt::Key_Space);
    EXPECT_THAT(Taken(), testing::Not(testing::Contains("Click")));
}

TEST_F(ButtonInput, TabReachesItAndAccessKeysPressIt) {
    button->SetCaption(QStringLiteral("&Look Up"));
    other->SetFocus();
    QTest::keyClick(&window, Qt::Key_L, Qt::AltModifier);
    EXPECT_TRUE(button->hasFocus());
    EXPECT_THAT(Taken(), testing::Contains("Click"));
    QTest::keyClick(button, Qt::Key_Tab);
    EXPECT_TRUE(other->hasFocus());

    button->SetEnabled(false);
    Taken();
    button->AccessKeyPress('l');
    QTest::keyClick(&window, Qt::Key_L, Qt::AltModifier);
    EXPECT_TRUE(Taken().empty());
    button->SetEnabled(true);
    button->SetCaption(QStringLiteral("Look Up"));
    QTest::keyClick(&window, Qt::Key_L, Qt::AltModifier);
    EXPECT_THAT(Taken(), testing::Not(testing::Contains("Click")));

    button->SetCheckBoxMode(true);
    button->AccessKeyPress(13);
    EXPECT_FALSE(button->Value());
    button->AccessKeyPress('l');
    EXPECT_TRUE(button->Value());
}

TEST_F(ButtonInput, CheckButtonTogglesAndAPlainButtonIsClickedByItsValue) {
    button->SetValue(true);
    EXPECT_FALSE(button->Value());
    EXPECT_THAT(Taken(), ElementsAre("Click"));
    button->SetCheckBoxMode(true);
    button->SetValue(true);
    EXPECT_TRUE(Taken().empty());
    std::vector<bool> seen;
    QObject::connect(button, &dcButton::Click, [&] { seen.push_back(button->Value()); });
    for (int i = 0; i < 2; ++i) {
        Press();
        Release();
    }
    EXPECT_THAT(seen, ElementsAre(false, true));
    button->SetCheckBoxMode(false);
    EXPECT_FALSE(button->Value());
}

TEST_F(ButtonInput, HandlersMayDestroyTheButton) {
    for (const QEvent::Type deadly : {QEvent::MouseMove, QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        auto* victim = new dcButton(&window, QStringLiteral("CommandVictim"));
        victim->setGeometry(10, 50, 100, 30);
        victim->show();
        const QPointer<dcButton> alive(victim);
        const auto destroy = [victim] { delete victim; };
        if (deadly == QEvent::MouseMove)
            QObject::connect(victim, &dcButton::MouseEnter, destroy);
        else if (deadly == QEvent::MouseButtonPress)
            QObject::connect(victim, &dcButton::MouseDown, destroy);
        else
            QObject::connect(victim, &dcButton::Click, destroy);
        for (const QEvent::Type type : {QEvent::MouseMove, QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
            if (!alive)
                break;
            const Qt::MouseButton which = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
            QMouseEvent event(type, inside, victim->mapToGlobal(inside), which, which, Qt::NoModifier);
            QCoreApplication::sendEvent(victim, &event);
        }
        EXPECT_TRUE(alive.isNull()) << int(deadly);
    }
    button->SetFocus();
    QObject::connect(button, &dcButton::Click, [this] { delete button; });
    QTest::keyPress(button, Qt::Key_Space);
    QTest::keyPress(button, Qt::Key_Left);
    EXPECT_TRUE(button.isNull());
}

TEST_F(ButtonInput, WindowClosedInsideAClick) {
    QObject::connect(button, &dcButton::Click, [this] {
        window.close();
        base::Yield();
    });
    Move(inside);
    Press();
    Release();
    EXPECT_FALSE(window.isVisible());
    window.show();
    EXPECT_EQ(button->CurrentState(), NormalState);
}

} // namespace
} // namespace controls
