#include "forms/picture_box.h"

#include "draw/system_colours.h"
#include "forms/accessible.h"

#include <QPaintEvent>
#include <QPainter>

namespace forms {

PictureBox::PictureBox(QWidget* container, const QString& name) : Control(container, name) {
    InstallAccessibility();
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::NoFocus);
}

void PictureBox::SetBackColor(base::Colour colour) {
    const bool changed = colour != backColor_;
    backColor_ = colour;
    Cls();
    if (changed)
        Q_EMIT BackColorChanged();
}

void PictureBox::SetForeColor(base::Colour colour) { foreColor_ = colour; }

void PictureBox::SetPicture(const draw::Picture& picture) {
    picture_ = picture;
    Cls();
}

void PictureBox::Cls() {
    surface_ = draw::Surface(size());
    surface_.Cls(draw::OleTranslateColor(backColor_));
    if (!picture_.IsEmpty())
        surface_.DrawPicture(picture_, 0, 0);
    update();
}

void PictureBox::DrawBox(int left, int top, int right, int bottom) {
    surface_.FrameRect(QRect(QPoint(left, top), QPoint(right, bottom)), draw::OleTranslateColor(foreColor_));
    update();
}

void PictureBox::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    painter.drawImage(event->rect(), surface_.Image(), event->rect());
}

void PictureBox::resizeEvent(QResizeEvent* event) {
    Control::resizeEvent(event);
    Cls();
}

} // namespace forms
