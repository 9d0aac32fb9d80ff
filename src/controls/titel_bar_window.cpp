// What the title bar does for its window: dragging, tracking the pointer, double click, maximise and restore, the
// keyboard.
#include "controls/titel_bar.h"

#include "base/numbers.h"
#include "base/yield.h"
#include "forms/desktop_watch.h"
#include "forms/form.h"
#include "forms/screen.h"

#include <QApplication>
#include <QCursor>
#include <QElapsedTimer>
#include <QMouseEvent>

namespace controls {

namespace {

constexpr int settlePollMilliseconds = 20;
constexpr int settledMilliseconds = 120;
constexpr int longestSettleMilliseconds = 1000;

// A window manager tells the state and the place of a window in either order, and gives a maximised window its normal
// place back some time after it was asked to. Waits until the window has come to rest in the normal state.
void AwaitNormalPlace(const QPointer<forms::Form>& form) {
    QElapsedTimer whole;
    QElapsedTimer atRest;
    whole.start();
    atRest.start();
    QRect place = form->WindowRect();
    while (atRest.elapsed() < settledMilliseconds && whole.elapsed() < longestSettleMilliseconds) {
        base::YieldBlocking(settlePollMilliseconds);
        if (!form || form->IsUnloaded())
            return;
        const bool maximised = form->WindowState() == forms::MaximisedWindow;
        if (maximised)
            form->SetWindowState(forms::NormalWindow);
        if (maximised || form->WindowRect() != place)
            atRest.start();
        place = form->WindowRect();
    }
}

} // namespace

void TitelBar::WatchParent() {
    connect(this, &forms::Control::GotFocus, this, [this] { hasFocus_ = true; });
    connect(this, &forms::Control::LostFocus, this, [this] { hasFocus_ = false; });
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget* before, QWidget* now) {
        if (now != this)
            return;
        if (before != nullptr && before->window() == window())
            focusBefore_ = before;
        // The toolkit gives the bar the keyboard also for a press on a caption button.
        if (QGuiApplication::mouseButtons() != Qt::NoButton && childAt(mapFromGlobal(QCursor::pos())) != nullptr)
            ReturnKeyboard();
    });
    forms::Form* parent = ParentForm();
    if (parent == nullptr)
        return;
    // The window's width may stay while its state changes, which is no resize of the bar.
    connect(parent, &forms::Form::Resized, this, &TitelBar::AnswerMaximised);
    connect(&forms::SharedDesktopWatch(), &forms::DesktopWatch::MonitorsChanged, this, &TitelBar::FollowMonitors);
    connect(parent, &forms::Form::ExitSizeMove, this, &TitelBar::ReturnKeyboard);
    connect(parent, &forms::Form::Unloaded, this, &TitelBar::StopTimers);
}

void TitelBar::resizeEvent(QResizeEvent* event) {
    DrawnControl::resizeEvent(event);
    const QPointer<TitelBar> alive(this);
    AnswerMaximised();
    if (!alive)
        return;
    Q_EMIT Resize();
    // No yield in here: a storm of resizes would nest one in another.
    if (alive)
        Touch();
}

// A window that the platform maximised covers the task bar; it is put into the program's own maximised state instead.
void TitelBar::AnswerMaximised() {
    const QPointer<forms::Form> parent(ParentForm());
    if (answering_ || !parent || parent->IsUnloaded())
        return;
    const bool byPlatform = parent->WindowState() == forms::MaximisedWindow;
    if ((byPlatform || maximised_) && !forms::PlacesWindows()) {
        if (byPlatform != maximised_ && !changingPlace_) {
            maximised_ = byPlatform;
            TakeFace(maximised_ ? *restoreFace_ : *maximizeFace_);
        }
        return;
    }
    if (!byPlatform)
        return;
    const QPointer<TitelBar> alive(this);
    answering_ = true;
    parent->SetWindowState(forms::NormalWindow);
    base::Yield();
    if (parent)
        AwaitNormalPlace(parent);
    if (alive)
        MaxminizeParent();
    base::Yield();
    if (alive)
        GiveParentFocus();
    base::Yield();
    if (alive)
        answering_ = false;
}

void TitelBar::TakeFace(const AlphaImage& face) {
    AlphaImage* button = buttons_[MaximiseButton].image;
    button->SetPicture(face.Picture());
    button->SetToolTipText(face.ToolTipText());
    HoverOff(MaximiseButton);
}

void TitelBar::MaxminizeParent() {
    const QPointer<TitelBar> alive(this);
    const QPointer<forms::Form> parent(ParentForm());
    const auto gone = [&] { return !alive || !parent || parent->IsUnloaded(); };
    // A double click that arrives in one of the yields would restore to a place that is not stored yet.
    if (gone() || changingPlace_)
        return;
    changingPlace_ = true;
    maximised_ = !maximised_;
    if (MoveParent(*parent, gone))
        Q_EMIT ResizedParent();
    if (alive)
        changingPlace_ = false;
}

