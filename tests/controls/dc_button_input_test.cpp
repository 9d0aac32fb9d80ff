// The button under mouse, keyboard and popup: which events it raises in which order, and what state it shows meanwhile.
#include "base/yield.h"
#include "controls/dc_button.h"

#include <QApplication>
#include <QCursor>
#include <QMenu>
#include <QMouseEvent>
#include <QTest>
#include <QTimer>
#include <gmock/gmock.h>

namespace controls {
namespace {

using testing::ElementsAre;

constexpr QPointF inside(20, 15);
constexpr QPointF outside(200, 15);

class ButtonInput : public testing::Test {
  protected:
    ButtonInput() {
        window.resize(400, 200);
        button = new dcButton(&window, QStringLiteral("CommandFirst"));
        button->setGeometry(10, 10, 100, 30);
        other = new dcButton(&window, QStringLiteral("CommandOther"));
        other->setGeometry(180, 10, 100, 30);
        window.show();
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        Record();
    }
    ~ButtonInput() override {
        if (QWidget* grabber = QWidget::mouseGrabber())
            grabber->releaseMouse();
    }

    void Record() {
        const auto note = [this](const char* name) { return [this, name] { events.emplace_back(name); }; };
        QObject::connect(button, &dcButton::Click, note("Click"));
        QObject::connect(button, &dcButton::DblClick, note("DblClick"));
        QObject::connect(button, &dcButton::MouseDown, note("MouseDown"));
        QObject::connect(button, &dcButton::MouseMove, note("MouseMove"));
        QObject::connect(button, &dcButton::MouseUp, note("MouseUp"));
        QObject::connect(button, &dcButton::MouseEnter, note("MouseEnter"));
        QObject::connect(button, &dcButton::MouseLeave, note("MouseLeave"));
        QObject::connect(button, &dcButton::KeyDown, note("KeyDown"));
        QObject::connect(button, &dcButton::KeyPress, note("KeyPress"));
        QObject::connect(button, &dcButton::KeyUp, note("KeyUp"));
    }
    std::vector<std::string> Taken() { return std::exchange(events, {}); }

    void Mouse(QEvent::Type type, const QPointF& at, Qt::MouseButton which = Qt::LeftButton) {
        const bool goesDown = type == QEvent::MouseButtonPress || type == QEvent::MouseButtonDblClick;
        if (goesDown)
            held |= which;
        if (type == QEvent::MouseButtonRelease)
            held &= ~Qt::MouseButtons(which);
        const Qt::MouseButton changed = type == QEvent::MouseMove ? Qt::NoButton : which;
        QMouseEvent event(type, at, button->mapToGlobal(at), changed, held, Qt::NoModifier);
        QCoreApplication::sendEvent(button, &event);
    }
    void Move(const QPointF& at) { Mouse(QEvent::MouseMove, at); }
    void Press(const QPointF& at = inside) { Mouse(QEvent::MouseButtonPress, at); }
    void Release(const QPointF& at = inside) { Mouse(QEvent::MouseButtonRelease, at); }
    void Leave() {
        QEvent event(QEvent::Leave);
        QCoreApplication::sendEvent(button, &event);
    }
    void Focus() {
        button->SetFocus();
        QCoreApplication::processEvents();
    }

    QWidget window;
    QPointer<dcButton> button;
    QPointer<dcButton> other;
    std::vector<std::string> events;
    Qt::MouseButtons held;
};

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

class ButtonPopup : public ButtonInput {
  protected:
    ButtonPopup() : menu(nullptr, QStringLiteral("MenuTest"), QStringLiteral("Test")) {
        menu.AddEntry(QStringLiteral("MenuOne"), QStringLiteral("One"));
        menu.AddEntry(QStringLiteral("MenuTwo"), QStringLiteral("Two"));
    }

    // Runs `then` once the menu is on the screen.
    void WhenOpen(std::function<void()> then) {
        auto* poll = new QTimer(&window);
        QObject::connect(poll, &QTimer::timeout, [this, poll, then = std::move(then)] {
            if (!menu.IsOpen())
                return;
            poll->stop();
            poll->deleteLater();
            ++opened;
            place = menu.Popup()->pos();
            then();
        });
        poll->start(1);
    }
    void PointerAt(const QPointF& at) { QCursor::setPos(button->mapToGlobal(at.toPoint())); }

