// A window of the program: borderless, drawn, measured in twips. A form is made by the collection of forms, loaded once
// (Load) before it is first shown, and ends by Unload, which hides it at once and destroys it only when no handler is
// left on the stack. Repaints are held to one in 16 ms.
#pragma once

#include "base/colour.h"
#include "draw/surface.h"

#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <memory>

namespace forms {

class FormDrag;
class ColourKeyOverlay;
class ShadowFrame;

enum WindowStates { NormalWindow = 0, MinimisedWindow = 1, MaximisedWindow = 2 };

// Where a left button going down in the frame would have hit (WM_NCLBUTTONDOWN, 161).
enum HitTest { HtCaption = 2, HtBottomRight = 17 };

class Form : public QWidget {
    Q_OBJECT
    Q_PROPERTY(QString Name READ Name)
    Q_PROPERTY(QString Caption READ Caption WRITE SetCaption)
    Q_PROPERTY(double Left READ Left WRITE SetLeft)
    Q_PROPERTY(double Top READ Top WRITE SetTop)
    Q_PROPERTY(double Width READ Width WRITE SetWidth)
    Q_PROPERTY(double Height READ Height WRITE SetHeight)
    Q_PROPERTY(base::Colour BackColor READ BackColor WRITE SetBackColor)
    Q_PROPERTY(base::Colour ForeColor READ ForeColor WRITE SetForeColor)
    Q_PROPERTY(bool AutoRedraw READ AutoRedraw WRITE SetAutoRedraw)
    Q_PROPERTY(int ScaleMode READ ScaleMode WRITE SetScaleMode)
    Q_PROPERTY(int WindowState READ WindowState WRITE SetWindowState)

  public:
    // `width` and `height` are the design size in twips.
    Form(const QString& name, double width, double height);
    ~Form() override;

    QString Name() const { return objectName(); }
    QString Caption() const { return caption_; }
    void SetCaption(const QString& caption);

    // Place and size on the screen in twips; a shadow around the window does not count.
    double Left() const;
    double Top() const;
    double Width() const;
    double Height() const;
    void SetLeft(double twips);
    void SetTop(double twips);
    void SetWidth(double twips);
    void SetHeight(double twips);
    void Move(double left, double top, double width, double height);
    // The same in pixels.
    QRect WindowRect() const;
    void SetWindowRect(const QRect& pixels);

    // Moves a window whose title bar lies on no monitor to where it can be reached again.
    void BringIntoReach();
    // The least and the greatest size in pixels, told to the window manager so that its own sizing stays within them. A
    // width or height of 0 has no limit.
    void SetSizeLimits(const QSize& least, const QSize& greatest);

    int WindowState() const;
    void SetWindowState(int state);
    bool AutoRedraw() const { return autoRedraw_; }
    void SetAutoRedraw(bool on) { autoRedraw_ = on; }
    int ScaleMode() const { return scaleMode_; }
    void SetScaleMode(int mode) { scaleMode_ = mode; }
    base::Colour BackColor() const { return backColor_; }
    void SetBackColor(base::Colour colour);
    base::Colour ForeColor() const { return foreColor_; }
    void SetForeColor(base::Colour colour) { foreColor_ = colour; }

    // The area that holds the controls; its size is the window's size.
    QWidget* Client() const { return client_; }
    // All controls and components in order of creation.
    const QList<QObject*>& Controls() const { return controls_; }
    // By name, exactly; null if there is none.
    QObject* FindControl(const QString& name) const;
    template <typename T> T* Find(const QString& name) const { return qobject_cast<T*>(FindControl(name)); }

    // Fills the window's own surface with the back colour; an outline on it in the fore colour, corners in pixels, both
    // included, parts outside cut off. They show after Refresh.
    void Cls();
    void DrawBox(int left, int top, int right, int bottom);
    void Refresh();
    draw::Surface& hdc() { return surface_; }
    // Width of a text in the window's font, in twips.
    double TextWidth(const QString& text) const;

