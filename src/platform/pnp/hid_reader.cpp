// HID devices, one record for each top-level collection.
#include "pnp/bus_reader.h"
#include "pnp/class_table.h"
#include "pnp/hid_descriptor.h"
#include "pnp/identity.h"
#include "pnp/problem.h"
#include "pnp/usb_ids.h"

#include <QRegularExpression>

namespace pnp {

namespace {

constexpr std::size_t LongestDescriptor = 16384;
constexpr quint32 BusUsb = 0x03;
constexpr quint32 BusBluetooth = 0x05;
constexpr quint32 BusI2c = 0x18;
// Sensor hubs of processors, of Intel and of AMD.
constexpr quint32 BusIntelHub = 0x1F;
constexpr quint32 BusAmdHub = 0x20;

struct HidIds {
    quint32 bus = 0;
    quint32 vendor = 0;
    quint32 product = 0;
};

struct UsageRow {
    quint16 page;
    quint16 usage;
    const char16_t* systemId;
    const char16_t* guid;
    const char16_t* name;
};

// Usages that have a generic ID and name of their own.
constexpr UsageRow Usages[] = {
    {0x01, 0x01, u"HID_DEVICE_SYSTEM_MOUSE", class_guid::Mouse, u"HID-compliant mouse"},
    {0x01, 0x02, u"HID_DEVICE_SYSTEM_MOUSE", class_guid::Mouse, u"HID-compliant mouse"},
    {0x01, 0x04, u"HID_DEVICE_SYSTEM_GAME", class_guid::HidClass, u"HID-compliant game controller"},
    {0x01, 0x05, u"HID_DEVICE_SYSTEM_GAME", class_guid::HidClass, u"HID-compliant game controller"},
    {0x01, 0x06, u"HID_DEVICE_SYSTEM_KEYBOARD", class_guid::Keyboard, u"HID Keyboard Device"},
    {0x01, 0x07, u"HID_DEVICE_SYSTEM_KEYBOARD", class_guid::Keyboard, u"HID Keyboard Device"},
    {0x01, 0x0c, nullptr, class_guid::HidClass, u"HID-compliant wireless radio controls"},
    {0x01, 0x80, u"HID_DEVICE_SYSTEM_CONTROL", class_guid::HidClass, u"HID-compliant system controller"},
    {0x0c, 0x01, u"HID_DEVICE_SYSTEM_CONSUMER", class_guid::HidClass, u"HID-compliant consumer control device"},
    {0x0d, 0x02, nullptr, class_guid::HidClass, u"HID-compliant pen"},
    {0x0d, 0x04, nullptr, class_guid::HidClass, u"HID-compliant touch screen"},
    {0x0d, 0x05, nullptr, class_guid::HidClass, u"HID-compliant touch pad"},
    {0x20, 0x01, nullptr, class_guid::HidClass, u"HID Sensor Collection"},
};

const UsageRow* FindUsage(HidUsage usage) {
    for (const UsageRow& row : Usages) {
        if (row.page == usage.page && row.usage == usage.usage)
            return &row;
    }
    return nullptr;
}

// HID_ID=0003:00001532:0000029F, else the folder's own name "0003:1532:029F.0004".
std::optional<HidIds> ReadIds(const Node& node) {
    std::string text = node.Uevent("HID_ID");
    if (text.empty())
        text = node.Name().substr(0, node.Name().find('.'));
    const QStringList parts = QString::fromStdString(text).split(QLatin1Char(':'));
    if (parts.size() != 3)
        return std::nullopt;
    const std::optional<quint32> bus = ParseHex(parts[0].toStdString());
    const std::optional<quint32> vendor = ParseHex(parts[1].toStdString());
    const std::optional<quint32> product = ParseHex(parts[2].toStdString());
    if (!bus || !vendor || !product)
        return std::nullopt;
    return HidIds{*bus, *vendor & 0xFFFF, *product & 0xFFFF};
}

// The parts of the IDs that the parent decides.
struct Parts {
    // "HID\VID_v&PID_p" or what stands for it on other buses.
    QString base;
    QString revision;
    QString interface;
    // "HID\VID_v", in front of a usage; empty where there is no such form.
    QString vendor;
    // Over I2C: "HID\VEN_SYN&DEV_2392" in front of the base, and behind it the same with an asterisk.
    QString apart;
    QString starred;
};

// "i2c-SYNA2392:00"
QString AcpiIdOfParent(const Node& parent) {
    const std::string name = parent.Name();
    const std::size_t colon = name.find(':');
    return name.starts_with("i2c-") && colon != std::string::npos
               ? PathText(CleanAttribute(name.substr(4, colon - 4)).toUpper())
               : QString();
}

Parts ReadParts(const Node& node, const HidIds& ids) {
    Parts parts;
    const QString vendor = Hex(ids.vendor, 4);
    const QString product = Hex(ids.product, 4);
    parts.base = QStringLiteral("HID\\VID_%1&PID_%2").arg(vendor, product);
    parts.vendor = QStringLiteral("HID\\VID_") + vendor;
    const Node parent = node.Parent();
    if (ids.bus == BusUsb) {
        const Node device = parent.Parent();
        const UsbIds numbers = ReadUsbIds(device, parent.Modalias());
        if (numbers.revision)
            parts.revision = QStringLiteral("&REV_") + Hex(*numbers.revision & 0xFFFF, 4);
        const std::optional<quint32> number = UsbInterfaceNumber(parent);
        if (number && IsComposite(device, InterfacesOf(device)))
            parts.interface = QStringLiteral("&MI_") + Hex(*number & 0xFF, 2);
    } else if (ids.bus == BusBluetooth) {
        // The number in front of the vendor tells who gave it; 2 stands for the USB forum.
        parts.base =
            QStringLiteral("HID\\{00001124-0000-1000-8000-00805F9B34FB}_VID&0002%1_PID&%2").arg(vendor, product);
        parts.vendor.clear();
    } else if (ids.bus == BusI2c) {
        if (const QString id = AcpiIdOfParent(parent); id.size() >= 7) {
            // Three letters stand for the vendor, also where the ID has four.
            parts.apart = QStringLiteral("HID\\VEN_%1&DEV_%2").arg(id.left(3), id.right(4));
            parts.base = QStringLiteral("HID\\") + id;
            parts.starred = QStringLiteral("HID\\*") + id;
        }
    }
    return parts;
}

void TakeIds(const Parts& parts, const QString& column, HidUsage usage, Device& device) {
    const QString upu = QStringLiteral("UP:%1_U:%2").arg(Hex(usage.page, 4), Hex(usage.usage, 4));
    if (!parts.revision.isEmpty())
        device.hardwareIds.append(parts.base + parts.revision + parts.interface + column);
    if (!parts.apart.isEmpty())
        device.hardwareIds.append(parts.apart + column);
    device.hardwareIds.append(parts.base + parts.interface + column);
    if (!parts.starred.isEmpty())
        device.hardwareIds.append(parts.starred + column);
    // A descriptor without a usage leaves these out.
    const bool told = usage != HidUsage();
    if (told && !parts.vendor.isEmpty())
        device.hardwareIds.append(parts.vendor + QLatin1Char('&') + upu);
    const UsageRow* row = FindUsage(usage);
    if (row != nullptr && row->systemId != nullptr)
        device.hardwareIds.append(QString::fromUtf16(row->systemId));
    if (told)
        device.hardwareIds.append(QStringLiteral("HID_DEVICE_") + upu);
    device.hardwareIds.append(QStringLiteral("HID_DEVICE"));
}

// Whose numbers the vendors are depends on the bus.
QString VendorName(Context& context, const HidIds& ids) {
    switch (ids.bus) {
    case BusUsb:
    case BusBluetooth:
    case BusI2c:
        return context.UsbIds().VendorName(quint16(ids.vendor));
    case BusIntelHub:
    case BusAmdHub:
        return context.PciIds().VendorName(quint16(ids.vendor));
    default:
        return {};
    }
}

// The device's own name, unless it is what the kernel makes of an ACPI ID: "ELAN1300:00 04F3:3057".
QString OwnName(const Node& node) {
    static const QRegularExpression madeUp(QStringLiteral("^[0-9A-Z]{7,8}:[0-9A-F]{2}( [0-9A-F]{4}:[0-9A-F]{4})?\\b"));
    const QString name = CleanAttribute(node.Uevent("HID_NAME"));
    return madeUp.match(name).hasMatch() ? QString() : name;
}

QString UsageName(HidUsage usage) {
    constexpr quint16 firstOfVendors = 0xFF00;
    if (const UsageRow* row = FindUsage(usage))
        return QString::fromUtf16(row->name);
    return usage.page >= firstOfVendors ? QStringLiteral("HID-compliant vendor-defined device")
                                        : QStringLiteral("HID-compliant device");
}

std::vector<std::string> ListHid(const Context& context) { return ListEntries(context, "/bus/hid/devices"); }

void ReadHid(Context& context, const std::string& path, std::vector<Device>& devices) {
    const Node node = context.At(path);
    if (!node.Exists())
        return;
    const std::optional<HidIds> ids = ReadIds(node);
    if (!ids)
        return;
    std::vector<HidUsage> usages = TopLevelCollections(node.Bytes("report_descriptor", LongestDescriptor));
    if (usages.empty())
        usages.push_back({});
    const Parts parts = ReadParts(node, *ids);
    const Node parent = node.Parent();
    QString maker = ids->bus == BusUsb ? parent.Parent().Text("manufacturer") : QString();
    if (maker.isEmpty())
        maker = VendorName(context, *ids);
    const QString ownName = OwnName(node);
    // Wireless devices share one parent; their address or serial tells them apart.
    const std::string place = context.Stable(parent.Path()) + "|" + node.Uevent("HID_UNIQ");

    Device common;
    context.TakeDriver(node, common);
    TakeProblem(context, node, node.Modalias(), true, common);
    for (std::size_t i = 0; i < usages.size(); ++i) {
        Device device = common;
        const QString column = usages.size() > 1
                                   ? QStringLiteral("&Col") + QString::number(i + 1).rightJustified(2, QLatin1Char('0'))
                                   : QString();
        device.instancePath = parts.base + parts.interface + column + QLatin1Char('\\') +
                              InstanceSuffix(TreeLevel(path), place, Hex(quint32(i), 4));
        TakeIds(parts, column, usages[i], device);
        const UsageRow* row = FindUsage(usages[i]);
        device.classGuid = QString::fromUtf16(row == nullptr ? class_guid::HidClass : row->guid);
        device.name = ownName.isEmpty() ? UsageName(usages[i]) : ownName;
        device.manufacturer = maker;
        devices.push_back(std::move(device));
    }
}

} // namespace

BusReader HidReader() { return {ListHid, ReadHid}; }

} // namespace pnp
