// What the database knows about the devices of a list: for each, the devices under the longest of its hardware IDs that
// is found there, as the lookup window marks them.
#pragma once

#include "suite/list_items.h"

#include <QString>
#include <string>
#include <vector>

namespace list_tool {

struct Match {
    QString Name;
    QString Manufacturer;
    QString HardwareId;
};

// The matches of one row, the best alone; several where their IDs are of one length.
using Matches = std::vector<Match>;

// Opens the database for the process; an empty path stands for the one that the program would open. Empty, or why it
// cannot be used.
std::string OpenDatabase(const std::string& path);

Matches BestMatches(const suite::ListItem& device);

} // namespace list_tool
