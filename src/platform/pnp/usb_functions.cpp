#include "pnp/usb_functions.h"

#include "pnp/usb_ids.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace pnp {

namespace {

constexpr std::size_t LargestDescriptors = 65536;
constexpr quint32 AudioClass = 0x01;
constexpr quint32 AudioControl = 0x01;
constexpr quint32 CommunicationsClass = 0x02;
constexpr quint32 DataClass = 0x0A;
// Kinds of descriptors, and the one of the communications class that names what belongs together.
constexpr quint8 ConfigurationKind = 0x02;
constexpr quint8 InterfaceKind = 0x04;
constexpr quint8 ClassInterfaceKind = 0x24;
constexpr quint8 UnionSubtype = 0x06;

struct Interface {
    quint32 number;
    UsbCodes codes;
};

// Those that no association has claimed.
std::vector<Interface> FreeInterfaces(const Node& device) {
    std::vector<Interface> interfaces;
    for (const std::string& name : InterfacesOf(device)) {
        const Node node = device.Child(name);
        const std::optional<quint32> number = UsbInterfaceNumber(node);
        const std::optional<UsbCodes> codes = InterfaceCodes(node);
        if (number && codes && !node.Has("iad_bFirstInterface"))
            interfaces.push_back({*number, *codes});
    }
    return interfaces;
}

// The lowest number in the union that holds `number`, if the active configuration has such a one.
std::optional<quint32> FirstOfUnion(const Node& device, quint32 number) {
    const std::string bytes = device.Bytes("descriptors", LargestDescriptors);
    const quint32 active = device.Decimal("bConfigurationValue").value_or(0);
    const auto byte = [&bytes](std::size_t at) { return quint32(static_cast<unsigned char>(bytes[at])); };
    quint32 configuration = 0;
    quint32 classCode = 0;
    for (std::size_t at = 0; at + 2 <= bytes.size() && byte(at) >= 2; at += byte(at)) {
        const std::size_t size = byte(at);
        if (at + size > bytes.size())
            break;
        const quint32 kind = byte(at + 1);
        if (kind == ConfigurationKind && size > 5)
            configuration = byte(at + 5);
        else if (kind == InterfaceKind && size > 5)
            classCode = byte(at + 5);
        if (kind != ClassInterfaceKind || classCode != CommunicationsClass || size < 5 ||
            byte(at + 2) != UnionSubtype || (active != 0 && configuration != active))
            continue;
        const auto first = bytes.begin() + std::ptrdiff_t(at) + 3;
        const auto end = bytes.begin() + std::ptrdiff_t(at + size);
        const auto less = [](char a, char b) { return static_cast<unsigned char>(a) < static_cast<unsigned char>(b); };
        if (std::find(first, end, char(number)) != end)
            return quint32(static_cast<unsigned char>(*std::min_element(first, end, less)));
    }
    return std::nullopt;
}

} // namespace

quint32 FirstOfFunction(const Node& device, const Node& interface, quint32 number) {
    if (const std::optional<quint32> first = interface.Hex("iad_bFirstInterface"))
        return *first;
    const quint32 classCode = InterfaceCodes(interface).value_or(UsbCodes{0, 0, 0}).classCode;
    const bool communicates = classCode == CommunicationsClass || classCode == DataClass;
    if (!communicates && classCode != AudioClass)
        return number;
    if (communicates) {
        if (const std::optional<quint32> first = FirstOfUnion(device, number))
            return *first;
    }
    const std::vector<Interface> interfaces = FreeInterfaces(device);
    auto at = std::find_if(interfaces.begin(), interfaces.end(),
                           [number](const Interface& one) { return one.number == number; });
    if (at == interfaces.end())
        return number;
    if (communicates) {
        // Captures without descriptors: the data stand behind what they belong to.
        const bool behind = classCode == DataClass && at != interfaces.begin() && !device.Has("descriptors") &&
                            (at - 1)->codes.classCode == CommunicationsClass;
        return behind ? (at - 1)->number : number;
    }
    while (at->codes.subclass != AudioControl) {
        if (at == interfaces.begin() || (at - 1)->codes.classCode != AudioClass)
            return number;
        --at;
    }
    return at->number;
}

} // namespace pnp