    forms::Menu menu;
    QPoint place;
    int opened = 0;
};

TEST_F(ButtonPopup, OpensOnThePressInPlaceOfAllClickEvents) {
    button->SetPopupMenu(&menu, 0, 0, QStringLiteral("MenuTwo"));
    PointerAt(QPointF(300, 150));
    int stateWhileOpen = -1;
    WhenOpen([&] {
        stateWhileOpen = button->CurrentState();
        menu.Popup()->close();
    });
    Press();
    EXPECT_EQ(opened, 1);
    EXPECT_EQ(stateWhileOpen, DownState);
    EXPECT_EQ(place, button->mapToGlobal(QPoint(0, 30)));
    EXPECT_EQ(menu.Popup()->defaultAction()->objectName(), QStringLiteral("MenuTwo"));
    EXPECT_EQ(button->CurrentState(), NormalState);
    EXPECT_TRUE(Taken().empty());

    Focus();
    WhenOpen([&] { menu.Popup()->close(); });
    QTest::keyClick(button, Qt::Key_Space);
    EXPECT_EQ(opened, 2);
    EXPECT_THAT(Taken(), ElementsAre("KeyDown", "KeyPress"));
    WhenOpen([&] { menu.Popup()->close(); });
    button->AccessKeyPress('x');
    EXPECT_EQ(opened, 3);
    button->AccessKeyPress(27);
    EXPECT_EQ(opened, 3);

    button->UnsetPopupMenu();
    Press();
    Release();
    EXPECT_THAT(Taken(), ElementsAre("MouseDown", "MouseUp", "Click"));
}

TEST_F(ButtonPopup, StandsWhereTheAlignmentSays) {
    window.move(200, 200);
    PointerAt(QPointF(300, 150));
    const QSize size = menu.Popup()->sizeHint();
    const int w = size.width();
    const int h = size.height();
    const std::array places = {QPoint(0, 30),   QPoint(-w, 0), QPoint(-w, 30), QPoint(100, 0),
                               QPoint(100, 30), QPoint(0, -h), QPoint(-w, -h), QPoint(100, -h)};
    for (int alignment = 0; alignment < 8; ++alignment) {
        button->SetPopupMenu(&menu, alignment);
        WhenOpen([&] { menu.Popup()->close(); });
        Press();
        Release();
        EXPECT_EQ(place, button->mapToGlobal(places.at(size_t(alignment)))) << alignment;
    }
    button->SetPopupMenu(&menu, 8);
    Press();
    Release();
    EXPECT_FALSE(menu.IsOpen());
    button->SetPopupMenu(nullptr, 0);
    EXPECT_EQ(opened, 8);
}

TEST_F(ButtonPopup, ThePressThatClosesItDoesNotOpenItAgain) {
    button->SetPopupMenu(&menu, 0);
    PointerAt(inside);
    WhenOpen([&] { menu.Popup()->close(); });
    Press();
    EXPECT_EQ(opened, 1);
    EXPECT_EQ(button->CurrentState(), HotState);
    Press();
    Release();
    EXPECT_FALSE(menu.IsOpen());
    // A later one does.
    WhenOpen([&] { menu.Popup()->close(); });
    Press();
    EXPECT_EQ(opened, 2);
    Release();
    // And so does one after the pointer has moved, or after a while.
    Move(inside);
    WhenOpen([&] { menu.Popup()->close(); });
    Press();
    EXPECT_EQ(opened, 3);
    QTest::qWait(300);
    WhenOpen([&] { menu.Popup()->close(); });
    Press();
    EXPECT_EQ(opened, 4);
}

TEST_F(ButtonPopup, MayDestroyItsButtonOrBeDestroyed) {
    button->SetPopupMenu(&menu, 0);
    WhenOpen([&] {
        delete button;
        menu.Popup()->close();
    });
    QMouseEvent press(QEvent::MouseButtonPress, inside, button->mapToGlobal(inside), Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    QCoreApplication::sendEvent(button.data(), &press);
    EXPECT_TRUE(button.isNull());

    auto brief = std::make_unique<forms::Menu>(nullptr, QStringLiteral("MenuBrief"), QString());
    other->SetPopupMenu(brief.get(), 0);
    brief.reset();
    other->AccessKeyPress('x');
    EXPECT_NE(other->CurrentState(), DownState);
}

} // namespace
} // namespace controls
