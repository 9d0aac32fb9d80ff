// The four device lists: their titles, columns and first sort. The lists themselves belong to whoever shows them.
#pragma once

#include "suite/list_items.h"

#include <QString>

namespace inventory {

// In the order of the tabs.
enum DeviceList { Hardware, NoDrivers, Problems, NoSystemDevices, DeviceListCount };

// The sub-items of a row, whose own text is the device's name.
inline constexpr int ManufacturerColumn = 1;
inline constexpr int ErrorCodeColumn = 2;
inline constexpr int ClassColumn = 3;
inline constexpr int DriverVersionColumn = 4;
inline constexpr int HardwareIdsColumn = 5;

// The plain title of a tab.
QString DeviceListTitle(DeviceList list);
// The title with a count behind it: "All Hardware (0)".
QString DeviceListCaption(const QString& title, int count);

// Adds the six columns of a device list, 1500 twips each.
void AddDeviceColumns(suite::ListItems& list);
// Sorted by name, ascending, as lists come up.
void SortByName(suite::ListItems& list);

} // namespace inventory
