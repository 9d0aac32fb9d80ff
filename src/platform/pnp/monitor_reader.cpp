// Monitors: display connectors that are connected and have an EDID.
#include "pnp/bus_reader.h"
#include "pnp/class_table.h"
#include "pnp/edid.h"
#include "pnp/identity.h"
#include "pnp/problem.h"

namespace pnp {

namespace {

constexpr std::size_t LongestEdid = 32768;

std::vector<std::string> ListMonitors(const Context& context) {
    std::vector<std::string> connectors;
    for (const std::string& path : ListEntries(context, "/class/drm")) {
        if (LastComponent(path).find('-') != std::string::npos)
            connectors.push_back(path);
    }
    return connectors;
}

void ReadMonitor(Context& context, const std::string& path, std::vector<Device>& devices) {
    const Node node = context.At(path);
    if (node.Word("status") != "connected")
        return;
    const std::string block = node.Bytes("edid", LongestEdid);
    // Connectors without one are padded as well when a tree is packed.
    if (block.find_first_not_of('\0') == std::string::npos)
        return;
    // "card0-HDMI-A-1": the card's number depends on the order of arrival, the connector's name does not.
    const std::string connector = node.Name().substr(node.Name().find('-') + 1);
    std::string adapter = PciFolder(path);
    if (adapter.empty())
        adapter = ParentPath(ParentPath(path));
    const QString instance = InstanceSuffix(TreeLevel(adapter) + 1, context.Stable(adapter),
                                            QStringLiteral("UID") + QString::number(StableHash(connector) & 0xFFFF));
    const std::optional<Edid> edid = ParseEdid(block);
    Device device;
    const bool known = edid && !edid->vendor.isEmpty();
    const QString model = known ? edid->vendor + Hex(edid->product, 4) : QStringLiteral("Default_Monitor");
    device.instancePath = QStringLiteral("DISPLAY\\") + model + QLatin1Char('\\') + instance;
    device.classGuid = QString::fromUtf16(class_guid::Monitor);
    device.name = edid ? edid->name : QString();
    if (device.name.isEmpty())
        device.name = QStringLiteral("Generic PnP Monitor");
    if (known) {
        device.hardwareIds.append(QStringLiteral("MONITOR\\") + model);
        device.manufacturer = context.PnpIds().VendorName(edid->vendor);
        if (device.manufacturer.isEmpty())
            device.manufacturer = edid->vendor;
    }
    TakeProblem(context, node, {}, false, device);
    devices.push_back(std::move(device));
}

} // namespace

BusReader MonitorReader() { return {ListMonitors, ReadMonitor}; }

} // namespace pnp
