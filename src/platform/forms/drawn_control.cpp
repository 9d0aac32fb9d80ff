#include "forms/drawn_control.h"

#include "base/yield.h"

#include <QEvent>
#include <QPaintEvent>
#include <QPainter>

namespace forms {

DrawnControl::DrawnControl(QWidget* container, const QString& name) : Control(container, name) {
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void DrawnControl::MarkDirty() {
    dirty_ = true;
    update();
}

draw::Surface& DrawnControl::UpToDateSurface() {
    if (surface_.Size() != size()) {
        surface_ = draw::Surface(size());
        dirty_ = true;
    }
    if (dirty_) {
        dirty_ = false;
        const base::NoYieldScope noYield;
        Draw(surface_);
    }
    return surface_;
}

void DrawnControl::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    painter.drawImage(event->rect(), UpToDateSurface().Image(), event->rect());
}

void DrawnControl::resizeEvent(QResizeEvent* event) {
    Control::resizeEvent(event);
    MarkDirty();
}

void DrawnControl::changeEvent(QEvent* event) {
    Control::changeEvent(event);
    if (event->type() == QEvent::EnabledChange || event->type() == QEvent::FontChange)
        MarkDirty();
}

} // namespace forms
