#include "forms/work_area.h"

#include "forms/x11.h"

#include <algorithm>

namespace forms {

namespace {

constexpr qsizetype strutValues = 4;
constexpr qsizetype partialStrutValues = 12;
constexpr qsizetype rectValues = 4;

int Signed(quint32 value) { return int(std::min(value, quint32(INT16_MAX))); }

QList<QRect> RectsOf(const QList<quint32>& values) {
    QList<QRect> rects;
    for (qsizetype i = 0; i + rectValues <= values.size(); i += rectValues)
        rects.append(QRect(int(values[i]), int(values[i + 1]), Signed(values[i + 2]), Signed(values[i + 3])));
    return rects;
}

// The edges of a desktop that lie outside of `area`, as what a client would state.
QList<quint32> StrutAround(const QRect& area, const QRect& desktop) {
    return {quint32(std::max(0, area.left() - desktop.left())), quint32(std::max(0, desktop.right() - area.right())),
            quint32(std::max(0, area.top() - desktop.top())), quint32(std::max(0, desktop.bottom() - area.bottom()))};
}

} // namespace

QList<Strip> StripsOf(const QList<quint32>& strut, const QRect& desktop) {
    QList<Strip> strips;
    if (strut.size() < strutValues)
        return strips;
    constexpr Qt::Edge edges[] = {Qt::LeftEdge, Qt::RightEdge, Qt::TopEdge, Qt::BottomEdge};
    for (qsizetype i = 0; i < strutValues; ++i) {
        const int depth = Signed(strut[i]);
        if (depth == 0)
            continue;
        QRect area = desktop;
        switch (edges[i]) {
        case Qt::LeftEdge:
            area.setWidth(depth);
            break;
        case Qt::RightEdge:
            area.setLeft(desktop.right() - depth + 1);
            break;
        case Qt::TopEdge:
            area.setHeight(depth);
            break;
        case Qt::BottomEdge:
            area.setTop(desktop.bottom() - depth + 1);
            break;
        }
        if (strut.size() >= partialStrutValues) {
            const int begin = Signed(strut[strutValues + 2 * i]);
            const int end = Signed(strut[strutValues + 2 * i + 1]);
            if (i < 2)
                area = QRect(area.left(), begin, area.width(), end - begin + 1);
            else
                area = QRect(begin, area.top(), end - begin + 1, area.height());
        }
        if (!area.isEmpty())
            strips.append({edges[i], area});
    }
    return strips;
}

QRect WithoutReserved(const QRect& monitor, const Reserved& reserved) {
    QRect left = monitor;
    for (const Strip& strip : reserved.strips) {
        const QRect taken = strip.area & monitor;
        if (taken.isEmpty())
            continue;
        const bool sideways = strip.edge == Qt::LeftEdge || strip.edge == Qt::RightEdge;
        if (sideways ? taken.width() >= monitor.width() : taken.height() >= monitor.height())
            continue;
        switch (strip.edge) {
        case Qt::LeftEdge:
            left.setLeft(std::max(left.left(), taken.right() + 1));
            break;
        case Qt::RightEdge:
            left.setRight(std::min(left.right(), taken.left() - 1));
            break;
        case Qt::TopEdge:
            left.setTop(std::max(left.top(), taken.bottom() + 1));
            break;
        case Qt::BottomEdge:
            left.setBottom(std::min(left.bottom(), taken.top() - 1));
            break;
        }
    }
    for (const QRect& area : reserved.areas)
        if (monitor.contains(area) && left.intersects(area))
            left &= area;
    return left.isEmpty() ? monitor : left;
}

Reserved ReadReserved() {
    Reserved reserved;
    xcb_connection_t* connection = XConnection();
    if (connection == nullptr)
        return reserved;
    const xcb_window_t root = XRoot(connection);
    const auto size = xcb_get_geometry(connection, root);
    const auto clients = AskValues(connection, root, QByteArrayLiteral("_NET_CLIENT_LIST"));
    const auto current = AskValues(connection, root, QByteArrayLiteral("_NET_CURRENT_DESKTOP"));
    const auto whole = AskValues(connection, root, QByteArrayLiteral("_NET_WORKAREA"));
    const auto geometry = Owned(xcb_get_geometry_reply(connection, size, nullptr));
    const QRect desktop = geometry ? QRect(0, 0, geometry->width, geometry->height) : QRect();
    const QList<quint32> windows = Values(connection, clients);
    const quint32 number = Values(connection, current).value(0);
    const QList<QRect> wholeAreas = RectsOf(Values(connection, whole));

    // All questions go out before the first answer is awaited.
    QList<std::pair<xcb_get_property_cookie_t, xcb_get_property_cookie_t>> asked;
    for (const quint32 window : windows)
        asked.append({AskValues(connection, window, QByteArrayLiteral("_NET_WM_STRUT_PARTIAL")),
                      AskValues(connection, window, QByteArrayLiteral("_NET_WM_STRUT"))});
    const auto areas = AskValues(connection, root, QByteArrayLiteral("_GTK_WORKAREAS_D") + QByteArray::number(number));
    for (const auto& [partial, plain] : asked) {
        const QList<quint32> exact = Values(connection, partial);
        const QList<quint32> rough = Values(connection, plain);
        reserved.strips += StripsOf(exact.size() >= partialStrutValues ? exact : rough, desktop);
    }
    reserved.areas = RectsOf(Values(connection, areas));
    // Where no client says what it keeps, the panel is the window manager's own.
    if (reserved.strips.isEmpty() && number < quint32(wholeAreas.size()))
        reserved.strips = StripsOf(StrutAround(wholeAreas[number], desktop), desktop);
    return reserved;
}

} // namespace forms
