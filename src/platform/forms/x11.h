// What the parts of this folder that speak to the X server share: its connection, atoms, and replies that free
// themselves.
#pragma once

#include <QGuiApplication>
#include <QList>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <xcb/xcb.h>

namespace forms {

struct Freed {
    void operator()(void* memory) const { std::free(memory); }
};

template <typename Reply> std::unique_ptr<Reply, Freed> Owned(Reply* reply) {
    return std::unique_ptr<Reply, Freed>(reply);
}

// Null on every other platform.
inline xcb_connection_t* XConnection() {
    const auto* x11 = qGuiApp == nullptr ? nullptr : qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 == nullptr ? nullptr : x11->connection();
}

// The root window of the first screen, which holds every monitor of a desktop.
xcb_window_t XRoot(xcb_connection_t* connection);

// Whether the server knows a mouse button as down; false on every other platform.
bool XButtonHeld();

// Each name is asked for once in a run.
xcb_atom_t XAtom(xcb_connection_t* connection, const QByteArray& name);

// The 32-bit values of a property of a window; none if it has no such property.
xcb_get_property_cookie_t AskValues(xcb_connection_t* connection, xcb_window_t window, const QByteArray& property);
QList<quint32> Values(xcb_connection_t* connection, xcb_get_property_cookie_t cookie);

} // namespace forms