// False if the window or the bar ended in one of the yields.
bool TitelBar::MoveParent(forms::Form& parent, const std::function<bool()>& gone) {
    TakeFace(maximised_ ? *restoreFace_ : *maximizeFace_);
    base::Yield();
    if (gone())
        return false;
    if (!maximised_) {
        parent.SetWindowState(forms::NormalWindow);
        parent.Move(savedLeft_, savedTop_, savedWidth_, savedHeight_);
        // The monitor that it stood on may be gone or have shrunk.
        const QRect place = parent.WindowRect();
        if (const QRect area = forms::WorkArea(place); area != savedMonitor_)
            parent.SetWindowRect(forms::MovedInto(place, area));
    } else {
        savedTop_ = base::RoundToInt(parent.Top());
        savedLeft_ = base::RoundToInt(parent.Left());
        savedHeight_ = base::RoundToInt(parent.Height());
        savedWidth_ = base::RoundToInt(parent.Width());
        savedMonitor_ = forms::WorkArea(parent.WindowRect());
        base::Yield();
        if (gone())
            return false;
        // A window that cannot be put into the work area is maximised by the platform, which keeps it off panels.
        if (forms::PlacesWindows())
            FillWorkArea();
        else
            parent.SetWindowState(forms::MaximisedWindow);
    }
    base::Yield();
    return !gone();
}

void TitelBar::FillWorkArea() {
    forms::Form* parent = ParentForm();
    const QRect area = forms::WorkArea(parent->WindowRect());
    parent->Move(forms::ToTwips(area.x()), forms::ToTwips(area.y()), forms::ToTwips(area.width()),
                 forms::ToTwips(area.height()));
}

void TitelBar::FollowMonitors() {
    const forms::Form* parent = ParentForm();
    if (maximised_ && !changingPlace_ && parent != nullptr && !parent->IsUnloaded() &&
        parent->WindowState() == forms::NormalWindow && forms::PlacesWindows())
        FillWorkArea();
}

// The toolkit holds the pointer for a widget whose button is down, so there is no capture to take or to release here.
void TitelBar::StopTracking() {
    trackTimer_->SetEnabled(false);
    trackState_ = TrackIdle;
}

void TitelBar::TrackTick() {
    if (!rect().contains(mapFromGlobal(QCursor::pos())))
        StopTracking();
}

void TitelBar::mousePressEvent(QMouseEvent* event) {
    // A click into a window that is not active yet brings the focus some time later; the drag must not wait for it.
    if (window()->focusWidget() == this)
        hasFocus_ = true;
    clickDue_ = true;
    DrawnControl::mousePressEvent(event);
}

void TitelBar::mouseMoveEvent(QMouseEvent* event) {
    if (!hasFocus_)
        return;
    const QPoint position = event->position().toPoint();
    for (const CaptionButton& button : buttons_)
        if (button.image->Visible() && button.image->geometry().contains(position))
            return;
    if (trackState_ == TrackIdle && rect().contains(position)) {
        trackState_ = Tracking;
        trackTimer_->SetEnabled(true);
    }
    const QPointer<TitelBar> alive(this);
    if (event->buttons().testFlag(Qt::LeftButton)) {
        StopTracking();
        if (forms::Form* parent = ParentForm())
            parent->NcLButtonDown(forms::HtCaption);
    }
    if (alive)
        DrawnControl::mouseMoveEvent(event);
}

void TitelBar::mouseReleaseEvent(QMouseEvent* event) {
    const QPointer<TitelBar> alive(this);
    // The release that ends a double click raises no second click.
    const bool clicked = clickDue_ && event->button() == Qt::LeftButton && rect().contains(event->position().toPoint());
    clickDue_ = false;
    Q_EMIT MouseUp(forms::ButtonOf(event->button()), forms::ShiftOf(event->modifiers()), event->position().x(),
                   event->position().y());
    if (alive)
        GiveParentFocus();
    base::Yield();
    if (alive && clicked)
        Q_EMIT Click();
}

void TitelBar::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return;
    clickDue_ = false;
    const QPointer<TitelBar> alive(this);
    Q_EMIT DblClick();
    if (alive && state_.showMaximized && state_.showMaximizedEnabled) {
        StopTracking();
        MaxminizeParent();
        base::Yield();
        if (alive)
            GiveParentFocus();
        base::Yield();
    }
    base::Yield();
}

void TitelBar::GiveParentFocus() {
    forms::Form* parent = ParentForm();
    if (parent == nullptr || parent->IsUnloaded())
        return;
    parent->SetFocus();
    ReturnKeyboard();
}

// The keyboard goes back to whoever had it before the bar was clicked.
void TitelBar::ReturnKeyboard() {
    hasFocus_ = false;
    if (window()->focusWidget() != this)
        return;
    if (focusBefore_ && focusBefore_->isVisible() && focusBefore_->isEnabled())
        focusBefore_->setFocus(Qt::OtherFocusReason);
    else
        clearFocus();
}

} // namespace controls
