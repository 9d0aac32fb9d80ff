#include "controls/alpha_image.h"

#include <QMouseEvent>
#include <QPainter>

namespace controls {

namespace {

constexpr int hoverWhite = 56; // of 255

QImage Brightened(const QImage& image) {
    QImage bright = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&bright);
    painter.setCompositionMode(QPainter::CompositionMode_SourceAtop);
    painter.fillRect(bright.rect(), QColor(255, 255, 255, hoverWhite));
    return bright;
}

} // namespace

AlphaImage::AlphaImage(QWidget* owner, const QString& name) : QWidget(owner) {
    setObjectName(name);
    setFocusPolicy(Qt::NoFocus);
    // A button that is switched off must not let a press fall through to the bar under it.
    setAttribute(Qt::WA_NoMousePropagation);
}

void AlphaImage::SetPicture(const draw::Picture& picture) {
    picture_ = picture;
    bright_ = picture.IsEmpty() ? QImage() : Brightened(picture.Image());
    update();
}

void AlphaImage::SetToolTipText(const QString& text) {
    setToolTip(text);
    setAccessibleName(text);
}

void AlphaImage::SetEnabled(bool enabled) {
    enabled_ = enabled;
    setEnabled(enabled);
    SetInside(underMouse());
}

void AlphaImage::ApplyHover(int hover, int redraw) {
    applied_ = hover;
    if (redraw != 0 || hover == 0)
        update();
}

void AlphaImage::RenderParallelogram(QPainter& context, const Parallelogram& points) const {
    const QImage& image = ShownImage();
    if (image.isNull())
        return;
    const QPointF across = QPointF(points[1] - points[0]) / image.width();
    const QPointF down = QPointF(points[2] - points[0]) / image.height();
    const QTransform transform(across.x(), across.y(), down.x(), down.y(), points[0].x(), points[0].y());
    if (!transform.isInvertible())
        return;
    context.save();
    // Smooth inside, hard at the edges: a blend with the colour behind would spoil a see-through background.
    context.setRenderHint(QPainter::SmoothPixmapTransform);
    context.setTransform(transform, true);
    context.drawImage(QPoint(0, 0), image);
    context.restore();
}

void AlphaImage::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    bool cancel = false;
    Q_EMIT PrePaint(&painter, &cancel);
    if (!cancel)
        painter.drawImage(QPoint(0, 0), ShownImage());
}

// A button that is switched off does not answer to the pointer.
void AlphaImage::SetInside(bool inside) {
    const bool answers = inside && enabled_;
    if (answers == inside_)
        return;
    inside_ = answers;
    if (answers)
        Q_EMIT MouseEnter();
    else
        Q_EMIT MouseLeave();
}

void AlphaImage::enterEvent(QEnterEvent*) { SetInside(true); }

void AlphaImage::leaveEvent(QEvent*) { SetInside(false); }

void AlphaImage::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return;
    pressed_ = true;
    Q_EMIT MouseDown();
}

void AlphaImage::mouseMoveEvent(QMouseEvent* event) {
    // The toolkit reports no leaving while a button is held.
    if (pressed_)
        SetInside(rect().contains(event->position().toPoint()));
}

void AlphaImage::mouseReleaseEvent(QMouseEvent* event) {
    const bool up = event->button() == Qt::LeftButton && pressed_ && rect().contains(event->position().toPoint());
    if (event->button() == Qt::LeftButton)
        pressed_ = false;
    if (up)
        Q_EMIT MouseUp();
    else
        Q_EMIT MouseDropped();
}

void AlphaImage::mouseDoubleClickEvent(QMouseEvent* event) { mousePressEvent(event); }

} // namespace controls
