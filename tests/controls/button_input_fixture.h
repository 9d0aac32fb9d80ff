// A button beside another one in an active window, driven by events as the system sends them; records what it raises.
#pragma once

#include "controls/dc_button.h"

#include <QCoreApplication>
#include <QMouseEvent>
#include <QTest>
#include <gmock/gmock.h>

namespace controls {

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

} // namespace controls
