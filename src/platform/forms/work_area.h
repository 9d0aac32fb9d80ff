// What of a monitor is left for windows: its rectangle without the strips that panels and docks keep. The toolkit knows
// that for a single monitor only. Everything is in pixels of the whole desktop.
#pragma once

#include <QList>
#include <QRect>

namespace forms {

// A strip from an edge of the desktop inwards that a client keeps for itself.
struct Strip {
    Qt::Edge edge = Qt::TopEdge;
    QRect area;
};

struct Reserved {
    QList<Strip> strips;
    // Work areas that the window manager tells for each monitor by itself, in any order; most tell none.
    QList<QRect> areas;
};

// The strips of a client that states `strut`: left, right, top, bottom, and for each of them where it begins and ends
// along its edge (_NET_WM_STRUT_PARTIAL). Four values alone reach along the whole edge (_NET_WM_STRUT).
QList<Strip> StripsOf(const QList<quint32>& strut, const QRect& desktop);

// A strip that goes right across a monitor belongs to one behind it and takes nothing of it.
QRect WithoutReserved(const QRect& monitor, const Reserved& reserved);

// Asks the window manager's clients; nothing where there is no X server.
Reserved ReadReserved();

} // namespace forms
