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

// Settles the code of a device whose driver is known, by its folder: what the user or the kernel did to it first (22,
// 51, 12, 10), then the driver's absence, and with that the module that would fit. `needsDriver` is false for classes
// that work without a driver and for functions that user space drives.
void TakeProblem(Context& context, const Node& node, const std::string& modalias, bool needsDriver, Device& device);

// What the device itself tells goes before what its driver's absence does.
inline void Overrule(Device& device, quint32 code) {
    device.problemCode = code;
    device.fittingModule.clear();
}

} // namespace pnp
