// Drives: SCSI and ATA disks, optical drives and tapes, USB storage, NVMe controllers.
#include "pnp/bus_reader.h"
#include "pnp/class_table.h"
#include "pnp/identity.h"
#include "pnp/problem.h"

#include <algorithm>

namespace pnp {

namespace {

struct TypeRow {
    quint32 type;
    // In front of vendor and product, and behind them as the generic ID.
    const char16_t* kind;
    const char16_t* generic;
    const char16_t* guid;
    const char16_t* name;
};

// SCSI device types; all others (enclosures, controllers) are not listed.
constexpr TypeRow Types[] = {
    {0, u"Disk", u"GenDisk", class_guid::DiskDrive, u"Disk drive"},
    {1, u"Sequential", u"GenSequential", class_guid::TapeDrive, u"Tape drive"},
    {4, u"Worm", u"GenWorm", class_guid::Cdrom, u"Write-once drive"},
    {5, u"CdRom", u"GenCdRom", class_guid::Cdrom, u"CD-ROM Drive"},
    {7, u"Optical", u"GenOptical", class_guid::DiskDrive, u"Optical disk drive"},
    {14, u"Disk", u"GenDisk", class_guid::DiskDrive, u"Disk drive"},
};

const TypeRow* FindType(quint32 type) {
    const auto found =
        std::find_if(std::begin(Types), std::end(Types), [type](const TypeRow& row) { return row.type == type; });
    return found == std::end(Types) ? nullptr : found;
}

const QString NvmeVendor = QStringLiteral("NVMe");

struct Inquiry {
    QString vendor;
    QString product;
    QString revision;
};

// kind + vendor 8 + product 16 + revision 4; then shorter; then without the kind and with one character of the
// revision.
void TakeInquiryIds(const QString& bus, const TypeRow& type, const Inquiry& inquiry, Device& device) {
    const QString vendor = IdField(inquiry.vendor, 8);
    const QString product = vendor + IdField(inquiry.product, 16);
    const QString kind = bus + QString::fromUtf16(type.kind);
    device.hardwareIds.append(kind + product + IdField(inquiry.revision, 4));
    device.hardwareIds.append(kind + product);
    // Neither an empty vendor nor the name of the protocol tells a product.
    if (!inquiry.vendor.isEmpty() && inquiry.vendor != NvmeVendor)
        device.hardwareIds.append(kind + vendor);
    device.hardwareIds.append(bus + product + IdField(inquiry.revision, 1));
    device.hardwareIds.append(product + IdField(inquiry.revision, 1));
    device.hardwareIds.append(QString::fromUtf16(type.generic));
}

QString InstanceBase(const QString& bus, const TypeRow& type, const QString& vendor, const QString& product) {
    return bus + QString::fromUtf16(type.kind) + QStringLiteral("&Ven_") + PathText(vendor.left(8)) +
           QStringLiteral("&Prod_") + PathText(product.left(16));
}

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

QString DriveName(const Inquiry& inquiry, const TypeRow& type) {
    const QString name = (inquiry.vendor + QLatin1Char(' ') + inquiry.product).trimmed();
    return name.isEmpty() ? QString::fromUtf16(type.name) : name;
}

void ReadScsi(Context& context, const std::string& path, std::vector<Device>& devices) {
    const Node node = context.At(path);
    const std::optional<ScsiAddress> address = ParseAddress(node.Name());
    std::optional<quint32> number = node.Decimal("type");
    const std::string aliasStart = "scsi:t-0x";
    if (const std::string alias = node.Modalias(); !number && alias.starts_with(aliasStart))
        number = ParseHex(alias.substr(aliasStart.size()));
    const TypeRow* type = number ? FindType(*number) : nullptr;
    if (!address || type == nullptr)
        return;
    // The translation of ATA commands puts "ATA" where a vendor would stand; the model then begins with the maker.
    Inquiry inquiry{node.Text("vendor"), node.Text("model"), node.Text("rev")};
    if (inquiry.vendor == QStringLiteral("ATA"))
        inquiry.vendor.clear();

    Device device;
    const std::string usb = UsbDevice(path);
    const HostPlace host = FindHost(context, path);
    const quint32 hostPath = host.path != 0 ? host.path : address->channel;
    const QString place =
        InstanceSuffix(TreeLevel(host.owner) + 1, context.Stable(host.owner),
                       Hex(hostPath & 0xFF, 2) + Hex(address->target & 0xFF, 2) + Hex(address->unit & 0xFF, 2));
    if (usb.empty()) {
        device.instancePath =
            InstanceBase(QStringLiteral("SCSI\\"), *type, inquiry.vendor, inquiry.product) + QLatin1Char('\\') + place;
    } else {
        const QString base = InstanceBase(QStringLiteral("USBSTOR\\"), *type, inquiry.vendor, inquiry.product) +
                             QStringLiteral("&Rev_") + PathText(inquiry.revision.left(4)) + QLatin1Char('\\');
        const QString serial = SerialText(node.Ancestor(usb).Text("serial"));
        device.alternativePath = base + place;
        device.instancePath = serial.isEmpty() ? device.alternativePath
                                               : base + serial + QLatin1Char('&') + QString::number(address->unit);
    }
    if (!inquiry.product.isEmpty())
        TakeInquiryIds(usb.empty() ? QStringLiteral("SCSI\\") : QStringLiteral("USBSTOR\\"), *type, inquiry, device);
    device.name = DriveName(inquiry, *type);
    device.manufacturer = inquiry.vendor.isEmpty() ? QStringLiteral("(Standard disk drives)") : inquiry.vendor;
    if (inquiry.vendor.isEmpty() && type->guid == class_guid::Cdrom)
        device.manufacturer = QStringLiteral("(Standard CD-ROM drives)");
    device.classGuid = QString::fromUtf16(type->guid);
    context.TakeDriver(node, device);
    TakeProblem(context, node, node.Modalias(), true, device);
    if (node.Word("state") == "offline")
        Overrule(device, problem::Reported);
    devices.push_back(std::move(device));
}

std::vector<std::string> ListNvme(const Context& context) { return ListEntries(context, "/class/nvme"); }

void ReadNvme(Context& context, const std::string& path, std::vector<Device>& devices) {
    const Node node = context.At(path);
    // Controllers over a network have nothing in this machine.
    if (!node.Exists() || path.find("/virtual/") != std::string::npos)
        return;
    const QString model = node.Text("model");
    const QString firmware = node.Text("firmware_rev");
    const TypeRow& type = Types[0];
    const Inquiry inquiry{NvmeVendor, model, firmware};
    std::string owner = PciFolder(path);
    if (owner.empty())
        owner = ParentPath(ParentPath(path));
    Device device;
    device.instancePath = InstanceBase(QStringLiteral("SCSI\\"), type, inquiry.vendor, model) + QLatin1Char('\\') +
                          InstanceSuffix(TreeLevel(owner) + 1, context.Stable(owner), QStringLiteral("000000"));
    if (!model.isEmpty()) {
        const QString whole = QStringLiteral("SCSI\\Disk") + IdField(inquiry.vendor, 8) + IdField(model, 40);
        device.hardwareIds.append(whole + IdField(firmware, 8));
        device.hardwareIds.append(whole);
        TakeInquiryIds(QStringLiteral("SCSI\\"), type, inquiry, device);
    }
    device.name = model.isEmpty() ? QStringLiteral("NVMe disk drive") : model;
    device.manufacturer = QStringLiteral("(Standard disk drives)");
    device.classGuid = QString::fromUtf16(type.guid);
    // The controller's driver is the disk's as well.
    context.TakeDriver(node.Ancestor(owner), device);
    TakeProblem(context, node, {}, false, device);
    if (node.Word("state") == "dead")
        Overrule(device, problem::Reported);
    devices.push_back(std::move(device));
}

} // namespace

BusReader ScsiReader() { return {ListScsi, ReadScsi}; }
BusReader NvmeReader() { return {ListNvme, ReadNvme}; }

} // namespace pnp
