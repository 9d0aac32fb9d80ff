// Turns a window's size and move messages into events, and switches "show window contents while dragging" off while the
// window is active, if asked to. Whoever makes it owns it; it lets go of the window when either of them ends.
#pragma once

#include "forms/form.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QRect>

namespace controls {

// The messages that the helper is registered for, in the order of registration.
enum SizeMoveMessage {
    WmEnterSizeMove = 561,
    WmExitSizeMove = 562,
    WmDestroy = 2,
    WmMoving = 534,
    WmSizing = 532,
    WmActivate = 6,
    WmSize = 5
};

// What WmActivate carries.
enum ActivationKind { WaInactive = 0, WaActive = 1, WaClickActive = 2 };

class cSizeMoveHelper : public QObject {
    Q_OBJECT

  public:
    explicit cSizeMoveHelper(QObject* parent = nullptr);
    ~cSizeMoveHelper() override;

    // The option: no window contents while dragging, for as long as the window is active.
    bool NoFullDrag() const { return noFullDrag_; }
    void SetNoFullDrag(bool on);
    // Whether a window is attached.
    bool Active() const { return form_ != nullptr; }
    // This helper turned the setting off and will put it back.
    bool ChangedFullDrag() const { return changedFullDrag_; }
    bool InSizeMove() const { return inSizeMove_; }

    // Lets go of any earlier window. Null attaches nothing.
    void Attach(forms::Form* form);
    void Detach();

    // The hook asks where the helper stands: 1, before the window's own answer to a message.
    int ISubClass_MsgResponse() const { return 1; }
    // One message. `proposed` is the rectangle in pixels of WmMoving and WmSizing, which is changed in place, and may
    // be null for the others. Always 0: nothing is swallowed.
    int ISubClass_WindowProc(forms::Form* form, int message, int wParam, QRect* proposed);

  Q_SIGNALS:
    void EnterSizeMove();
    void ExitSizeMove();
    void Activate(bool byMouse);
    void Deactivate();
    // Pixels on the screen. A directly connected receiver may change all four.
    void Moving(int& left, int& top, int& width, int& height);
    // Outside a size-or-move loop it only reports: changes have no effect.
    void Sizing(int& left, int& top, int& width, int& height);

  private:
    void Register(forms::Form* form, SizeMoveMessage message);
    void Propose(int message, QRect& rectangle);
    void ApplyDragSetting();
    void RestoreDragSetting();

    QPointer<forms::Form> form_;
    QList<QMetaObject::Connection> registrations_;
    bool changedFullDrag_ = false;
    bool noFullDrag_ = false;
    bool windowActive_ = false;
    bool inSizeMove_ = false;
};

} // namespace controls
