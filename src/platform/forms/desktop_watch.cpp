#include "forms/desktop_watch.h"

#include "forms/x11.h"

#include <QScreen>
#include <xcb/xfixes.h>

namespace forms {

namespace {

// A change of the monitors comes in several steps, and panels and window managers answer to it with more.
constexpr int settleMilliseconds = 150;
constexpr quint8 typeMask = 0x7F; // of an event's number; the bit above tells who sent it

QByteArray CompositorSelection() { return QByteArrayLiteral("_NET_WM_CM_S0"); }

bool OnWayland() { return QGuiApplication::platformName().startsWith(QLatin1String("wayland")); }

bool AskComposites() {
    if (OnWayland())
        return true;
    xcb_connection_t* connection = XConnection();
    if (connection == nullptr)
        return false;
    const auto owner = Owned(xcb_get_selection_owner_reply(
        connection, xcb_get_selection_owner(connection, XAtom(connection, CompositorSelection())), nullptr));
    return owner && owner->owner != XCB_NONE;
}

} // namespace

DesktopWatch::DesktopWatch() : QObject(qGuiApp) {
    settled_.setSingleShot(true);
    settled_.setInterval(settleMilliseconds);
    connect(&settled_, &QTimer::timeout, this, &DesktopWatch::MonitorsChanged);
    connect(qGuiApp, &QGuiApplication::screenAdded, this, &DesktopWatch::Watch);
    connect(qGuiApp, &QGuiApplication::screenRemoved, &settled_, qOverload<>(&QTimer::start));
    connect(qGuiApp, &QGuiApplication::primaryScreenChanged, &settled_, qOverload<>(&QTimer::start));
    for (const QScreen* screen : QGuiApplication::screens())
        Watch(screen);
    settled_.stop();
    ListenToX();
}

void DesktopWatch::Watch(const QScreen* screen) {
    connect(screen, &QScreen::geometryChanged, &settled_, qOverload<>(&QTimer::start));
    connect(screen, &QScreen::availableGeometryChanged, &settled_, qOverload<>(&QTimer::start));
    settled_.start();
}

// The toolkit listens to the root window's properties already.
void DesktopWatch::ListenToX() {
    xcb_connection_t* connection = XConnection();
    if (connection == nullptr)
        return;
    qGuiApp->installNativeEventFilter(this);
    const xcb_query_extension_reply_t* fixes = xcb_get_extension_data(connection, &xcb_xfixes_id);
    if (fixes == nullptr || fixes->present == 0)
        return;
    // The toolkit asks for the same version; a lower one would take requests away from it.
    Owned(xcb_xfixes_query_version_reply(
        connection, xcb_xfixes_query_version(connection, XCB_XFIXES_MAJOR_VERSION, XCB_XFIXES_MINOR_VERSION), nullptr));
    selectionNotify_ = quint8(fixes->first_event + XCB_XFIXES_SELECTION_NOTIFY);
    xcb_xfixes_select_selection_input(connection, XRoot(connection), XAtom(connection, CompositorSelection()),
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
}

bool DesktopWatch::nativeEventFilter(const QByteArray& /*type*/, void* message, qintptr* /*result*/) {
    xcb_connection_t* connection = XConnection();
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    const quint8 type = event->response_type & typeMask;
    if (type == XCB_PROPERTY_NOTIFY) {
        const auto* property = reinterpret_cast<const xcb_property_notify_event_t*>(event);
        if (property->window != XRoot(connection))
            return false;
        for (const char* name : {"_NET_WORKAREA", "_NET_CLIENT_LIST", "_NET_CURRENT_DESKTOP", "_GTK_WORKAREAS_D0"})
            if (property->atom == XAtom(connection, name)) {
                reserved_.reset();
                settled_.start();
            }
    } else if (selectionNotify_ != 0 && type == selectionNotify_) {
        const auto* selection = reinterpret_cast<const xcb_xfixes_selection_notify_event_t*>(event);
        if (selection->selection == XAtom(connection, CompositorSelection())) {
            composites_.reset();
            // Not from inside the toolkit's dispatch of X events.
            QMetaObject::invokeMethod(this, &DesktopWatch::CompositingChanged, Qt::QueuedConnection);
        }
    }
    return false;
}

const Reserved& DesktopWatch::ReservedStrips() {
    if (!reserved_)
        reserved_ = ReadReserved();
    return *reserved_;
}

bool DesktopWatch::Composites() {
    // Without notice of a change each question is a new one.
    if (!composites_ || selectionNotify_ == 0)
        composites_ = AskComposites();
    return *composites_;
}

bool PlacesWindows() {
    if (OnWayland())
        return false;
    xcb_connection_t* connection = XConnection();
    if (connection == nullptr)
        return true;
    const auto manager = AskValues(connection, XRoot(connection), QByteArrayLiteral("_NET_SUPPORTING_WM_CHECK"));
    const auto asked = AskValues(connection, Values(connection, manager).value(0), QByteArrayLiteral("_NET_WM_NAME"));
    const auto reply = Owned(xcb_get_property_reply(connection, asked, nullptr));
    return !reply || QByteArray(static_cast<const char*>(xcb_get_property_value(reply.get())),
                                xcb_get_property_value_length(reply.get())) != "Weston WM";
}

DesktopWatch& SharedDesktopWatch() {
    static auto* const watch = new DesktopWatch;
    return *watch;
}

} // namespace forms
