#include "pnp/pci_function.h"

#include <tuple>
#include <utility>

namespace pnp {

namespace {

// The digits behind `key` in a modalias ("pci:v00008086d000027A0sv000017AAsd00002015bc06sc00i00").
std::optional<quint32> AliasField(const std::string& alias, const std::string& key, std::size_t digits) {
    const std::size_t found = alias.find(key);
    return found == std::string::npos ? std::nullopt : ParseHex(alias.substr(found + key.size(), digits));
}

// Two numbers parted by a colon, as in PCI_ID=8086:27A0.
std::pair<std::optional<quint32>, std::optional<quint32>> Pair(const std::string& text) {
    const std::size_t colon = text.find(':');
    if (colon == std::string::npos)
        return {};
    return {ParseHex(text.substr(0, colon)), ParseHex(text.substr(colon + 1))};
}

quint32 ConfigWord(const std::string& config, std::size_t offset) {
    return quint32(static_cast<unsigned char>(config[offset])) | quint32(static_cast<unsigned char>(config[offset + 1]))
                                                                     << 8;
}

void ReadSubsystem(const Node& node, const std::string& alias, const std::string& config, PciFunction& function) {
    std::optional<quint32> vendor = node.Hex("subsystem_vendor");
    std::optional<quint32> device = node.Hex("subsystem_device");
    if (!vendor || !device)
        std::tie(vendor, device) = Pair(node.Uevent("PCI_SUBSYS_ID"));
    if ((!vendor || !device) && alias.starts_with("pci:v")) {
        vendor = AliasField(alias, "sv", 8);
        device = AliasField(alias, "sd", 8);
    }
    // Bridges keep other things at these offsets.
    const bool ordinary = config.size() >= 64 && (config[0x0e] & 0x7f) == 0;
    if ((!vendor || !device) && ordinary) {
        vendor = ConfigWord(config, 0x2c);
        device = ConfigWord(config, 0x2e);
    }
    function.subsystemVendor = vendor.value_or(0) & 0xFFFF;
    function.subsystemDevice = device.value_or(0) & 0xFFFF;
}

} // namespace

PciFunction ReadPciFunction(const Node& node) {
    PciFunction function;
    function.vendor = node.Hex("vendor");
    function.device = node.Hex("device");
    function.classCode = node.Hex("class");
    function.revision = node.Hex("revision");
    const std::string alias = node.Modalias();
    const std::string config =
        function.revision && node.Has("subsystem_device") ? std::string() : node.Bytes("config", 64);
    if (!function.vendor || !function.device)
        std::tie(function.vendor, function.device) = Pair(node.Uevent("PCI_ID"));
    if ((!function.vendor || !function.device) && alias.starts_with("pci:v")) {
        function.vendor = AliasField(alias, "pci:v", 8);
        // The first "d" behind the vendor, whose digits are in upper case.
        function.device = AliasField(alias, "d", 8);
    }
    if (!function.classCode)
        function.classCode = ParseHex(node.Uevent("PCI_CLASS"));
    if (!function.classCode && alias.find("bc") != std::string::npos) {
        const quint32 base = AliasField(alias, "bc", 2).value_or(0xFF);
        const quint32 subclass = AliasField(alias, "sc", 2).value_or(0);
        const quint32 interface = ParseHex(alias.substr(alias.rfind('i') + 1, 2)).value_or(0);
        function.classCode = base << 16 | subclass << 8 | interface;
    }
    if (!function.revision && config.size() >= 64)
        function.revision = static_cast<unsigned char>(config[8]);
    ReadSubsystem(node, alias, config, function);
    return function;
}

} // namespace pnp
