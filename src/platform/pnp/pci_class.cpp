#include "pnp/pci_class.h"

#include "pnp/class_table.h"

namespace pnp {

namespace {

using namespace class_guid;

constexpr int AnySubclass = -1;

struct ClassRow {
    int base;
    int subclass;
    const char16_t* guid;
    // Nothing for rows whose name is that of a more general one.
    const char16_t* name;
};

// The first fitting row decides.
constexpr ClassRow Rows[] = {
    {0x00, 0x01, Display, u"Video Controller (VGA Compatible)"},
    {0x01, 0x00, ScsiAdapter, u"SCSI Controller"},
    {0x01, 0x01, Hdc, u"IDE Controller"},
    {0x01, 0x02, Fdc, u"Floppy Disk Controller"},
    {0x01, 0x04, ScsiAdapter, u"RAID Controller"},
    {0x01, 0x05, Hdc, u"ATA Controller"},
    {0x01, 0x06, Hdc, u"SATA AHCI Controller"},
    {0x01, 0x07, ScsiAdapter, u"SAS Controller"},
    {0x01, 0x08, ScsiAdapter, u"NVM Express Controller"},
    {0x01, AnySubclass, ScsiAdapter, u"Mass Storage Controller"},
    {0x02, 0x00, Net, u"Ethernet Controller"},
    {0x02, AnySubclass, Net, u"Network Controller"},
    {0x03, 0x00, Display, u"Video Controller (VGA Compatible)"},
    {0x03, AnySubclass, Display, u"Video Controller"},
    {0x04, 0x00, Media, u"Multimedia Video Controller"},
    {0x04, 0x01, Media, u"Multimedia Audio Controller"},
    {0x04, 0x03, System, u"High Definition Audio Controller"},
    {0x04, AnySubclass, Media, u"Multimedia Controller"},
    {0x05, 0x00, System, u"PCI standard RAM Controller"},
    {0x05, AnySubclass, System, u"PCI Memory Controller"},
    {0x06, 0x00, System, u"PCI standard host CPU bridge"},
    {0x06, 0x01, System, u"PCI standard ISA bridge"},
    {0x06, 0x04, System, u"PCI-to-PCI Bridge"},
    {0x06, 0x07, Pcmcia, u"CardBus Controller"},
    {0x06, AnySubclass, System, u"PCI Bridge"},
    {0x07, 0x00, Ports, u"PCI Serial Port"},
    {0x07, 0x01, Ports, u"PCI Parallel Port"},
    {0x07, 0x03, Modem, u"PCI Modem"},
    {0x07, AnySubclass, nullptr, u"PCI Simple Communications Controller"},
    {0x08, 0x00, System, u"Programmable interrupt controller"},
    {0x08, 0x01, System, u"Direct memory access controller"},
    {0x08, 0x02, System, u"System timer"},
    {0x08, 0x03, System, u"System CMOS/real time clock"},
    {0x08, 0x05, SdHost, u"SD Host Controller"},
    {0x08, AnySubclass, System, u"Base System Device"},
    {0x0c, 0x00, Adapter1394, u"IEEE 1394 Controller"},
    {0x0c, 0x03, Usb, u"Universal Serial Bus (USB) Controller"},
    {0x0c, 0x04, ScsiAdapter, u"Fibre Channel Controller"},
    {0x0c, 0x05, System, u"SM Bus Controller"},
    {0x0c, AnySubclass, nullptr, u"PCI Serial Bus Controller"},
    {0x0d, 0x11, Bluetooth, u"Bluetooth Controller"},
    {0x0d, AnySubclass, Net, u"Network Controller"},
    {0x10, AnySubclass, nullptr, u"PCI Encryption/Decryption Controller"},
    {0x11, AnySubclass, System, u"PCI Data Acquisition and Signal Processing Controller"},
    {0x12, AnySubclass, ComputeAccelerator, u"Processing Accelerator"},
};

const ClassRow* FindRow(quint32 classCode) {
    const int base = int(classCode >> 16 & 0xFF);
    const int subclass = int(classCode >> 8 & 0xFF);
    for (const ClassRow& row : Rows) {
        if (row.base == base && (row.subclass == subclass || row.subclass == AnySubclass))
            return &row;
    }
    return nullptr;
}

// Whose own functions of the kind "other system device" work without a driver. Those of others are card readers and
// the like.
bool MakesChipsets(quint32 vendor) { return vendor == 0x8086 || vendor == 0x1022; }

struct VirtioRow {
    quint32 type;
    const char16_t* guid;
};

constexpr VirtioRow VirtioRows[] = {
    {1, Net},     {2, ScsiAdapter}, {3, System},  {4, System},    {5, System},  {8, ScsiAdapter},
    {9, System},  {16, Display},    {17, System}, {18, HidClass}, {19, System}, {20, System},
    {24, System}, {25, Media},      {26, System}, {27, System},
};

} // namespace

const char16_t* PciSetupClass(quint32 classCode) {
    const ClassRow* row = FindRow(classCode);
    return row == nullptr ? nullptr : row->guid;
}

const char16_t* VirtioSetupClass(quint32 type) {
    for (const VirtioRow& row : VirtioRows) {
        if (row.type == type)
            return row.guid;
    }
    return nullptr;
}

bool PciNeedsDriver(quint32 classCode, quint32 vendor) {
    const quint32 base = classCode >> 16 & 0xFF;
    const quint32 subclass = classCode >> 8 & 0xFF;
    if (base == 0x05)
        return false;
    if (base == 0x06)
        return subclass == 0x07 || subclass == 0x80;
    if (base == 0x08 && subclass == 0x80)
        return !MakesChipsets(vendor);
    return base != 0x08 || subclass == 0x05;
}

bool IsStandardSystemFunction(quint32 classCode, quint32 vendor) {
    const quint32 base = classCode >> 16 & 0xFF;
    const quint32 subclass = classCode >> 8 & 0xFF;
    if (base == 0x08 && subclass == 0x80)
        return MakesChipsets(vendor);
    return base == 0x05 || (base == 0x06 && subclass != 0x07) || (base == 0x08 && subclass != 0x05);
}

QString PciClassName(quint32 classCode) {
    const ClassRow* row = FindRow(classCode);
    return row == nullptr || row->name == nullptr ? QStringLiteral("PCI Device") : QString::fromUtf16(row->name);
}

} // namespace pnp
