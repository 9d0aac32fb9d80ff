// Top-level collections of a HID report descriptor.
#pragma once

#include <QtGlobal>
#include <string>
#include <vector>

namespace pnp {

struct HidUsage {
    quint16 page = 0;
    quint16 usage = 0;
    friend bool operator==(const HidUsage&, const HidUsage&) = default;
};

// One usage for each top-level application collection, in order; at most 64. A descriptor that ends in the middle of an
// item gives the collections before it.
std::vector<HidUsage> TopLevelCollections(const std::string& descriptor);

} // namespace pnp
