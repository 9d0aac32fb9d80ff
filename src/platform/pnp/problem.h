// The problem codes that sysfs tells of, and the common order in which they are looked for.
#pragma once

#include "pnp/reader_context.h"

#include <string>

namespace pnp {

namespace problem {

inline constexpr quint32 None = 0;
inline constexpr quint32 CannotStart = 10;
inline constexpr quint32 NoResources = 12;
inline constexpr quint32 Disabled = 22;
inline constexpr quint32 NoDriver = 28;
inline constexpr quint32 FirmwareDisabled = 29;
inline constexpr quint32 DriverNotLoaded = 31;
inline constexpr quint32 DriverBlacklisted = 32;
inline constexpr quint32 Reported = 43;
inline constexpr quint32 WaitingForSupplier = 51;

} // namespace problem

struct ProblemFacts {
    // The bound driver, empty for none.
    QString driver;
    std::string modalias;
    // False for classes that work without a driver and for functions that user space drives.
    bool needsDriver = true;
};

// The code of a device folder: what the user or the kernel did to it first (22, 51, 12, 10), then the driver's absence.
quint32 ProblemOf(Context& context, const Node& node, const ProblemFacts& facts);

} // namespace pnp
