// Drives that the SCSI bus lists: SCSI and ATA disks, optical drives and tapes, USB storage, array controllers and
// enclosures.
#include "pnp/ata_identity.h"
#include "pnp/bus_reader.h"
#include "pnp/disk_ids.h"
#include "pnp/identity.h"
#include "pnp/problem.h"

namespace pnp {

namespace {

// The protocol of interfaces with USB attached SCSI.
constexpr quint32 AttachedScsi = 0x62;

// The device that owns the path's SCSI host, and the host's place among that device's hosts.
struct HostPlace {
    std::string owner;
    quint32 path = 0;
};

HostPlace FindHost(const Context& context, const std::string& path) {
    std::string folder = path;
    while (!folder.empty() && !IsNumbered(LastComponent(folder), "host"))
        folder = ParentPath(folder);
    if (folder.empty())
        return {ParentPath(path), 0};
    // ATA hosts stand below a port each: ".../0000:00:1f.2/ata1/host0".
    std::string counted = folder;
    const char* prefix = "host";
    if (IsNumbered(LastComponent(ParentPath(folder)), "ata")) {
        counted = ParentPath(folder);
        prefix = "ata";
    }
    HostPlace place{ParentPath(counted), 0};
    for (const std::string& name : context.Files().List(place.owner)) {
        if (name == LastComponent(counted))
            break;
        place.path += IsNumbered(name, prefix) ? 1 : 0;
    }
    return place;
}

// "0:0:1:0": host, channel, target, unit.
struct ScsiAddress {
    quint32 channel = 0;
    quint32 target = 0;
    quint32 unit = 0;
};

std::optional<ScsiAddress> ParseAddress(const std::string& name) {
    const QStringList parts = QString::fromStdString(name).split(QLatin1Char(':'));
    if (parts.size() != 4)
        return std::nullopt;
    bool numbers = true;
    quint32 values[4] = {};
    for (int i = 0; i < 4; ++i) {
        bool ok = false;
        values[i] = quint32(parts[i].toULongLong(&ok));
        numbers = numbers && ok;
    }
    return numbers ? std::optional(ScsiAddress{values[1], values[2], values[3]}) : std::nullopt;
}

// The USB device above a drive; empty for other drives.
std::string UsbDevice(const std::string& path) {
    for (std::string folder = path; !folder.empty(); folder = ParentPath(folder)) {
        const std::string name = LastComponent(folder);
        if (IsUsbPlace(name) && name.find(':') == std::string::npos)
            return folder;
    }
    return {};
}

std::vector<std::string> ListScsi(const Context& context) {
    std::vector<std::string> drives = ListEntries(context, "/bus/scsi/devices");
    std::erase_if(drives, [](const std::string& path) { return !ParseAddress(LastComponent(path)); });
    return drives;
}

// USB attached SCSI gives its drives to the SCSI stack; plain mass storage has a bus of its own. The driver tells, and
// without one the protocol of the interface.
bool IsUsbStorage(const Node& node, const std::string& usb) {
    if (usb.empty())
        return false;
    std::string folder = node.Path();
    while (ParentPath(folder) != usb)
        folder = ParentPath(folder);
    const Node interface = node.Ancestor(folder);
    std::string driver = interface.LinkName("driver");
    if (driver.empty())
        driver = interface.Uevent("DRIVER");
    return driver.empty() ? interface.Hex("bInterfaceProtocol") != AttachedScsi : driver != "uas";
}

void ReadScsi(Context& context, const std::string& path, std::vector<Device>& devices) {
    const Node node = context.At(path);
    const std::optional<ScsiAddress> address = ParseAddress(node.Name());
    std::optional<quint32> number = node.Decimal("type");
    const std::string aliasStart = "scsi:t-0x";
    if (const std::string alias = node.Modalias(); !number && alias.starts_with(aliasStart))
        number = ParseHex(alias.substr(aliasStart.size()));
    const DriveType* type = number ? FindDriveType(*number) : nullptr;
    if (!address || type == nullptr)
        return;
    Inquiry inquiry{node.Field("vendor"), node.Field("model"), node.Field("rev")};
    const std::string usb = UsbDevice(path);
    const bool storage = IsUsbStorage(node, usb);
    // The translation of ATA commands puts "ATA" where a vendor would stand. Enclosures on USB do that themselves.
    if (usb.empty() && inquiry.vendor == QStringLiteral("ATA"))
        inquiry = AtaInquiry(node, inquiry);

    Device device;
    const HostPlace host = FindHost(context, path);
    const quint32 hostPath = host.path != 0 ? host.path : address->channel;
    const QString place =
        InstanceSuffix(TreeLevel(host.owner) + 1, context.Stable(host.owner),
                       Hex(hostPath & 0xFF, 2) + Hex(address->target & 0xFF, 2) + Hex(address->unit & 0xFF, 2));
    const QString bus = storage ? QStringLiteral("USBSTOR\\") : QStringLiteral("SCSI\\");
    QString base = DriveInstance(bus, *type, inquiry);
    if (storage)
        base += QStringLiteral("&Rev_") + PathField(inquiry.revision, 4);
    device.instancePath = base + QLatin1Char('\\') + place;
    if (const QString serial = storage ? SerialText(node.Ancestor(usb).Text("serial")) : QString(); !serial.isEmpty()) {
        device.alternativePath = device.instancePath;
        device.instancePath = base + QLatin1Char('\\') + serial + QLatin1Char('&') + QString::number(address->unit);
    }
    if (!inquiry.product.isEmpty())
        TakeInquiryIds(bus, *type, inquiry, device);
    device.name = DriveName(inquiry, *type);
    device.manufacturer = inquiry.vendor.isEmpty() ? QString::fromUtf16(type->maker) : inquiry.vendor.trimmed();
    device.classGuid = QString::fromUtf16(type->guid);
    context.TakeDriver(node, device);
    TakeProblem(context, node, node.Modalias(), type->needsDriver, device);
    if (node.Word("state") == "offline")
        Overrule(device, problem::Reported);
    devices.push_back(std::move(device));
}

} // namespace

BusReader ScsiReader() { return {ListScsi, ReadScsi}; }

} // namespace pnp
