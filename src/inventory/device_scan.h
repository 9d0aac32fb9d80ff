// The walk over the machine's Plug and Play inventory that fills the device lists. The same routine serves the main
// window and the tools without one: it knows lists and a status text, nothing else.
#pragma once

#include "suite/list_items.h"

#include <QString>
#include <functional>

namespace inventory {

// Shows the scan's progress ("Status: Getting ...").
using StatusText = std::function<void(const QString&)>;

// Fills the four lists, which must have their columns and should be empty, unsorted and hidden. Yields many times; the
// lists must outlive it, their rows may vanish meanwhile. Stops at the next device once the program is closing, and
// then leaves the status as it is.
void DeviceScan(suite::ListItems& hardware, suite::ListItems& noDrivers, suite::ListItems& problems,
                suite::ListItems& noSystemDevices, const StatusText& status);

} // namespace inventory
