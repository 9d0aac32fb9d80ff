// Drives that have no SCSI device: NVMe controllers, and what is found among the block devices only, which are disks of
// virtual machines, NVMe disks on kernels without their class, and floppy drives.
#include "pnp/bus_reader.h"
#include "pnp/class_table.h"
#include "pnp/disk_ids.h"
#include "pnp/identity.h"
#include "pnp/problem.h"

#include <algorithm>
#include <optional>

namespace pnp {

namespace {

const QString Scsi = QStringLiteral("SCSI\\");

struct VirtualDisk {
    const char* prefix;
    const char16_t* vendor;
    const char16_t* product;
    const char16_t* revision;
};

// As the guest drivers of their makers name them.
constexpr VirtualDisk VirtualDisks[] = {
    {"vd", u"Red Hat", u"VirtIO", u"0001"},
    {"xvd", u"XENSRC", u"PVDISK", u"2.0"},
};

// "vda", "vdaa", yet not "vda1".
const VirtualDisk* FindVirtualDisk(const std::string& name) {
    for (const VirtualDisk& row : VirtualDisks) {
        const std::string prefix = row.prefix;
        if (name.size() > prefix.size() && name.starts_with(prefix) &&
            std::all_of(name.begin() + long(prefix.size()), name.end(), [](char c) { return c >= 'a' && c <= 'z'; }))
            return &row;
    }
    return nullptr;
}

// The controller's name in that of a whole namespace ("nvme0" in "nvme0n1"); empty for partitions and others.
std::string NvmeController(const std::string& name) {
    const std::size_t split = name.find('n', 1);
    const bool whole =
        split != std::string::npos && IsNumbered(name.substr(0, split), "nvme") && AllDigits(name.substr(split + 1));
    return whole ? name.substr(0, split) : std::string();
}

std::string BlockFolder(const Context& context) {
    return context.Files().Has("/class/block") ? "/class/block" : "/block";
}

// Kernels before 4.4 have no class of controllers; then the first namespace stands for its controller.
std::vector<std::string> ListNvme(const Context& context) {
    if (context.Files().Has("/class/nvme"))
        return ListEntries(context, "/class/nvme");
    std::vector<std::string> disks;
    std::string last;
    for (const std::string& path : ListEntries(context, BlockFolder(context))) {
        const std::string controller = NvmeController(LastComponent(path));
        if (!controller.empty() && controller != last)
            disks.push_back(path);
        if (!controller.empty())
            last = controller;
    }
    return disks;
}

void ReadNvme(Context& context, const std::string& entry, std::vector<Device>& devices) {
    // A namespace may stand below its controller.
    const std::string above = ParentPath(entry);
    const bool isNamespace = !NvmeController(LastComponent(entry)).empty();
    const std::string path = isNamespace && IsNumbered(LastComponent(above), "nvme") ? above : entry;
    const Node node = context.At(path);
    // Controllers over a network have nothing in this machine.
    if (!node.Exists() || path.find("/virtual/") != std::string::npos)
        return;
    const QString firmware = node.Field("firmware_rev");
    const Inquiry inquiry{NvmeVendor, node.Field("model"), firmware};
    std::string owner = PciFolder(path);
    if (owner.empty())
        owner = ParentPath(ParentPath(path));
    Device device;
    device.instancePath = DriveInstance(Scsi, DiskType(), inquiry) + QLatin1Char('\\') +
                          InstanceSuffix(TreeLevel(owner) + 1, context.Stable(owner), QStringLiteral("000000"));
    const QString model = inquiry.product.trimmed();
    if (!model.isEmpty()) {
        const QString whole = QStringLiteral("SCSI\\Disk") + IdField(NvmeVendor, 8) + IdField(inquiry.product, 40);
        device.hardwareIds.append(whole + IdField(firmware, 8));
        device.hardwareIds.append(whole);
        TakeInquiryIds(Scsi, DiskType(), inquiry, device);
    }
    device.name = model.isEmpty() ? QStringLiteral("NVMe disk drive") : model;
    device.manufacturer = QString::fromUtf16(DiskType().maker);
    device.classGuid = QString::fromUtf16(DiskType().guid);
    // The controller's driver is the disk's as well.
    context.TakeDriver(node.Ancestor(owner), device);
    TakeProblem(context, node, {}, false, device);
    if (node.Word("state") == "dead")
        Overrule(device, problem::Reported);
    devices.push_back(std::move(device));
}

std::vector<std::string> ListBlock(const Context& context) {
    std::vector<std::string> drives = ListEntries(context, BlockFolder(context));
    std::erase_if(drives, [](const std::string& path) {
        const std::string name = LastComponent(path);
        return FindVirtualDisk(name) == nullptr && !IsNumbered(name, "fd");
    });
    return drives;
}

void ReadFloppy(const std::string& path, const std::string& place, Device& device) {
    // All floppy drives have the one ID, so that it tells no product.
    const QString drive = QStringLiteral("FDC\\GENERIC_FLOPPY_DRIVE");
    device.instancePath =
        drive + QLatin1Char('\\') +
        InstanceSuffix(TreeLevel(place) + 1, place, QString::fromStdString(LastComponent(path).substr(2)));
    device.name = QStringLiteral("Floppy disk drive");
    device.manufacturer = QStringLiteral("(Standard floppy disk drives)");
    device.classGuid = QString::fromUtf16(class_guid::FloppyDisk);
}

// ".../0000:00:04.0/virtio1/block/vda", ".../platform/floppy.0/block/fd0"
void ReadBlock(Context& context, const std::string& path, std::vector<Device>& devices) {
    const Node node = context.At(path);
    const std::string owner = LastComponent(ParentPath(path)) == "block" ? ParentPath(ParentPath(path)) : std::string();
    if (!node.Exists() || owner.empty() || owner.find("/virtual") != std::string::npos)
        return;
    // Numbers of virtual devices are counted up as they come.
    std::string above = PciFolder(path);
    if (above.empty())
        above = IsNumbered(LastComponent(owner), "virtio") ? ParentPath(owner) : owner;
    const std::string place = context.Stable(above);
    Device device;
    if (const VirtualDisk* disk = FindVirtualDisk(node.Name())) {
        const Inquiry inquiry{QString::fromUtf16(disk->vendor), QString::fromUtf16(disk->product),
                              QString::fromUtf16(disk->revision)};
        device.instancePath = DriveInstance(Scsi, DiskType(), inquiry) + QLatin1Char('\\') +
                              InstanceSuffix(TreeLevel(above) + 1, place, QStringLiteral("000000"));
        TakeInquiryIds(Scsi, DiskType(), inquiry, device);
        device.name = DriveName(inquiry, DiskType());
        device.manufacturer = inquiry.vendor;
        device.classGuid = QString::fromUtf16(DiskType().guid);
    } else {
        ReadFloppy(path, place, device);
    }
    context.TakeDriver(node.Ancestor(owner), device);
    TakeProblem(context, node.Ancestor(owner), node.Ancestor(owner).Modalias(), true, device);
    devices.push_back(std::move(device));
}

} // namespace

BusReader NvmeReader() { return {ListNvme, ReadNvme}; }
BusReader BlockReader() { return {ListBlock, ReadBlock}; }

} // namespace pnp
