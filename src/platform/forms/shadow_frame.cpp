#include "forms/shadow_frame.h"

#include "forms/compositor.h"
#include "forms/screen.h"
#include "forms/x11.h"

#include <QPainter>
#include <xcb/shape.h>

namespace forms {

void ShadowFrame::Set(int extent, Form::ShadowPainter paint) {
    wanted_ = qMax(0, extent);
    paint_ = std::move(paint);
}

int ShadowFrame::ExtentFor(const QRect& windowRect) const {
    if (wanted_ == 0 || form_.isMaximized() || !ScreenComposites())
        return 0;
    return windowRect.contains(WorkArea(windowRect)) ? 0 : wanted_;
}

void ShadowFrame::Paint(QPainter& painter) const {
    if (current_ > 0 && paint_)
        paint_(painter, form_.rect(), form_.rect().adjusted(current_, current_, -current_, -current_));
}

void ShadowFrame::ApplyInputShape() const {
    xcb_connection_t* connection = XConnection();
    if (connection == nullptr || !form_.testAttribute(Qt::WA_WState_Created))
        return;
    const xcb_rectangle_t inner = {int16_t(current_), int16_t(current_), uint16_t(form_.width() - 2 * current_),
                                   uint16_t(form_.height() - 2 * current_)};
    xcb_shape_rectangles(connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, XCB_CLIP_ORDERING_UNSORTED,
                         xcb_window_t(form_.winId()), 0, 0, 1, &inner);
}

} // namespace forms
