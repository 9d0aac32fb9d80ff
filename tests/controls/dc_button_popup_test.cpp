// The button that opens a popup: what takes the place of its click events, and where the popup stands.
#include "button_input_fixture.h"

#include <QCursor>
#include <QMenu>
#include <QTimer>

namespace controls {
namespace {

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

// Some desktops keep the release of the press that closed the menu to themselves.
TEST_F(ButtonPopup, IsUpAgainAfterAClickOnItClosedTheMenu) {
    button->SetPopupMenu(&menu, 0);
    PointerAt(inside);
    WhenOpen([&] {
        QMenu* popup = menu.Popup();
        QTest::mousePress(popup->windowHandle(), Qt::LeftButton, {},
                          popup->mapFromGlobal(button->mapToGlobal(inside.toPoint())));
    });
    Press();
    EXPECT_EQ(opened, 1);
    EXPECT_FALSE(menu.IsOpen());
    EXPECT_EQ(QGuiApplication::mouseButtons(), Qt::LeftButton);
    EXPECT_EQ(button->CurrentState(), HotState);
    QTest::mouseRelease(window.windowHandle(), Qt::LeftButton, {}, QPoint(300, 150));
    EXPECT_NE(button->CurrentState(), DownState);
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
