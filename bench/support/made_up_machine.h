// A made-up machine of many PCI functions, as a device tree in a folder.
#pragma once

#include <QString>

namespace bench {

// The root of the tree of a machine with this many devices, every second one without a driver. Made once for each
// number, in memory where there is such a folder; it goes with the process.
const QString& MadeUpMachine(int devices);

} // namespace bench