    // Loads the form if that has not happened, and shows it, not modal; or loads it without showing it, or hides it.
    void Show();
    void Hide();
    void SetFocus();
    // Runs Load once; false if the form was unloaded meanwhile.
    bool EnsureLoaded();
    bool IsLoaded() const { return loadState_ == LoadState::Loaded; }
    // Asks QueryUnload, unless `always`, and ends the form; true if it is ended (now or already).
    bool Unload(bool always = false);
    bool IsUnloaded() const { return loadState_ == LoadState::Unloaded; }
    // The unload is certain and under way.
    bool IsUnloading() const { return unloading_; }

    // Hands a drag to the window's move (HtCaption) or its sizing by the corner (HtBottomRight). Returns at once; the
    // drag ends with the mouse button; Escape takes it back. The window manager does it where there is one that can: a
    // receiver's change of the proposed rectangle counts for nothing then.
    void NcLButtonDown(int hitTest);
    bool InDrag() const;

    // Pixels of exactly this colour show what lies behind the window.
    void SetColourKey(base::Colour key);
    // In `area`, pixels of the window, the colour key cuts nothing out: it shows what lies behind where the screen
    // composites, and `ground` elsewhere, and takes clicks. Until the next call.
    void HoldColourKey(const QRegion& area, base::Colour ground);
    // What the colour key has cut out at the last paint, in pixels of the window.
    QRegion KeyedRegion() const;
    // A shadow of `extent` pixels around the window, drawn by `paint` on a transparent margin; extent 0 takes it off.
    // Works only while the screen composites; otherwise nothing changes.
    using ShadowPainter = std::function<void(QPainter&, const QRect& outer, const QRect& window)>;
    void SetShadow(int extent, ShadowPainter paint);

  Q_SIGNALS:
    // Raised in this order: Loading before the form's own Load; Resized after each change of size and before the form's
    // own Resize; Activated, Deactivated; Unloaded once, when the form has been taken out.
    void Loading();
    void Resized();
    void Activated(bool byMouse);
    void Deactivated();
    void Unloaded();
    // The size and move messages. A receiver may change the proposed rectangle (pixels), directly connected only.
    void EnterSizeMove();
    void ExitSizeMove();
    void Moving(QRect* proposed);
    void Sizing(QRect* proposed);
    void Sized();

  protected:
    // The form's own handlers. None of them may let an exception out.
    virtual void Load() {}
    virtual void Resize() {}
    virtual void Activate() {}
    // False refuses the unload.
    virtual bool QueryUnload() { return true; }
    // Runs when the unload is certain, before the form is hidden.
    virtual void Closing() {}

    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    friend class Control;
    friend class Component;
    friend class FormDrag;
    friend class ShadowFrame;
    friend class Forms;
    class ClientArea;
    enum class LoadState { Made, Loading, Loaded, Unloaded };

    void AddControl(QObject* control);
    void RemoveControl(QObject* control);
    void LayOutClient();
    void TellSizeLimits();
    bool IsMinimised() const;
    void FlushUpdates();
    void ActivationChanged(bool active);

    QWidget* client_;
    QList<QObject*> controls_;
    QString caption_;
    draw::Surface surface_;
    base::Colour backColor_{0x8000000FU};
    base::Colour foreColor_{0x80000012U};
    QSize leastSize_;
    QSize greatestSize_;
    int scaleMode_ = 1;
    bool autoRedraw_ = false;
    bool awaitsSize_ = false; // the compositor has been asked for the normal state and will tell the size
    LoadState loadState_ = LoadState::Made;
    bool unloading_ = false;
    bool active_ = false;
    QElapsedTimer sinceUpdate_;
    QTimer laterUpdate_;
    std::unique_ptr<FormDrag> drag_;
    std::unique_ptr<ShadowFrame> shadow_;
    ColourKeyOverlay* colourKey_ = nullptr;
};

} // namespace forms
