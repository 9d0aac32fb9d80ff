// The identity in a monitor's EDID block.
#pragma once

#include <QString>
#include <optional>
#include <string>

namespace pnp {

struct Edid {
    // Three letters; empty where the block holds none.
    QString vendor;
    quint16 product = 0;
    // From the descriptors; empty where the block has none.
    QString name;
};

// Nothing for a block that is short or lacks the header. The checksum is not asked: many monitors
// deliver it wrong.
std::optional<Edid> ParseEdid(const std::string& block);

} // namespace pnp
