// The two questions to the update server, asked by three routines: is there a newer program, is there a newer database.
// They know transfer controls and results, no windows: what is shown goes through the functions that the caller gives.
// None shows a dialog; every wait dispatches events and ends with the transfer control's stop.
#pragma once

#include "net/inet.h"

#include <QString>
#include <functional>

namespace updating {

// Server files below the update host.
QString ProgramVersionUrl();
QString DatabaseVersionUrl();
QString DatabaseArchiveUrl();

// Where a visible check writes.
struct CheckView {
    std::function<void(const QString& caption)> SetOnlineVersion;
    // `tableColour` is an index into the colour table, taken at this moment.
    std::function<void(const QString& caption, int tableColour)> SetAvailable;
    std::function<void(bool enabled)> EnableButton;
};

// Compares the server's program version with ProgramVersion, sets ProgramIsCurrent and the view.
void CheckForUpdate(net::Inet& inet, const CheckView& view);

// The same for the database, whose local version stands in `versionCaption` ("Database Version: 1.2.3"); sets
// DatabaseIsCurrent and the view.
void CheckForDatabaseUpdate(net::Inet& inet, const QString& versionCaption, const CheckView& view);

// The main window's check: sets DatabaseIsCurrent and shows or hides the notice. After an answer that is not valid
// nothing changes.
void CheckForDatabaseUpdateSilent(net::Inet& inet, const QString& versionCaption,
                                  const std::function<void(bool visible)>& showNotice);

} // namespace updating
