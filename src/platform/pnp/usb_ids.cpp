#include "pnp/usb_ids.h"

#include <QStringList>

namespace pnp {

namespace {

struct CodeKeys {
    // In front of "Class", "SubClass" and "Protocol".
    const char* attribute;
    // In front of "c", "sc" and "p" in "usb:v046DpC52Bd1201dcEFdsc02dp01ic03isc01ip01in00".
    const char* alias;
    const char* uevent;
};

constexpr CodeKeys DeviceKeys{"bDevice", "d", "TYPE"};
constexpr CodeKeys InterfaceKeys{"bInterface", "i", "INTERFACE"};

std::optional<UsbCodes> ReadCodes(const Node& node, const CodeKeys& keys) {
    const std::string prefix = keys.attribute;
    const std::optional<quint32> code = node.Hex(prefix + "Class");
    if (code)
        return UsbCodes{*code, node.Hex(prefix + "SubClass").value_or(0), node.Hex(prefix + "Protocol").value_or(0)};
    const QStringList parts = QString::fromStdString(node.Uevent(keys.uevent)).split(QLatin1Char('/'));
    if (parts.size() == 3)
        return UsbCodes{parts[0].toUInt(), parts[1].toUInt(), parts[2].toUInt()};
    const std::string alias = node.Modalias();
    const std::size_t found = alias.find(std::string(keys.alias) + "c");
    if (!alias.starts_with("usb:") || found == std::string::npos || found + 13 > alias.size())
        return std::nullopt;
    const auto field = [&](std::size_t offset) { return ParseHex(alias.substr(found + offset, 2)).value_or(0); };
    return UsbCodes{field(2), field(7), field(11)};
}

} // namespace

UsbIds ReadUsbIds(const Node& node, const std::string& alias) {
    UsbIds ids{node.Hex("idVendor"), node.Hex("idProduct"), node.Hex("bcdDevice")};
    if (!ids.vendor || !ids.product) {
        // PRODUCT=46d/c52b/1201
        const QStringList parts = QString::fromStdString(node.Uevent("PRODUCT")).split(QLatin1Char('/'));
        if (parts.size() == 3) {
            ids.vendor = ParseHex(parts[0].toStdString());
            ids.product = ParseHex(parts[1].toStdString());
            ids.revision = ParseHex(parts[2].toStdString());
        }
    }
    if ((!ids.vendor || !ids.product) && alias.starts_with("usb:v") && alias.size() >= 19) {
        ids.vendor = ParseHex(alias.substr(5, 4));
        ids.product = ParseHex(alias.substr(10, 4));
        ids.revision = ParseHex(alias.substr(15, 4));
    }
    return ids;
}

UsbCodes DeviceCodes(const Node& device) { return ReadCodes(device, DeviceKeys).value_or(UsbCodes{0, 0, 0}); }

std::optional<UsbCodes> InterfaceCodes(const Node& interface) { return ReadCodes(interface, InterfaceKeys); }

std::vector<std::string> InterfacesOf(const Node& device) {
    std::vector<std::string> names;
    const std::string start = device.Name() + ":";
    for (const std::string& name : device.List()) {
        if (name.starts_with(start))
            names.push_back(name);
    }
    return names;
}

bool IsComposite(const Node& device, const std::vector<std::string>& interfaces) {
    const UsbCodes codes = DeviceCodes(device);
    const bool leavesClass =
        codes.classCode == 0 || (codes.classCode == 0xEF && codes.subclass == 2 && codes.protocol == 1);
    const std::optional<quint32> count = device.Decimal("bNumInterfaces");
    return leavesClass && (count ? *count > 1 : interfaces.size() > 1);
}

std::optional<quint32> UsbInterfaceNumber(const Node& interface) {
    const std::optional<quint32> number = interface.Hex("bInterfaceNumber");
    if (number)
        return number;
    // "1-2:1.10"
    const std::string name = interface.Name();
    return name.find(':') == std::string::npos ? std::nullopt : ParseDecimal(name.substr(name.rfind('.') + 1));
}

} // namespace pnp
