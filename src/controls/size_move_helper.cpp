#include "controls/size_move_helper.h"

#include "forms/screen.h"

#include <array>

namespace controls {

namespace {

constexpr std::array registeredMessages = {WmEnterSizeMove, WmExitSizeMove, WmDestroy, WmMoving,
                                           WmSizing,        WmActivate,     WmSize};

} // namespace

cSizeMoveHelper::cSizeMoveHelper(QObject* parent) : QObject(parent) {}

cSizeMoveHelper::~cSizeMoveHelper() {
    Detach();
    RestoreDragSetting();
}

void cSizeMoveHelper::SetNoFullDrag(bool on) {
    noFullDrag_ = on;
    if (!on)
        RestoreDragSetting();
    else if (windowActive_)
        ApplyDragSetting();
}

void cSizeMoveHelper::Attach(forms::Form* form) {
    Detach();
    form_ = form;
    if (form == nullptr)
        return;
    for (const SizeMoveMessage message : registeredMessages)
        Register(form, message);
}

void cSizeMoveHelper::Detach() {
    for (const QMetaObject::Connection& registration : registrations_)
        disconnect(registration);
    registrations_.clear();
    form_ = nullptr;
}

// Each message reaches the helper as a signal of the form; some as two.
void cSizeMoveHelper::Register(forms::Form* form, SizeMoveMessage message) {
    using forms::Form;
    const auto plain = [this, form, message] { ISubClass_WindowProc(form, message, 0, nullptr); };
    const auto withRectangle = [this, form, message](QRect* proposed) {
        ISubClass_WindowProc(form, message, 0, proposed);
    };
    switch (message) {
    case WmEnterSizeMove:
        registrations_ << connect(form, &Form::EnterSizeMove, this, plain);
        break;
    case WmExitSizeMove:
        registrations_ << connect(form, &Form::ExitSizeMove, this, plain);
        break;
    case WmDestroy:
        registrations_ << connect(form, &Form::Unloaded, this, plain);
        break;
    case WmMoving:
        registrations_ << connect(form, &Form::Moving, this, withRectangle);
        break;
    case WmSizing:
        registrations_ << connect(form, &Form::Sizing, this, withRectangle);
        break;
    case WmActivate:
        registrations_ << connect(form, &Form::Activated, this, [this, form](bool byMouse) {
            ISubClass_WindowProc(form, WmActivate, byMouse ? WaClickActive : WaActive, nullptr);
        });
        registrations_ << connect(form, &Form::Deactivated, this, plain);
        break;
    case WmSize:
        registrations_ << connect(form, &Form::Sized, this, plain);
        break;
    }
}

int cSizeMoveHelper::ISubClass_WindowProc(forms::Form* form, int message, int wParam, QRect* proposed) {
    switch (message) {
    case WmEnterSizeMove:
        inSizeMove_ = true;
        Q_EMIT EnterSizeMove();
        break;
    case WmExitSizeMove: {
        const QPointer<cSizeMoveHelper> alive(this);
        Q_EMIT ExitSizeMove();
        if (alive)
            inSizeMove_ = false;
        break;
    }
    case WmMoving:
    case WmSizing:
        if (proposed != nullptr)
            Propose(message, *proposed);
        break;
    case WmSize:
        if (!inSizeMove_ && form != nullptr) {
            QRect reported = form->WindowRect();
            Propose(WmSizing, reported);
        }
        break;
    case WmActivate:
        if (wParam != WaInactive) {
            ApplyDragSetting();
            windowActive_ = true;
            Q_EMIT Activate(wParam == WaClickActive);
        } else {
            RestoreDragSetting();
            windowActive_ = false;
            Q_EMIT Deactivate();
        }
        break;
    case WmDestroy:
        RestoreDragSetting();
        Detach();
        break;
    default:
        break;
    }
    return 0;
}

void cSizeMoveHelper::Propose(int message, QRect& rectangle) {
    int left = rectangle.x();
    int top = rectangle.y();
    int width = rectangle.width();
    int height = rectangle.height();
    if (message == WmMoving)
        Q_EMIT Moving(left, top, width, height);
    else
        Q_EMIT Sizing(left, top, width, height);
    rectangle = QRect(left, top, width, height);
}

void cSizeMoveHelper::ApplyDragSetting() {
    if (!noFullDrag_ || changedFullDrag_ || !forms::DragFullWindows())
        return;
    forms::SetDragFullWindows(false);
    changedFullDrag_ = true;
}

void cSizeMoveHelper::RestoreDragSetting() {
    if (!changedFullDrag_)
        return;
    forms::SetDragFullWindows(true);
    changedFullDrag_ = false;
}

} // namespace controls
