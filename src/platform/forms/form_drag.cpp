#include "forms/form_drag.h"

#include "forms/form.h"
#include "forms/x11.h"

#include <QCursor>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWindow>

namespace forms {

namespace {

constexpr int pollMilliseconds = 50;

} // namespace

FormDrag::FormDrag(Form& form) : form_(form) {
    buttonPoll_.setInterval(pollMilliseconds);
    connect(&buttonPoll_, &QTimer::timeout, this, &FormDrag::EndWithButton);
}

void FormDrag::Begin(int hitTest) {
    if (active_ || (hitTest != HtCaption && hitTest != HtBottomRight))
        return;
    active_ = true;
    hitTest_ = hitTest;
    startPointer_ = QCursor::pos();
    startRect_ = form_.WindowRect();
    qApp->installEventFilter(this);
    Q_EMIT form_.EnterSizeMove();
    handedOver_ = active_ && HandOver();
    if (handedOver_ && XConnection() != nullptr)
        buttonPoll_.start();
}

bool FormDrag::HandOver() {
    QWindow* window = form_.windowHandle();
    if (window == nullptr)
        return false;
    return hitTest_ == HtCaption ? window->startSystemMove()
                                 : window->startSystemResize(Qt::RightEdge | Qt::BottomEdge);
}

void FormDrag::End() {
    if (!active_)
        return;
    active_ = false;
    handedOver_ = false;
    buttonPoll_.stop();
    qApp->removeEventFilter(this);
    Q_EMIT form_.ExitSizeMove();
}

void FormDrag::EndWithButton() {
    xcb_connection_t* connection = XConnection();
    const auto pointer =
        Owned(xcb_query_pointer_reply(connection, xcb_query_pointer(connection, XRoot(connection)), nullptr));
    if (!pointer || (pointer->mask & XCB_BUTTON_MASK_1) == 0)
        End();
}

void FormDrag::Told(int change) {
    if (!handedOver_ || change != hitTest_)
        return;
    QRect proposed = form_.WindowRect();
    if (hitTest_ == HtCaption)
        Q_EMIT form_.Moving(&proposed);
    else
        Q_EMIT form_.Sizing(&proposed);
}

void FormDrag::Follow(const QPoint& pointer) {
    const QPoint way = pointer - startPointer_;
    QRect proposed = startRect_;
    if (hitTest_ == HtCaption) {
        proposed.translate(way);
        Q_EMIT form_.Moving(&proposed);
    } else {
        proposed.setSize(QSize(qMax(1, proposed.width() + way.x()), qMax(1, proposed.height() + way.y())));
        Q_EMIT form_.Sizing(&proposed);
    }
    if (active_ && !form_.IsUnloaded())
        form_.SetWindowRect(proposed);
}

bool FormDrag::eventFilter(QObject* watched, QEvent* event) {
    // The window objects must see their events, or the toolkit believes the button to be down for ever.
    if (!watched->isWidgetType())
        return false;
    switch (event->type()) {
    case QEvent::MouseMove: {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        if (!mouse->buttons().testFlag(Qt::LeftButton))
            End();
        else if (!handedOver_)
            Follow(mouse->globalPosition().toPoint());
        return true;
    }
    case QEvent::MouseButtonRelease:
        if (static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton)
            End();
        return true;
    case QEvent::KeyPress:
        if (!handedOver_ && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
            form_.SetWindowRect(startRect_);
            End();
            return true;
        }
        return false;
    default:
        return false;
    }
}

} // namespace forms
