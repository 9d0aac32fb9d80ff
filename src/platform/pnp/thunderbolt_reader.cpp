// Thunderbolt and USB4 routers.
#include "pnp/bus_reader.h"
#include "pnp/class_table.h"
#include "pnp/identity.h"
#include "pnp/problem.h"

namespace pnp {

namespace {

// Routers are named "domain-route" ("0-0", "0-301"); domains, retimers and services have other forms.
bool IsRouter(const std::string& name) {
    const std::size_t dash = name.find('-');
    return dash != std::string::npos && ParseDecimal(name.substr(0, dash)) && ParseHex(name.substr(dash + 1));
}

std::vector<std::string> ListRouters(const Context& context) {
    std::vector<std::string> routers;
    for (const std::string& path : ListEntries(context, "/bus/thunderbolt/devices")) {
        if (IsRouter(LastComponent(path)))
            routers.push_back(path);
    }
    return routers;
}

void ReadRouter(Context& context, const std::string& path, std::vector<Device>& devices) {
    const Node node = context.At(path);
    if (!node.Exists())
        return;
    const std::string route = node.Name().substr(node.Name().find('-') + 1);
    const bool host = route == "0";
    const std::optional<quint32> vendor = node.Hex("vendor");
    const std::optional<quint32> product = node.Hex("device");
    Device device;
    const QString ids =
        QStringLiteral("VID_%1&PID_%2").arg(Hex(vendor.value_or(0) & 0xFFFF, 4), Hex(product.value_or(0) & 0xFFFF, 4));
    const QString base = host ? QStringLiteral("USB4\\ROOT_DEVICE_ROUTER&") + ids : QStringLiteral("USB4\\") + ids;
    const QString byPlace =
        base + QLatin1Char('\\') +
        InstanceSuffix(TreeLevel(path), context.Stable(PciFolder(path)), PathText(CleanAttribute(route)));
    const QString unique = SerialText(node.Text("unique_id"));
    device.instancePath = unique.isEmpty() ? byPlace : base + QLatin1Char('\\') + unique;
    device.alternativePath = byPlace;
    if (vendor && product)
        device.hardwareIds.append(base);
    device.name = node.Text("device_name");
    if (device.name.isEmpty())
        device.name = host ? QStringLiteral("USB4 Root Router") : QStringLiteral("USB4 Device Router");
    device.manufacturer = node.Text("vendor_name");
    if (device.manufacturer.isEmpty() && vendor)
        device.manufacturer = context.PciIds().VendorName(quint16(*vendor));
    device.classGuid = QString::fromUtf16(class_guid::Usb);
    context.TakeDriver(node, device);
    TakeProblem(context, node, node.Modalias(), false, device);
    devices.push_back(std::move(device));
}

} // namespace

BusReader ThunderboltReader() { return {ListRouters, ReadRouter}; }

} // namespace pnp
