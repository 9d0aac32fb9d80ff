// The numbers of a PCI function, from its attributes or, on old kernels and in partial captures, from what the kernel
// announced of it, from its modalias and its configuration space.
#pragma once

#include "pnp/sysfs.h"

#include <optional>

namespace pnp {

// Numbers that nothing tells are missing; a subsystem that nothing tells is 0.
struct PciFunction {
    std::optional<quint32> vendor;
    std::optional<quint32> device;
    quint32 subsystemVendor = 0;
    quint32 subsystemDevice = 0;
    std::optional<quint32> revision;
    std::optional<quint32> classCode;
};

PciFunction ReadPciFunction(const Node& node);

} // namespace pnp
