// Devices on FireWire: the units of a node, or the node itself where it has none. The node that is the computer's own
// end is its controller, listed with the PCI functions.
#include "pnp/bus_reader.h"
#include "pnp/class_table.h"
#include "pnp/identity.h"
#include "pnp/problem.h"

namespace pnp {

namespace {

struct UnitRow {
    // Who wrote the unit's protocol.
    quint32 specifier;
    const char16_t* guid;
    const char16_t* name;
    // False for what programs drive by themselves.
    bool needsDriver;
};

constexpr UnitRow Units[] = {
    {0x00005e, class_guid::Net, u"IP over 1394 Device", true},
    {0x00609e, class_guid::System, u"SBP2 IEEE 1394 Device", true},
    {0x00a02d, class_guid::Image, u"IEEE 1394 Digital Camera", false},
};

std::vector<std::string> ListFireWire(const Context& context) { return ListEntries(context, "/bus/firewire/devices"); }

bool HasUnits(const Node& node) {
    for (const std::string& name : node.List()) {
        if (name.starts_with(node.Name() + "."))
            return true;
    }
    return false;
}

QString OwnOr(const Node& unit, const Node& node, const std::string& attribute) {
    const QString own = unit.Text(attribute);
    return own.isEmpty() ? node.Text(attribute) : own;
}

void ReadFireWire(Context& context, const std::string& path, std::vector<Device>& devices) {
    const Node unit = context.At(path);
    const bool isUnit = unit.Name().find('.') != std::string::npos;
    const Node node = isUnit ? unit.Parent() : unit;
    if (!unit.Exists() || node.Word("is_local") == "1" || (!isUnit && HasUnits(node)))
        return;
    const QString vendor = OwnOr(unit, node, "vendor_name");
    const QString model = OwnOr(unit, node, "model_name");
    Device device;
    const bool named = !vendor.isEmpty() && !model.isEmpty();
    const QString product =
        QStringLiteral("1394\\") +
        (named ? PathText(vendor) + QLatin1Char('&') + PathText(model)
               : Hex(node.Hex("vendor").value_or(0), 6) + QLatin1Char('&') + Hex(node.Hex("model").value_or(0), 6));
    if (named)
        device.hardwareIds.append(product);
    const std::string controller = PciFolder(path).empty() ? ParentPath(path) : PciFolder(path);
    device.alternativePath =
        product + QLatin1Char('\\') +
        InstanceSuffix(TreeLevel(controller) + 1, context.Stable(controller), PathText(CleanAttribute(unit.Name())));
    const QString guid = SerialText(node.Text("guid").toUpper().remove(QStringLiteral("0X")));
    device.instancePath = guid.isEmpty() ? device.alternativePath : product + QLatin1Char('\\') + guid;
    device.name = model;
    device.manufacturer = vendor;
    context.TakeDriver(unit, device);
    bool needsDriver = isUnit;
    for (const UnitRow& row : Units) {
        if (unit.Hex("specifier_id") != row.specifier)
            continue;
        device.classGuid = QString::fromUtf16(row.guid);
        needsDriver = row.needsDriver;
        if (device.name.isEmpty())
            device.name = QString::fromUtf16(row.name);
    }
    if (device.name.isEmpty())
        device.name = QStringLiteral("IEEE 1394 Device");
    if (device.classGuid.isEmpty() && !device.service.isEmpty())
        device.classGuid = QString::fromUtf16(class_guid::System);
    TakeProblem(context, unit, unit.Modalias(), needsDriver, device);
    devices.push_back(std::move(device));
}

} // namespace

BusReader FireWireReader() { return {ListFireWire, ReadFireWire}; }

} // namespace pnp
