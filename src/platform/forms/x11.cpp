#include "forms/x11.h"

#include <QHash>

namespace forms {

namespace {

constexpr uint32_t mostValues = 4096; // of one property; a desktop of 4,096 windows is read so far

constexpr const char* usualNames[] = {
    "_NET_WM_CM_S0", "_NET_WORKAREA",         "_NET_CLIENT_LIST", "_NET_CURRENT_DESKTOP",     "_GTK_WORKAREAS_D0",
    "_NET_WM_STRUT", "_NET_WM_STRUT_PARTIAL", "_NET_WM_NAME",     "_NET_SUPPORTING_WM_CHECK", "WM_STATE"};

} // namespace

xcb_window_t XRoot(xcb_connection_t* connection) {
    return xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
}

bool XButtonHeld() {
    constexpr int buttons = XCB_BUTTON_MASK_1 | XCB_BUTTON_MASK_2 | XCB_BUTTON_MASK_3;
    xcb_connection_t* connection = XConnection();
    if (connection == nullptr)
        return false;
    const auto pointer =
        Owned(xcb_query_pointer_reply(connection, xcb_query_pointer(connection, XRoot(connection)), nullptr));
    return pointer && (pointer->mask & buttons) != 0;
}

xcb_atom_t XAtom(xcb_connection_t* connection, const QByteArray& name) {
    static QHash<QByteArray, xcb_atom_t> known;
    const auto found = known.constFind(name);
    if (found != known.constEnd())
        return *found;
    // The first question asks for all usual names, since on a distant display each answer takes its time.
    QList<QByteArray> names = {name};
    if (known.isEmpty())
        for (const char* usual : usualNames)
            names.append(usual);
    QList<xcb_intern_atom_cookie_t> asked;
    for (const QByteArray& each : names)
        asked.append(xcb_intern_atom(connection, 0, uint16_t(each.size()), each.constData()));
    for (qsizetype i = 0; i < names.size(); ++i) {
        const auto reply = Owned(xcb_intern_atom_reply(connection, asked[i], nullptr));
        known.insert(names[i], reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE));
    }
    return known.value(name);
}

xcb_get_property_cookie_t AskValues(xcb_connection_t* connection, xcb_window_t window, const QByteArray& property) {
    return xcb_get_property(connection, 0, window, XAtom(connection, property), XCB_GET_PROPERTY_TYPE_ANY, 0,
                            mostValues);
}

QList<quint32> Values(xcb_connection_t* connection, xcb_get_property_cookie_t cookie) {
    const auto reply = Owned(xcb_get_property_reply(connection, cookie, nullptr));
    if (!reply || reply->format != 32)
        return {};
    const auto* values = static_cast<const quint32*>(xcb_get_property_value(reply.get()));
    return {values, values + xcb_get_property_value_length(reply.get()) / int(sizeof(quint32))};
}

} // namespace forms
