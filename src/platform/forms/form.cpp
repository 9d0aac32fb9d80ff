#include "forms/form.h"

#include "draw/system_colours.h"
#include "forms/accessible.h"
#include "forms/colour_key.h"
#include "forms/compositor.h"
#include "forms/control.h"
#include "forms/desktop_watch.h"
#include "forms/form_drag.h"
#include "forms/forms.h"
#include "forms/screen.h"
#include "forms/shadow_frame.h"
#include "forms/x11.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QPointer>
#include <QScreen>
#include <QWindow>

namespace forms {

namespace {

constexpr int updateIntervalMilliseconds = 16;
constexpr int longestAnswer = 3000; // milliseconds
constexpr int returnKey = 13;
constexpr quint32 iconicState = 3; // of WM_STATE

} // namespace

// The part of the window that the program knows: everything but the shadow. It shows the form's own surface.
class Form::ClientArea : public QWidget {
  public:
    explicit ClientArea(Form& form) : QWidget(&form), form_(form) { setAttribute(Qt::WA_OpaquePaintEvent); }

  protected:
    void paintEvent(QPaintEvent* event) override {
        QPainter painter(this);
        painter.drawImage(event->rect(), form_.surface_.Image(), event->rect());
    }

  private:
    Form& form_;
};

Form::Form(const QString& name, double width, double height)
    : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint), drag_(std::make_unique<FormDrag>(*this)),
      shadow_(std::make_unique<ShadowFrame>(*this)) {
    InstallAccessibility();
    setObjectName(name);
    // The visual of a window is fixed when it is made, and a compositor may begin at any time. Without one transparent
    // pixels are black, but then the margin that would show them is gone.
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_OpaquePaintEvent, false);
    client_ = new ClientArea(*this);
    // Something must have the keyboard before the user chooses, and no button should look chosen.
    client_->setFocusPolicy(Qt::ClickFocus);
    client_->setFocus();
    laterUpdate_.setSingleShot(true);
    laterUpdate_.setTimerType(Qt::PreciseTimer);
    connect(&laterUpdate_, &QTimer::timeout, this, &Form::FlushUpdates);
    SetWindowRect(QRect(0, 0, ToPixels(width), ToPixels(height)));
    connect(&SharedDesktopWatch(), &DesktopWatch::MonitorsChanged, this, &Form::BringIntoReach);
    connect(&SharedDesktopWatch(), &DesktopWatch::CompositingChanged, this, [this] { SetWindowRect(WindowRect()); });
}

Form::~Form() {
    drag_->End();
    // Children unregister themselves while they are destroyed, which must still find the list.
    delete client_;
    const auto components = findChildren<QObject*>(QString(), Qt::FindDirectChildrenOnly);
    for (QObject* component : components)
        if (controls_.contains(component))
            delete component;
}

// The toolkit takes a single "[*]" for its mark of a changed document and leaves it out.
void Form::SetCaption(const QString& caption) {
    caption_ = caption;
    setWindowTitle(QString(caption).replace(QLatin1String("[*]"), QLatin1String("[*][*]")));
}

// The toolkit believes every window minimised that it asked for; where nothing minimises, the window goes on as before.
bool Form::IsMinimised() const {
    xcb_connection_t* connection = isMinimized() ? XConnection() : nullptr;
    if (connection == nullptr || !testAttribute(Qt::WA_WState_Created))
        return isMinimized();
    const auto asked = AskValues(connection, xcb_window_t(effectiveWinId()), QByteArrayLiteral("WM_STATE"));
    return Values(connection, asked).value(0) == iconicState;
}

int Form::WindowState() const {
    return IsMinimised() ? MinimisedWindow : isMaximized() ? MaximisedWindow : NormalWindow;
}

void Form::SetWindowState(int state) {
    if (state == WindowState())
        return;
    if (isMinimized() && !IsMinimised())
        setWindowState(Qt::WindowNoState);
    awaitsSize_ = isMaximized() && state == NormalWindow && QGuiApplication::platformName().startsWith(u"wayland");
    // One that never maximised it has nothing to tell.
    if (awaitsSize_)
        QTimer::singleShot(longestAnswer, this, [this] { awaitsSize_ = false; });
    if (state == MinimisedWindow)
        setWindowState(Qt::WindowMinimized);
    else if (state == MaximisedWindow)
        setWindowState(Qt::WindowMaximized);
    else
        setWindowState(Qt::WindowNoState);
}

void Form::SetBackColor(base::Colour colour) {
    backColor_ = colour;
    Cls();
}

QObject* Form::FindControl(const QString& name) const {
    for (QObject* control : controls_)
        if (control->objectName() == name)
            return control;
    return nullptr;
}

void Form::Cls() {
    if (surface_.Size() != client_->size())
        surface_ = draw::Surface(client_->size());
    surface_.Cls(draw::OleTranslateColor(backColor_));
    client_->update();
}

void Form::DrawBox(int left, int top, int right, int bottom) {
    surface_.FrameRect(QRect(QPoint(left, top), QPoint(right, bottom)), draw::OleTranslateColor(foreColor_));
    client_->update();
}

void Form::Refresh() { client_->update(); }

double Form::TextWidth(const QString& text) const { return ToTwips(fontMetrics().horizontalAdvance(text)); }

