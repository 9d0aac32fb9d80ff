#include "forms/form_drag.h"

#include "forms/form.h"

#include <QCursor>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWindow>

namespace forms {

FormDrag::FormDrag(Form& form) : form_(form) {}

void FormDrag::Begin(int hitTest) {
    if (active_ || (hitTest != HtCaption && hitTest != HtBottomRight))
        return;
    if (QGuiApplication::platformName().startsWith(QLatin1String("wayland"))) {
        QWindow* window = form_.windowHandle();
        if (window != nullptr && hitTest == HtCaption)
            window->startSystemMove();
        else if (window != nullptr)
            window->startSystemResize(Qt::RightEdge | Qt::BottomEdge);
        return;
    }
    active_ = true;
    hitTest_ = hitTest;
    startPointer_ = QCursor::pos();
    startRect_ = form_.WindowRect();
    qApp->installEventFilter(this);
    Q_EMIT form_.EnterSizeMove();
}

void FormDrag::End() {
    if (!active_)
        return;
    active_ = false;
    qApp->removeEventFilter(this);
    Q_EMIT form_.ExitSizeMove();
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
        if (mouse->buttons().testFlag(Qt::LeftButton))
            Follow(mouse->globalPosition().toPoint());
        else
            End();
        return true;
    }
    case QEvent::MouseButtonRelease:
        if (static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton)
            End();
        return true;
    case QEvent::KeyPress:
        if (static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
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
