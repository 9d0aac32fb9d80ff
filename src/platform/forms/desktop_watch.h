// Watches what a desktop may change while the program runs: its monitors, what panels keep of them, and whether it
// composites. One per process, made on first use after the application object; answers come from memory until the
// desktop says that they are stale, so that they may be asked for in every step of a drag.
#pragma once

#include "forms/work_area.h"

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <QTimer>
#include <optional>

class QScreen;

namespace forms {

class DesktopWatch : public QObject, QAbstractNativeEventFilter {
    Q_OBJECT

  public:
    DesktopWatch();

    const Reserved& ReservedStrips();
    bool Composites();

  Q_SIGNALS:
    // Monitors came, went or changed, or panels did: once for a burst of changes, when it has ended.
    void MonitorsChanged();
    // A compositor has begun or ended.
    void CompositingChanged();

  private:
    bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;
    void Watch(const QScreen* screen);
    void ListenToX();

    std::optional<Reserved> reserved_;
    std::optional<bool> composites_;
    quint8 selectionNotify_ = 0; // the number of the event, 0 where the server has none
    QTimer settled_;
};

DesktopWatch& SharedDesktopWatch();

// Whether windows stand where they are told to. Compositors of Wayland place them by themselves, one also those of X11.
bool PlacesWindows();

} // namespace forms
