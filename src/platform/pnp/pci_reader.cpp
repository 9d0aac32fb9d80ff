// PCI functions. A virtio device has no record of its own: its PCI function is the device, with the virtio driver.
#include "pnp/bus_reader.h"
#include "pnp/class_table.h"
#include "pnp/identity.h"
#include "pnp/pci_class.h"
#include "pnp/pci_function.h"
#include "pnp/problem.h"

namespace pnp {

namespace {

constexpr quint32 VirtioVendor = 0x1AF4;

// Own address first, then each bridge's on the way up: device number and function in one byte.
QString Location(const std::string& path) {
    QString location;
    const std::vector<std::string> parts = Components(path);
    for (auto part = parts.rbegin(); part != parts.rend(); ++part) {
        if (!IsPciAddress(*part))
            continue;
        const std::size_t colon = part->find(':', part->find(':') + 1);
        const quint32 slot = ParseHex(part->substr(colon + 1, 2)).value_or(0);
        location += Hex((slot << 3 | quint32(part->back() - '0')) & 0xFF, 2);
    }
    return location;
}

void TakeIds(const PciFunction& function, Device& device) {
    if (!function.vendor || !function.device)
        return;
    const QString product =
        QStringLiteral("PCI\\VEN_%1&DEV_%2").arg(Hex(*function.vendor & 0xFFFF, 4), Hex(*function.device & 0xFFFF, 4));
    const QString subsystem =
        QStringLiteral("&SUBSYS_") + Hex(function.subsystemDevice, 4) + Hex(function.subsystemVendor, 4);
    const QString revision =
        function.revision ? QStringLiteral("&REV_") + Hex(*function.revision & 0xFF, 2) : QString();
    if (function.revision)
        device.hardwareIds.append(product + subsystem + revision);
    device.hardwareIds.append(product + subsystem);
    if (function.classCode) {
        const QString code = Hex(*function.classCode & 0xFFFFFF, 6);
        device.hardwareIds.append(product + QStringLiteral("&CC_") + code);
        device.hardwareIds.append(product + QStringLiteral("&CC_") + code.left(4));
    }
    if (function.revision)
        device.hardwareIds.append(product + revision);
    device.hardwareIds.append(product);
}

// The virtio device below a function, as a node; the function itself for all others.
Node FunctionalNode(const Node& node, const PciFunction& function) {
    if (function.vendor != VirtioVendor)
        return node;
    for (const std::string& name : node.List()) {
        if (IsNumbered(name, "virtio"))
            return node.Child(name);
    }
    return node;
}

const char16_t* SetupClassOf(const PciFunction& function) {
    if (function.vendor == VirtioVendor && function.device) {
        // Devices of the first generation tell the type by their subsystem.
        const quint32 type = *function.device >= 0x1040 ? *function.device - 0x1040 : function.subsystemDevice;
        if (const char16_t* guid = VirtioSetupClass(type))
            return guid;
    }
    return function.classCode ? PciSetupClass(*function.classCode) : nullptr;
}

void TakeNames(Context& context, const PciFunction& function, Device& device) {
    const quint32 classCode = function.classCode.value_or(0xFF0000);
    if (function.vendor && function.device) {
        device.name = context.PciIds().DeviceName(quint16(*function.vendor), quint16(*function.device));
        device.manufacturer = context.PciIds().VendorName(quint16(*function.vendor));
    }
    if (device.name.isEmpty())
        device.name = PciClassName(classCode);
}

std::vector<std::string> ListPci(const Context& context) { return ListEntries(context, "/bus/pci/devices"); }

void ReadPci(Context& context, const std::string& path, std::vector<Device>& devices) {
    const Node node = context.At(path);
    if (!node.Exists())
        return;
    const PciFunction function = ReadPciFunction(node);
    Device device;
    device.instancePath = QStringLiteral("PCI\\VEN_%1&DEV_%2&SUBSYS_%3%4&REV_%5\\")
                              .arg(Hex(function.vendor.value_or(0) & 0xFFFF, 4),
                                   Hex(function.device.value_or(0) & 0xFFFF, 4), Hex(function.subsystemDevice, 4),
                                   Hex(function.subsystemVendor, 4), Hex(function.revision.value_or(0) & 0xFF, 2)) +
                          InstanceSuffix(TreeLevel(path), context.Stable(ParentPath(path)), Location(path));
    TakeIds(function, device);
    TakeNames(context, function, device);

    const Node functional = FunctionalNode(node, function);
    context.TakeDriver(functional, device);
    const quint32 vendor = function.vendor.value_or(0);
    TakeProblem(context, node, functional.Modalias(),
                !function.classCode || PciNeedsDriver(*function.classCode, vendor), device);
    // What has a problem shall not vanish among them.
    if (function.classCode && device.problemCode == problem::None &&
        IsStandardSystemFunction(*function.classCode, vendor))
        device.manufacturer = StandardSystemDevices();

    const char16_t* guid = SetupClassOf(function);
    if (guid == nullptr && !device.service.isEmpty())
        guid = class_guid::System;
    if (guid != nullptr)
        device.classGuid = QString::fromUtf16(guid);
    devices.push_back(std::move(device));
}

} // namespace

BusReader PciReader() { return {ListPci, ReadPci}; }

} // namespace pnp
