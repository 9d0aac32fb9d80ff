// Opening a lookup window on one device.
#pragma once

namespace suite {
class ListItem;
}

namespace inventory {

// Makes a new lookup window, shows it, fills it from a row of a device list and starts its search. Yields between the
// steps; several windows may be open at a time.
void OpenLookup(const suite::ListItem& device);

} // namespace inventory
