#include "suite/alpha_image.h"

#include "forms/late_bound.h"
#include "suite/accessible_controls.h"
#include "suite/paint_tools.h"

#include <QKeyEvent>
#include <QPainter>
#include <QPointer>

namespace suite {

namespace {

// What lies behind a picture.
QColor Ground(const QWidget& picture) {
    const QVariant back =
        picture.parentWidget() == nullptr ? QVariant() : forms::GetProperty(picture.parentWidget(), "BackColor");
    return back.canConvert<base::Colour>() ? ToQColor(back.value<base::Colour>())
                                           : picture.palette().color(QPalette::Window);
}

} // namespace

AlphaImgCtl::AlphaImgCtl(QWidget* container, const QString& name) : Control(container, name) {
    InstallAccessibleControls();
    setFocusPolicy(Qt::NoFocus);
}

void AlphaImgCtl::SetPicture(const draw::Picture& picture) {
    if (picture_ == picture)
        return;
    picture_ = picture;
    update();
}

void AlphaImgCtl::SetOpacity(int percent) {
    const int wanted = qBound(0, percent, 100);
    if (opacity_ == wanted)
        return;
    opacity_ = wanted;
    update();
}

void AlphaImgCtl::SetClickable(bool clickable) {
    clickable_ = clickable;
    setAttribute(Qt::WA_Hover, clickable);
    setFocusPolicy(clickable ? Qt::TabFocus : Qt::NoFocus);
    setCursor(clickable ? Qt::PointingHandCursor : Qt::ArrowCursor);
}

void AlphaImgCtl::Press() {
    const QPointer<AlphaImgCtl> alive(this);
    Q_EMIT MouseUp(forms::LeftButton, 0, width() / 2.0, height() / 2.0);
    if (alive)
        Q_EMIT Click();
}

void AlphaImgCtl::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    if (!picture_.IsEmpty()) {
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.setOpacity(opacity_ / 100.0);
        // As large as the control allows without changing the picture's shape.
        const QSize shown = picture_.Image().size().scaled(size(), Qt::KeepAspectRatio);
        const QRect place(QPoint((width() - shown.width()) / 2, (height() - shown.height()) / 2), shown);
        painter.drawImage(place, picture_.Image());
        if (clickable_ && underMouse() && isEnabled()) {
            // A lighter picture, and nothing where it is transparent.
            painter.setCompositionMode(QPainter::CompositionMode_Plus);
            painter.setOpacity(opacity_ / 400.0);
            painter.drawImage(place, picture_.Image());
            painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        }
        painter.setOpacity(1);
    }
    if (hasFocus())
        DrawFocusRing(painter, rect(), ReadableOn(Ground(*this), palette().color(QPalette::Highlight)));
}

void AlphaImgCtl::keyPressEvent(QKeyEvent* event) {
    const bool press = event->key() == Qt::Key_Space || event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (clickable_ && press && !event->isAutoRepeat()) {
        Press();
        return;
    }
    Control::keyPressEvent(event);
}

bool AlphaImgCtl::event(QEvent* event) {
    const bool focus = event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut;
    if (focus || event->type() == QEvent::HoverEnter || event->type() == QEvent::HoverLeave)
        update();
    return Control::event(event);
}

} // namespace suite