bool Form::EnsureLoaded() {
    if (loadState_ == LoadState::Made) {
        loadState_ = LoadState::Loading;
        Q_EMIT Loading();
        Load();
        if (loadState_ == LoadState::Loading)
            loadState_ = LoadState::Loaded;
    }
    return loadState_ != LoadState::Unloaded;
}

void Form::Show() {
    if (!EnsureLoaded())
        return;
    if (isMinimized())
        setWindowState(Qt::WindowNoState);
    if (!isVisible())
        BringIntoReach();
    const QRect place = WindowRect();
    show();
    // Window managers place new windows themselves unless they are told again.
    if (WindowRect() != place)
        SetWindowRect(place);
}

void Form::Hide() {
    if (EnsureLoaded())
        hide();
}

void Form::SetFocus() {
    if (!isVisible())
        return;
    raise();
    activateWindow();
}

bool Form::Unload(bool always) {
    if (loadState_ == LoadState::Unloaded || unloading_)
        return true;
    if (!always && !QueryUnload())
        return false;
    if (loadState_ == LoadState::Unloaded || unloading_)
        return true;
    unloading_ = true;
    Closing();
    loadState_ = LoadState::Unloaded;
    drag_->End();
    hide();
    Q_EMIT Unloaded();
    Forms::Instance().TakeOut(this);
    return true;
}

void Form::NcLButtonDown(int hitTest) { drag_->Begin(hitTest); }

bool Form::InDrag() const { return drag_->Active(); }

void Form::SetColourKey(base::Colour key) {
    if (colourKey_ == nullptr)
        colourKey_ = new ColourKeyOverlay(this);
    colourKey_->SetKey(draw::OleTranslateColor(key));
}

void Form::HoldColourKey(const QRegion& area, base::Colour ground) {
    if (colourKey_ != nullptr)
        colourKey_->Hold(area, draw::OleTranslateColor(ground));
}

QRegion Form::KeyedRegion() const { return colourKey_ == nullptr ? QRegion() : colourKey_->Keyed(); }

void Form::SetShadow(int extent, ShadowPainter paint) {
    const QRect place = WindowRect();
    shadow_->Set(extent, std::move(paint));
    SetWindowRect(place);
    update();
}

bool Form::event(QEvent* event) {
    if (event->type() != QEvent::UpdateRequest)
        return QWidget::event(event);
    if (sinceUpdate_.isValid() && sinceUpdate_.elapsed() < updateIntervalMilliseconds) {
        if (!laterUpdate_.isActive())
            laterUpdate_.start(int(updateIntervalMilliseconds - sinceUpdate_.elapsed()));
        return true;
    }
    FlushUpdates();
    return true;
}

void Form::FlushUpdates() {
    QEvent update(QEvent::UpdateRequest);
    QWidget::event(&update);
    sinceUpdate_.start();
}

void Form::closeEvent(QCloseEvent* event) {
    event->ignore();
    Unload();
}

void Form::moveEvent(QMoveEvent* event) {
    QWidget::moveEvent(event);
    drag_->Told(HtCaption);
}

void Form::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    awaitsSize_ = false;
    LayOutClient();
    const QPointer<Form> alive(this);
    drag_->Told(HtBottomRight);
    if (alive)
        Q_EMIT Sized();
    if (alive)
        Q_EMIT Resized();
    if (alive)
        Resize();
}

void Form::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    TellSizeLimits();
}

void Form::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::ActivationChange) {
        ActivationChanged(isActiveWindow());
        return;
    }
    if (event->type() != QEvent::WindowStateChange)
        return;
    const bool sizesItself = !PlacesWindows() && !isMinimized();
    if (sizesItself) {
        // Where the desktop maximises, it gives the size with or without the shadow that the state implies.
        shadow_->SetCurrent(shadow_->ExtentFor(QRect()));
        TellSizeLimits();
        LayOutClient();
    }
    if (isMaximized() || sizesItself) {
        // The title bar answers to a maximised window in its resize; a window manager may send the state after the
        // size.
        Q_EMIT Resized();
        Resize();
    }
}

void Form::paintEvent(QPaintEvent* event) {
    Q_UNUSED(event)
    if (shadow_->Extent() == 0)
        return;
    QPainter painter(this);
    shadow_->Paint(painter);
}

// Return means the button that has the focus.
void Form::keyPressEvent(QKeyEvent* event) {
    auto* control = qobject_cast<Control*>(focusWidget());
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isReturn && control != nullptr && !event->isAutoRepeat())
        control->AccessKeyPress(returnKey);
    else
        QWidget::keyPressEvent(event);
}

void Form::AddControl(QObject* control) { controls_.append(control); }

void Form::RemoveControl(QObject* control) { controls_.removeAll(control); }

void Form::LayOutClient() {
    const int extent = shadow_->Extent();
    client_->setGeometry(rect().adjusted(extent, extent, -extent, -extent));
    if (surface_.Size() != client_->size())
        Cls();
    shadow_->ApplyInputShape();
}

void Form::ActivationChanged(bool active) {
    if (active == active_)
        return;
    active_ = active;
    if (!active) {
        Q_EMIT Deactivated();
        return;
    }
    const QPointer<Form> alive(this);
    // A window manager may give the keyboard before it hands on the press.
    Q_EMIT Activated(QGuiApplication::mouseButtons() != Qt::NoButton || XButtonHeld());
    if (alive)
        Activate();
}

} // namespace forms
