// Devices that are software only: virtual network interfaces, and platform devices that no firmware describes.
#include "pnp/bus_reader.h"
#include "pnp/class_table.h"
#include "pnp/identity.h"
#include "pnp/problem.h"

namespace pnp {

namespace {

constexpr const char* VirtualNet = "/devices/virtual/net/";

std::vector<std::string> ListNet(const Context& context) { return ListEntries(context, "/class/net"); }

void ReadNet(Context& context, const std::string& path, std::vector<Device>& devices) {
    const Node node = context.At(path);
    // All others belong to the device they stand below.
    if (!node.Exists() || !path.starts_with(VirtualNet))
        return;
    Device device;
    const QString name = CleanAttribute(node.Name());
    device.instancePath = QStringLiteral("SWD\\NET\\") + PathText(name);
    device.alternativePath = device.instancePath + QLatin1Char('&') + Hex(StableHash(path), 8);
    device.name = name + QStringLiteral(" (virtual network interface)");
    device.classGuid = QString::fromUtf16(class_guid::Net);
    devices.push_back(std::move(device));
}

std::vector<std::string> ListPlatform(const Context& context) { return ListEntries(context, "/bus/platform/devices"); }

void ReadPlatform(Context& context, const std::string& path, std::vector<Device>& devices) {
    const Node node = context.At(path);
    // Those with a firmware node are listed by it; in partial captures it is known by the same name.
    // So are floppy drives by the block device below them.
    if (!node.Exists() || node.Has("firmware_node") || node.Has("block") ||
        context.Files().Has("/bus/acpi/devices/" + node.Name()))
        return;
    Device device;
    const QString name = CleanAttribute(node.Name());
    device.instancePath = QStringLiteral("ROOT\\") + PathText(name).toUpper() + QStringLiteral("\\0000");
    device.alternativePath = device.instancePath + QLatin1Char('&') + Hex(StableHash(path), 8);
    device.name = name;
    device.classGuid = QString::fromUtf16(class_guid::SoftwareDevice);
    context.TakeDriver(node, device);
    devices.push_back(std::move(device));
}

} // namespace

BusReader NetReader() { return {ListNet, ReadNet}; }
BusReader PlatformReader() { return {ListPlatform, ReadPlatform}; }

} // namespace pnp
