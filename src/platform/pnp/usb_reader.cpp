// USB devices, root hubs, the interfaces of composite devices, and what failed at a port.
#include "pnp/bus_reader.h"
#include "pnp/class_table.h"
#include "pnp/identity.h"
#include "pnp/pci_function.h"
#include "pnp/problem.h"
#include "pnp/usb_class.h"
#include "pnp/usb_functions.h"
#include "pnp/usb_ids.h"

namespace pnp {

namespace {

constexpr quint32 HubClass = 0x09;

bool IsRootHub(const std::string& name) { return name.starts_with("usb"); }

QString IdPrefix(const UsbIds& ids) {
    return QStringLiteral("USB\\VID_%1&PID_%2")
        .arg(Hex(ids.vendor.value_or(0) & 0xFFFF, 4), Hex(ids.product.value_or(0) & 0xFFFF, 4));
}

QString Revision(const UsbIds& ids) {
    return ids.revision ? QStringLiteral("&REV_") + Hex(*ids.revision & 0xFFFF, 4) : QString();
}

void TakeNames(Context& context, const Node& device, const UsbIds& ids, Device& record) {
    record.name = device.Text("product");
    record.manufacturer = device.Text("manufacturer");
    if (!ids.vendor || !ids.product)
        return;
    if (record.name.isEmpty())
        record.name = context.UsbIds().DeviceName(quint16(*ids.vendor), quint16(*ids.product));
    if (record.manufacturer.isEmpty())
        record.manufacturer = context.UsbIds().VendorName(quint16(*ids.vendor));
}

// "4&hash&0&0" below the controller, by whose IDs the hub is known.
void ReadRootHub(Context& context, const Node& node, std::vector<Device>& devices) {
    Device device;
    const quint32 generation = node.Hex("idProduct").value_or(2);
    const QString kind = generation >= 3   ? QStringLiteral("USB\\ROOT_HUB30")
                         : generation == 2 ? QStringLiteral("USB\\ROOT_HUB20")
                                           : QStringLiteral("USB\\ROOT_HUB");
    const Node controller = node.Ancestor(PciFolder(node.Path()));
    const std::string parent = context.Stable(ParentPath(node.Path()));
    device.instancePath =
        kind + QLatin1Char('\\') + InstanceSuffix(TreeLevel(node.Path()), parent, QStringLiteral("0"));
    device.alternativePath = device.instancePath + QLatin1Char('&') + Hex(StableHash(context.Stable(node.Path())), 8);
    const PciFunction function = controller.Path().empty() ? PciFunction() : ReadPciFunction(controller);
    if (function.vendor && function.device) {
        const QString ids =
            kind + QStringLiteral("&VID%1&PID%2").arg(Hex(*function.vendor, 4), Hex(*function.device, 4));
        if (function.revision)
            device.hardwareIds.append(ids + QStringLiteral("&REV") + Hex(*function.revision, 4));
        device.hardwareIds.append(ids);
    }
    device.hardwareIds.append(kind);
    device.name = QStringLiteral("USB Root Hub");
    device.manufacturer = QStringLiteral("(Standard USB Host Controller)");
    device.classGuid = QString::fromUtf16(class_guid::Usb);
    context.TakeDriver(node, device);
    TakeProblem(context, node, node.Modalias(), false, device);
    devices.push_back(std::move(device));
}

void TakeFunction(Context& context, const Node& functional, const UsbFunction& function, Device& device) {
    context.TakeDriver(functional, device);
    const char16_t* guid = UsbSetupClass(function, functional);
    if (guid == nullptr && !device.service.isEmpty())
        guid = class_guid::Usb;
    if (guid != nullptr)
        device.classGuid = QString::fromUtf16(guid);
    if (device.name.isEmpty())
        device.name = UsbClassName(function);
}

// Codes of a device that say less than those of its first interface: none, communications, miscellaneous, the vendor's.
bool LeavesDetails(quint32 classCode) {
    return classCode == 0x00 || classCode == 0x02 || classCode == 0xEF || classCode == 0xFF;
}

// A device of one function is what its first interface is, and does as well as that interface's driver.
void ReadSingleFunction(Context& context, const Node& node, const std::vector<std::string>& interfaces,
                        const UsbIds& ids, Device& device) {
    const UsbCodes own = DeviceCodes(node);
    Node functional = node;
    UsbCodes codes = own;
    if (!interfaces.empty()) {
        functional = node.Child(interfaces.front());
        const std::optional<UsbCodes> first = InterfaceCodes(functional);
        if (first && LeavesDetails(own.classCode))
            codes = *first;
    }
    const UsbFunction function{codes.classCode, codes.subclass, codes.protocol, ids.vendor.value_or(0), device.name};
    TakeFunction(context, functional, function, device);
    // A device that nobody configured has no interfaces to bind to.
    TakeProblem(context, node, functional.Modalias(), !UsbDrivenFromUserSpace(function), device);
    if (device.problemCode == problem::None && functional.Path() != node.Path())
        TakeProblem(context, functional, functional.Modalias(), !UsbDrivenFromUserSpace(function), device);
}

void ReadDevice(Context& context, const Node& node, std::vector<Device>& devices) {
    const std::vector<std::string> interfaces = InterfacesOf(node);
    UsbIds ids = ReadUsbIds(node, node.Modalias());
    // A bare folder is known by what its interface tells.
    if ((!ids.vendor || !ids.product) && !interfaces.empty())
        ids = ReadUsbIds(node.Child(interfaces.front()), node.Child(interfaces.front()).Modalias());
    Device device;
    const std::string name = node.Name();
    const std::size_t dot = name.find_last_of(".-");
    const QString port = PathText(CleanAttribute(name.substr(dot == std::string::npos ? 0 : dot + 1)));
    const QString byPlace = IdPrefix(ids) + QLatin1Char('\\') +
                            InstanceSuffix(TreeLevel(node.Path()), context.Stable(ParentPath(node.Path())), port);
    const QString serial = SerialText(node.Text("serial"));
    device.instancePath = serial.isEmpty() ? byPlace : IdPrefix(ids) + QLatin1Char('\\') + serial;
    if (!serial.isEmpty())
        device.alternativePath = byPlace;
    if (ids.vendor && ids.product) {
        if (ids.revision)
            device.hardwareIds.append(IdPrefix(ids) + Revision(ids));
        device.hardwareIds.append(IdPrefix(ids));
    }
    TakeNames(context, node, ids, device);

    const bool hub = DeviceCodes(node).classCode == HubClass;
    if (hub || IsComposite(node, interfaces)) {
        if (device.name.isEmpty())
            device.name = hub ? QStringLiteral("Generic USB Hub") : QStringLiteral("USB Composite Device");
        context.TakeDriver(hub && !interfaces.empty() ? node.Child(interfaces.front()) : node, device);
        device.classGuid = QString::fromUtf16(class_guid::Usb);
        TakeProblem(context, node, node.Modalias(), true, device);
    } else {
        ReadSingleFunction(context, node, interfaces, ids, device);
    }
    devices.push_back(std::move(device));
}

// Whether the device that is built in at a port stopped on its way to being configured. The kernel keeps no folder for
// such a device, yet the state that it had reached. It keeps that also when the device is pulled out, so that a socket
// tells nothing. A device that is being set up just now looks the same for some tenths of a second.
bool HoldsFailedDevice(const Node& port) {
    const std::string state = port.Word("state");
    return port.Word("connect_type") == "hardwired" && !port.Has("device") &&
           (state == "powered" || state == "default" || state == "addressed");
}

void ReadPorts(Context& context, const Node& interface, std::vector<Device>& devices) {
    const Node hub = interface.Parent();
    const std::string start = hub.Name() + "-port";
    for (const std::string& name : interface.List()) {
        if (!IsNumbered(name, start) || !HoldsFailedDevice(interface.Child(name)))
            continue;
        Device device;
        device.instancePath = QStringLiteral("USB\\VID_0000&PID_0002\\") +
                              InstanceSuffix(TreeLevel(hub.Path()) + 1, context.Stable(hub.Path()),
                                             QString::fromStdString(name.substr(start.size())));
        device.hardwareIds.append(QStringLiteral("USB\\DEVICE_DESCRIPTOR_FAILURE"));
        device.name = QStringLiteral("Unknown USB Device (Device Descriptor Request Failed)");
        device.manufacturer = QStringLiteral("(Standard USB Host Controller)");
        device.classGuid = QString::fromUtf16(class_guid::Usb);
        device.problemCode = problem::Reported;
        device.address = CleanAttribute(name);
        devices.push_back(std::move(device));
    }
}

// The functions of a composite device, each known by its first interface.
void ReadInterface(Context& context, const Node& node, std::vector<Device>& devices) {
    const Node parent = node.Parent();
    const std::string name = node.Name();
    const std::string owner = name.substr(0, name.find(':'));
    if (InterfaceCodes(node).value_or(UsbCodes{0, 0, 0}).classCode == HubClass)
        ReadPorts(context, node, devices);
    // A root hub's own interface ("1-0:1.0") is no function.
    if (owner.ends_with("-0"))
        return;
    // The parent can be gone already, or be a bare folder in a capture, while its interface is still listed; the
    // interface then speaks for itself.
    const bool orphan = parent.Name() != owner || !parent.Exists() || !context.Files().Has("/bus/usb/devices/" + owner);
    const std::string alias = node.Modalias();
    if (!orphan && !IsComposite(parent, InterfacesOf(parent)))
        return;
    UsbIds ids = ReadUsbIds(orphan ? node : parent, alias);
    if (!ids.vendor || !ids.product)
        ids = ReadUsbIds(node, alias);
    const std::optional<quint32> number = UsbInterfaceNumber(node);
    if (!number || !ids.vendor || !ids.product || FirstOfFunction(parent, node, *number) != *number)
        return;

    Device device;
    const QString part = QStringLiteral("&MI_") + Hex(*number & 0xFF, 2);
    device.instancePath = IdPrefix(ids) + part + QLatin1Char('\\') +
                          InstanceSuffix(TreeLevel(node.Path()), context.Stable(parent.Path()), Hex(*number & 0xFF, 4));
    if (ids.revision)
        device.hardwareIds.append(IdPrefix(ids) + Revision(ids) + part);
    device.hardwareIds.append(IdPrefix(ids) + part);
    const UsbCodes codes = InterfaceCodes(node).value_or(UsbCodes{0xFF, 0, 0});
    TakeNames(context, parent, ids, device);
    const UsbFunction function{codes.classCode, codes.subclass, codes.protocol, *ids.vendor, device.name};
    if (const QString own = node.Text("interface"); !own.isEmpty())
        device.name = own;
    TakeFunction(context, node, function, device);
    TakeProblem(context, node, alias, !UsbDrivenFromUserSpace(function), device);
    devices.push_back(std::move(device));
}

std::vector<std::string> ListUsb(const Context& context) { return ListEntries(context, "/bus/usb/devices"); }

void ReadUsb(Context& context, const std::string& path, std::vector<Device>& devices) {
    const Node node = context.At(path);
    if (!node.Exists())
        return;
    if (node.Name().find(':') != std::string::npos)
        ReadInterface(context, node, devices);
    else if (IsRootHub(node.Name()))
        ReadRootHub(context, node, devices);
    else
        ReadDevice(context, node, devices);
}

} // namespace

BusReader UsbReader() { return {ListUsb, ReadUsb}; }

} // namespace pnp
