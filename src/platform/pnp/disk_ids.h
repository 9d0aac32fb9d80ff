// What drives are called: the kinds of SCSI devices, and the identifiers that are made of the fields of an inquiry.
#pragma once

#include "pnp/device.h"

namespace pnp {

struct DriveType {
    quint32 type;
    // In front of vendor and product, and behind them as the generic ID. Only such as are known to be generic have one.
    const char16_t* kind;
    const char16_t* generic;
    const char16_t* guid;
    const char16_t* name;
    // For drives without a vendor.
    const char16_t* maker;
    bool needsDriver;
};

// The row of a SCSI device type; null for types that are not listed.
const DriveType* FindDriveType(quint32 type);
// The row of plain disks.
const DriveType& DiskType();

// Fields of a fixed width: 8, 16 and 4 characters count. Blanks in front of a text are a part of it.
struct Inquiry {
    QString vendor;
    QString product;
    QString revision;
    // Whether the product's end is unknown. IDs that need it are left out then.
    bool productIsCut = false;
};

// "bus" is "SCSI\" or "USBSTOR\". From the whole of vendor, product and revision down to the generic ID.
void TakeInquiryIds(const QString& bus, const DriveType& type, const Inquiry& inquiry, Device& device);

// "SCSI\Disk&Ven_v&Prod_p"
QString DriveInstance(const QString& bus, const DriveType& type, const Inquiry& inquiry);

// Vendor and product, else what such a drive is called.
QString DriveName(const Inquiry& inquiry, const DriveType& type);

// NVMe controllers stand for their disks under this name.
inline const QString NvmeVendor = QStringLiteral("NVMe");

} // namespace pnp
