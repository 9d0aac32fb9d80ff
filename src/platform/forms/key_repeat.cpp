#include "forms/key_repeat.h"

#include "forms/x11.h"

#include <QAbstractNativeEventFilter>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QSet>
#include <QWindow>
#include <algorithm>
#include <array>
#include <sys/uio.h>
#include <xcb/xcbext.h>

namespace forms {

namespace {

constexpr int keysOfServer = 256;
constexpr qsizetype mostUndelivered = 64; // repeats that a window, closed meanwhile, never got

// The library with this call of the keyboard extension is not worth a dependency.
bool AskForDetectableRepeat(xcb_connection_t* connection) {
    struct PerClientFlags {
        uint8_t majorCode = 0, minorCode = 0; // the library fills in these and the length
        uint16_t length = 0;
        uint16_t device = 0x100; // the core keyboard
        uint16_t unused = 0;
        uint32_t change = 1; // detectable repeat, the lowest of the flags
        uint32_t value = 1;
        uint32_t controls = 0, autoControls = 0, autoValues = 0;
    } request;
    struct Reply {
        uint8_t kind, device;
        uint16_t sequence;
        uint32_t length, supported, value;
    };
    static xcb_extension_t extension{"XKEYBOARD", 0};
    static constexpr xcb_protocol_request_t call{2, &extension, 21, 0};
    // The call writes into the two places before the request.
    std::array<iovec, 4> parts{};
    parts[2] = {&request, sizeof request};
    const unsigned sequence = xcb_send_request(connection, XCB_REQUEST_CHECKED, parts.data() + 2, &call);
    xcb_generic_error_t* error = nullptr;
    const auto reply = Owned(static_cast<Reply*>(xcb_wait_for_reply(connection, sequence, &error)));
    Owned(error);
    return reply && (reply->value & 1U) != 0;
}

class KeyRepeatFilter : public QObject, public QAbstractNativeEventFilter {
  public:
    explicit KeyRepeatFilter(xcb_connection_t* connection) : connection_(connection) {}

    // The server's events, in its order and before the toolkit drops those of windows that are gone.
    bool nativeEventFilter(const QByteArray& /*kind*/, void* message, qintptr* /*result*/) override {
        const auto* event = static_cast<const xcb_generic_event_t*>(message);
        switch (event->response_type & 0x7F) {
        case XCB_KEY_PRESS:
            return !Press(*reinterpret_cast<const xcb_key_press_event_t*>(event));
        case XCB_KEY_RELEASE:
            down_.at(reinterpret_cast<const xcb_key_release_event_t*>(event)->detail) = XCB_WINDOW_NONE;
            return false;
        case XCB_FOCUS_IN:
        case XCB_ENTER_NOTIFY: // where no window manager gives the focus
            ForgetReleased();
            return false;
        default:
            return false;
        }
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        const bool press = event->type() == QEvent::KeyPress;
        if ((!press && event->type() != QEvent::ShortcutOverride) || !watched->isWindowType())
            return false;
        const auto* key = static_cast<const QKeyEvent*>(event);
        const Repeat repeat{int(key->nativeScanCode()), quint32(key->timestamp())};
        if (!event->spontaneous() || !repeats_.contains(repeat))
            return false;
        if (!press) {
            // Taken by nobody, but no shortcut is looked for; the press follows.
            event->accept();
            return true;
        }
        repeats_.remove(repeat);
        QKeyEvent marked(key->type(), key->key(), key->modifiers(), key->nativeScanCode(), key->nativeVirtualKey(),
                         key->nativeModifiers(), key->text(), true, quint16(key->count()));
        marked.setTimestamp(key->timestamp());
        QCoreApplication::sendEvent(watched, &marked);
        event->setAccepted(marked.isAccepted());
        return true;
    }

  private:
    using Repeat = std::pair<int, quint32>; // the key and the server's time

    // False for a repeat of a press that another window had.
    bool Press(const xcb_key_press_event_t& press) {
        xcb_window_t& window = down_.at(press.detail);
        if (window == XCB_WINDOW_NONE) {
            window = press.event;
            return true;
        }
        if (window != press.event)
            return false;
        if (repeats_.size() >= mostUndelivered)
            repeats_.clear();
        repeats_.insert({press.detail, press.time});
        return true;
    }

    // Who had the keyboard meanwhile was told of releases.
    void ForgetReleased() {
        if (std::ranges::all_of(down_, [](xcb_window_t window) { return window == XCB_WINDOW_NONE; }))
            return;
        const auto now = Owned(xcb_query_keymap_reply(connection_, xcb_query_keymap(connection_), nullptr));
        for (size_t key = 0; key < down_.size(); ++key)
            if (!now || (now->keys[key / 8] >> (key % 8) & 1) == 0)
                down_.at(key) = XCB_WINDOW_NONE;
    }

    xcb_connection_t* connection_;
    std::array<xcb_window_t, keysOfServer> down_{}; // by key: the window that it went down in
    QSet<Repeat> repeats_;                          // read, and not yet delivered as the toolkit's events
};

} // namespace

void TellKeyRepeats() {
    static bool asked = false;
    xcb_connection_t* connection = XConnection();
    if (asked || connection == nullptr)
        return;
    asked = true;
    if (!AskForDetectableRepeat(connection))
        return;
    auto* filter = new KeyRepeatFilter(connection);
    filter->setParent(qGuiApp);
    qGuiApp->installNativeEventFilter(filter);
    qGuiApp->installEventFilter(filter);
}

} // namespace forms
