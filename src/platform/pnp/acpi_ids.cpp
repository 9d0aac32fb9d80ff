#include "pnp/acpi_ids.h"

#include "pnp/class_table.h"

#include <algorithm>

namespace pnp {

namespace {

using namespace class_guid;

constexpr AcpiKind Kinds[] = {
    {"PNP0000", System, u"Programmable interrupt controller", false},
    {"PNP0100", System, u"System timer", false},
    {"PNP0103", System, u"High precision event timer", false},
    {"PNP0200", System, u"Direct memory access controller", false},
    {"PNP0300", Keyboard, u"PC/XT Keyboard (83-Key)", true},
    {"PNP0301", Keyboard, u"PC/AT Keyboard (86-Key)", true},
    {"PNP0303", Keyboard, u"Standard PS/2 Keyboard", true},
    {"PNP0320", Keyboard, u"Japanese PS/2 Keyboard", true},
    {"PNP0400", Ports, u"Printer Port", true},
    {"PNP0401", Ports, u"ECP Printer Port", true},
    {"PNP0500", Ports, u"Communications Port", true},
    {"PNP0501", Ports, u"Communications Port", true},
    {"PNP0700", Fdc, u"Standard floppy disk controller", true},
    {"PNP0800", System, u"System speaker", false},
    {"PNP0A03", System, u"PCI Bus", false},
    {"PNP0A05", System, u"Generic ACPI bus", false},
    {"PNP0A06", System, u"Extended IO bus", false},
    {"PNP0A08", System, u"PCI Express Root Complex", false},
    {"PNP0B00", System, u"System CMOS/real time clock", false},
    {"PNP0C01", System, u"System board", false},
    {"PNP0C02", System, u"Motherboard resources", false},
    {"PNP0C04", System, u"Numeric data processor", false},
    {"PNP0C08", System, u"ACPI core driver", false},
    {"PNP0C09", System, u"ACPI-Compliant Embedded Controller", false},
    {"PNP0C0A", Battery, u"ACPI-Compliant Control Method Battery", true},
    {"PNP0C0B", System, u"ACPI Fan", false},
    {"PNP0C0C", System, u"ACPI Power Button", false},
    {"PNP0C0D", System, u"ACPI Lid", false},
    {"PNP0C0E", System, u"ACPI Sleep Button", false},
    {"PNP0C0F", System, u"PCI interrupt link", false},
    {"PNP0C14", System, u"Management Interface for ACPI", false},
    {"PNP0C15", System, u"ACPI docking station", false},
    {"PNP0C31", SecurityDevices, u"Trusted Platform Module 1.2", true},
    {"PNP0C32", System, u"Direct Application Launch Button", false},
    {"PNP0C33", System, u"Hardware error device", false},
    {"PNP0C50", HidClass, u"I2C HID Device", true},
    {"PNP0C60", System, u"Display sensor device", false},
    {"PNP0C80", System, u"Memory device", false},
    {"PNP0D10", Usb, u"USB xHCI controller", true},
    {"PNP0D20", Usb, u"USB EHCI controller", true},
    {"PNP0D80", System, u"Power Engine Plug-in", false},
    {"PNP0D40", SdHost, u"SDA Standard Compliant SD Host Controller", true},
    {"PNP0F03", Mouse, u"PS/2 Port Mouse", true},
    {"PNP0F12", Mouse, u"PS/2 Port Mouse", true},
    {"PNP0F13", Mouse, u"PS/2 Compatible Mouse", true},
    {"ACPI0003", Battery, u"AC Adapter", true},
    {"ACPI0004", System, u"ACPI Module Device", false},
    {"ACPI0006", System, u"ACPI General Purpose Event block", false},
    {"ACPI0007", Processor, u"Processor", false},
    {"ACPI0008", Sensor, u"Ambient light sensor", true},
    {"ACPI000C", System, u"ACPI Processor Aggregator", false},
    {"ACPI000D", System, u"ACPI Power Meter", false},
    {"ACPI000E", System, u"ACPI Time and Alarm Device", false},
    {"ACPI0010", System, u"ACPI Processor Container Device", false},
    {"ACPI0011", System, u"Generic Buttons Device", false},
    {"ACPI0013", System, u"Generic Event Device", false},
    {"ACPI0017", System, u"CXL Root Object", false},
    {"INT0800", System, u"Intel Firmware Hub", false},
    {"MSFT0101", SecurityDevices, u"Trusted Platform Module 2.0", true},
};

struct VendorRow {
    const char* letters;
    const char16_t* name;
};

constexpr VendorRow Vendors[] = {
    {"AMDI", u"Advanced Micro Devices"},
    {"AMZN", u"Amazon.com, Inc."},
    {"APPC", u"Apple"},
    {"ASUS", u"ASUSTeK"},
    {"BOSC", u"Bosch Sensortec"},
    {"DELL", u"Dell"},
    {"ELAN", u"ELAN Microelectronics"},
    {"GOOG", u"Google"},
    {"HPIC", u"Hewlett-Packard"},
    {"INTC", u"Intel"},
    {"INTL", u"Intel"},
    {"LNRO", u"Linaro"},
    {"MSFT", u"Microsoft"},
    {"MSHW", u"Microsoft"},
    {"NVDA", u"NVIDIA"},
    {"QCOM", u"Qualcomm"},
    {"QEMU", u"QEMU"},
    {"SYNA", u"Synaptics"},
    {"XENS", u"Xen"},
};

bool AllAlphanumeric(const QString& text) {
    return std::all_of(text.cbegin(), text.cend(), [](QChar c) {
        return (c >= QLatin1Char('0') && c <= QLatin1Char('9')) || (c >= QLatin1Char('A') && c <= QLatin1Char('Z'));
    });
}

} // namespace

const AcpiKind* FindAcpiKind(const QString& id) {
    const auto found = std::find_if(std::begin(Kinds), std::end(Kinds),
                                    [&id](const AcpiKind& kind) { return id == QLatin1String(kind.id); });
    return found == std::end(Kinds) ? nullptr : found;
}

bool IsStandardAcpiId(const QString& id) {
    return id.startsWith(QStringLiteral("PNP")) || id.startsWith(QStringLiteral("ACPI"));
}

QString AcpiVendor(const QString& id) {
    if (!AllAlphanumeric(id) || (id.size() != 7 && id.size() != 8))
        return {};
    return id.left(id.size() - 4);
}

QStringList AcpiHardwareIds(const QString& id, const QString& revision) {
    QStringList ids;
    const QString vendor = AcpiVendor(id);
    if (!vendor.isEmpty()) {
        const QString apart = QStringLiteral("ACPI\\VEN_%1&DEV_%2").arg(vendor, id.right(4));
        if (!revision.isEmpty())
            ids.append(apart + revision);
        ids.append(apart);
    }
    ids.append(QStringLiteral("ACPI\\") + id);
    ids.append(QLatin1Char('*') + id);
    return ids;
}

QString AcpiVendorName(const QString& letters) {
    for (const VendorRow& row : Vendors) {
        if (letters == QLatin1String(row.letters))
            return QString::fromUtf16(row.name);
    }
    return {};
}

} // namespace pnp
