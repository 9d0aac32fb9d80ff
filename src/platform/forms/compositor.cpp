#include "forms/compositor.h"

#include <QByteArray>
#include <QGuiApplication>
#include <cstdlib>
#include <memory>
#include <xcb/xcb.h>

namespace forms {

namespace {

struct Freed {
    void operator()(void* memory) const { std::free(memory); }
};

template <typename Reply> std::unique_ptr<Reply, Freed> Owned(Reply* reply) {
    return std::unique_ptr<Reply, Freed>(reply);
}

} // namespace

bool ScreenComposites() {
    const auto* x11 = qGuiApp == nullptr ? nullptr : qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    xcb_connection_t* connection = x11 == nullptr ? nullptr : x11->connection();
    if (connection == nullptr)
        return false;
    const QByteArray name = QByteArrayLiteral("_NET_WM_CM_S0");
    const auto atom = Owned(xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 0, uint16_t(name.size()), name.constData()), nullptr));
    if (!atom)
        return false;
    const auto owner =
        Owned(xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, atom->atom), nullptr));
    return owner && owner->owner != XCB_NONE;
}

} // namespace forms
