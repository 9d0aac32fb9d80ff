// Numbers, class codes and the composition of a USB device, from its attributes or, in partial captures, from what the
// kernel announced of it.
#pragma once

#include "pnp/sysfs.h"

#include <optional>
#include <string>
#include <vector>

namespace pnp {

struct UsbIds {
    std::optional<quint32> vendor;
    std::optional<quint32> product;
    std::optional<quint32> revision;
};

// Of a device or, by its modalias, of an interface whose device is gone.
UsbIds ReadUsbIds(const Node& node, const std::string& alias);

struct UsbCodes {
    quint32 classCode;
    quint32 subclass;
    quint32 protocol;
};

// A device's codes; class 0, which leaves it to the interfaces, where nothing tells.
UsbCodes DeviceCodes(const Node& device);
std::optional<UsbCodes> InterfaceCodes(const Node& interface);

// The names of a device's interface folders, in order.
std::vector<std::string> InterfacesOf(const Node& device);
// A device that leaves its class to its interfaces, of which it has several.
bool IsComposite(const Node& device, const std::vector<std::string>& interfaces);
std::optional<quint32> UsbInterfaceNumber(const Node& interface);

} // namespace pnp
