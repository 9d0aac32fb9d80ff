#include "pnp/disk_ids.h"

#include "pnp/class_table.h"
#include "pnp/identity.h"

#include <algorithm>

namespace pnp {

namespace {

using namespace class_guid;

constexpr char16_t StandardDisks[] = u"(Standard disk drives)";
constexpr char16_t StandardCdroms[] = u"(Standard CD-ROM drives)";

constexpr DriveType Types[] = {
    {0, u"Disk", u"GenDisk", DiskDrive, u"Disk drive", StandardDisks, true},
    {1, u"Sequential", u"", TapeDrive, u"Tape drive", u"", true},
    {4, u"Worm", u"", Cdrom, u"Write-once drive", StandardCdroms, true},
    {5, u"CdRom", u"GenCdRom", Cdrom, u"CD-ROM Drive", StandardCdroms, true},
    {7, u"Optical", u"", DiskDrive, u"Optical disk drive", StandardDisks, true},
    {12, u"Array", u"", ScsiAdapter, u"SCSI array controller", u"", false},
    {13, u"Enclosure", u"", System, u"SCSI enclosure", u"", false},
    {14, u"Disk", u"GenDisk", DiskDrive, u"Disk drive", StandardDisks, true},
};

const QString UsbStorage = QStringLiteral("USBSTOR\\");

} // namespace

const DriveType* FindDriveType(quint32 type) {
    const auto found =
        std::find_if(std::begin(Types), std::end(Types), [type](const DriveType& row) { return row.type == type; });
    return found == std::end(Types) ? nullptr : found;
}

const DriveType& DiskType() { return Types[0]; }

void TakeInquiryIds(const QString& bus, const DriveType& type, const Inquiry& inquiry, Device& device) {
    const QString vendor = IdField(inquiry.vendor, 8);
    const QString product = vendor + IdField(inquiry.product, 16);
    const QString kind = bus + QString::fromUtf16(type.kind);
    const QString generic = QString::fromUtf16(type.generic);
    if (!inquiry.productIsCut) {
        device.hardwareIds.append(kind + product + IdField(inquiry.revision, 4));
        device.hardwareIds.append(kind + product);
    }
    // Neither an empty vendor nor the name of the protocol tells a product.
    if (!inquiry.vendor.isEmpty() && inquiry.vendor != NvmeVendor)
        device.hardwareIds.append(kind + vendor);
    if (!inquiry.productIsCut) {
        device.hardwareIds.append(bus + product + IdField(inquiry.revision, 1));
        device.hardwareIds.append(product + IdField(inquiry.revision, 1));
    }
    if (bus == UsbStorage && !generic.isEmpty())
        device.hardwareIds.append(bus + generic);
    if (!generic.isEmpty())
        device.hardwareIds.append(generic);
}

QString DriveInstance(const QString& bus, const DriveType& type, const Inquiry& inquiry) {
    return bus + QString::fromUtf16(type.kind) + QStringLiteral("&Ven_") + PathField(inquiry.vendor, 8) +
           QStringLiteral("&Prod_") + PathField(inquiry.product, 16);
}

QString DriveName(const Inquiry& inquiry, const DriveType& type) {
    const QString name = (inquiry.vendor.trimmed() + QLatin1Char(' ') + inquiry.product.trimmed()).trimmed();
    return name.isEmpty() ? QString::fromUtf16(type.name) : name;
}

} // namespace pnp
