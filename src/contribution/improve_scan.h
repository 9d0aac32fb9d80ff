// The walk over all working devices that finds what is worth contributing: one row for each hardware ID of each device.
#pragma once

#include <QString>
#include <functional>

namespace suite {
class ListItems;
}

namespace contribution {

// Sub-items of a row on offer; its text is the device's name.
inline constexpr int ManufacturerColumn = 1;
inline constexpr int HardwareIdColumn = 2;

// A row for this ID. A key that is taken already leaves the list as it is, which is what makes rows unique.
void OfferRow(suite::ListItems& list, const QString& name, const QString& manufacturer, const QString& id);

// Fills the list, which must have its three columns. The platform walk goes into a rowset in memory first, so that the
// list is touched only when it is over. Yields many times; stops early only when the program closes.
void ImproveScan(suite::ListItems& list, const std::function<void(const QString& caption)>& setStatus);

} // namespace contribution
