#include "pnp/acpi_ids.h"

#include <QByteArrayList>
#include <QHash>
#include <algorithm>
#include <vector>

namespace pnp {

namespace {

struct VendorRow {
    const char* letters;
    const char16_t* name;
};

// Makers by the letters that their identifiers begin with. These come before pnp.ids, which knows other companies under
// some of them; an empty name means that the letters tell no maker.
constexpr VendorRow Vendors[] = {
    {"AMD", u"Advanced Micro Devices"},
    {"AMDI", u"Advanced Micro Devices"},
    {"AMDF", u"Advanced Micro Devices"},
    {"AMZN", u"Amazon.com, Inc."},
    {"APP", u"Apple"},
    {"APPC", u"Apple"},
    {"APPL", u"Apple"},
    {"ARMH", u"ARM"},
    {"ASU", u"ASUSTeK"},
    {"ASUS", u"ASUSTeK"},
    {"ATK", u"ASUSTeK"},
    {"ATM", u"Atmel"},
    {"ATML", u"Atmel"},
    {"AMI", u"American Megatrends"},
    {"BMA", u"Bosch Sensortec"},
    {"BMC", u"Bosch Sensortec"},
    {"BMG", u"Bosch Sensortec"},
    {"BMI", u"Bosch Sensortec"},
    {"BMM", u"Bosch Sensortec"},
    {"BOSC", u"Bosch Sensortec"},
    {"CLSA", u"Cirrus Logic"},
    {"CSC", u"Cirrus Logic"},
    {"CYAP", u"Cypress"},
    {"DEL", u"Dell"},
    {"DELL", u"Dell"},
    {"DLL", u"Dell"},
    {"DLLK", u"Dell"},
    {"ELAN", u"ELAN Microelectronics"},
    {"ESSX", u"Everest Semiconductor"},
    {"ETD", u"ELAN Microelectronics"},
    {"FPC", u"Fingerprint Cards"},
    {"FTSC", u"FocalTech"},
    {"FUJ", u"Fujitsu"},
    {"GDI", u"Goodix"},
    {"GDIX", u"Goodix"},
    {"GGL", u"Google"},
    {"GOOG", u"Google"},
    {"HPQ", u"Hewlett-Packard"},
    {"HPIC", u"Hewlett-Packard"},
    {"HWPC", u"Hewlett-Packard"},
    {"IBM", u"IBM"},
    {"ICO", u"Intel"},
    {"IDEA", u"Lenovo"},
    {"ILTK", u"ILI Technology"},
    {"INT", u"Intel"},
    {"INTC", u"Intel"},
    {"INTL", u"Intel"},
    {"INVN", u"InvenSense"},
    {"KIOX", u"Kionix"},
    {"LEN", u"Lenovo"},
    {"LGEX", u"LG Electronics"},
    {"LNRO", u"Linaro"},
    {"LPE", u"Intel"},
    {"LTER", u"Lite-On"},
    {"MAT", u"Panasonic"},
    {"MMA", u"NXP Semiconductors"},
    {"MSF", u"Microsoft"},
    {"MSFT", u"Microsoft"},
    {"MSHW", u"Microsoft"},
    {"MSI", u"Micro-Star International"},
    {"MSSL", u"Silead"},
    {"MXC", u"Memsic"},
    {"NTRG", u"N-trig"},
    {"NVDA", u"NVIDIA"},
    {"NVTN", u"Nuvoton"},
    {"OVTI", u"OmniVision"},
    {"PRP", u""},
    {"QCOM", u"Qualcomm"},
    {"QEMU", u"QEMU"},
    {"RAYD", u"Raydium"},
    {"REA", u"Realtek"},
    {"RTK", u"Realtek"},
    {"RTL", u"Realtek"},
    {"SAM", u"Samsung"},
    {"SMB", u""},
    {"SNSL", u"Sensel"},
    {"SNY", u"Sony"},
    {"SONY", u"Sony"},
    {"STM", u"STMicroelectronics"},
    {"SYN", u"Synaptics"},
    {"SYNA", u"Synaptics"},
    {"TOS", u"Toshiba"},
    {"TPS", u"Topstar"},
    {"TXN", u"Texas Instruments"},
    {"VMW", u"VMware"},
    {"VPC", u"Lenovo"},
    {"WACF", u"Wacom"},
    {"WACM", u"Wacom"},
    {"WACO", u"Wacom"},
    {"WCOM", u"Wacom"},
    {"WDHT", u"Goodix"},
    {"XENS", u"Xen"},
};

bool AllAlphanumeric(const QString& text) {
    return std::all_of(text.cbegin(), text.cend(), [](QChar c) {
        return (c >= QLatin1Char('0') && c <= QLatin1Char('9')) || (c >= QLatin1Char('A') && c <= QLatin1Char('Z'));
    });
}

struct KindIndex {
    QHash<QByteArray, const AcpiKind*> whole;
    std::vector<std::pair<QByteArray, const AcpiKind*>> starts;
};

KindIndex MakeIndex() {
    KindIndex index;
    for (const AcpiKind& kind : AcpiKinds()) {
        for (const QByteArray& id : QByteArray(kind.ids).split(' ')) {
            if (id.endsWith('*'))
                index.starts.emplace_back(id.chopped(1), &kind);
            else
                index.whole.insert(id, &kind);
        }
    }
    return index;
}

} // namespace

const AcpiKind* FindAcpiKind(const QString& id) {
    static const KindIndex index = MakeIndex();
    const QByteArray wanted = id.toLatin1();
    if (const auto found = index.whole.constFind(wanted); found != index.whole.constEnd())
        return *found;
    for (const auto& [start, kind] : index.starts) {
        if (wanted.startsWith(start))
            return kind;
    }
    return nullptr;
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

QString AcpiMaker(const QString& id, IdFile& pci, IdFile& usb, PnpVendorFile& pnp) {
    const AcpiKind* kind = FindAcpiKind(id);
    if (kind != nullptr && kind->maker != nullptr)
        return QString::fromUtf16(kind->maker);
    const QString letters = AcpiVendor(id);
    for (const VendorRow& row : Vendors) {
        if (letters == QLatin1String(row.letters))
            return QString::fromUtf16(row.name);
    }
    // "10EC5640": the number of a PCI or USB vendor. Letters alone are letters.
    bool isNumber = false;
    const quint16 vendor = letters.toUShort(&isNumber, 16);
    const bool hasDigit = std::any_of(letters.begin(), letters.end(), [](QChar c) { return c.isDigit(); });
    if (letters.size() == 4 && isNumber && hasDigit) {
        const QString name = pci.VendorName(vendor);
        return name.isEmpty() ? usb.VendorName(vendor) : name;
    }
    return pnp.VendorName(letters);
}

} // namespace pnp
