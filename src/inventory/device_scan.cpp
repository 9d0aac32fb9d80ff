#include "inventory/device_scan.h"

#include "base/text.h"
#include "base/yield.h"
#include "inventory/class_icons.h"
#include "inventory/clean_text.h"
#include "inventory/device_lists.h"
#include "inventory/device_properties.h"
#include "inventory/problem_text.h"
#include "pnp/class_table.h"
#include "pnp/wmi.h"
#include "suite/icon_store.h"
#include "values/program_values.h"

#include <algorithm>

namespace inventory {

namespace {

// Added to the registry's icon index, which is negative, to make the id in the shared store.
constexpr qint32 IconIdOffset = 5000;
constexpr qint32 DriversNotInstalled = 28;

// Compared exactly: a class GUID in lower case is not taken for it.
const QString& OtherDevicesClassGuid() {
    static const QString guid = QString::fromUtf16(pnp::class_guid::OtherDevices);
    return guid;
}

// Instance paths that begin so, in lower case, are left out of all lists.
constexpr const char16_t* ExcludedPrefixes[] = {
    u"root\\", u"storage\\volume", u"usb\\root_hub", u"swd\\", u"wpdbusenumroot\\",
};

// Adapters that stand in for a missing driver.
constexpr const char16_t* StandInAdapters[] = {
    u"microsoft basic display adapter",
    u"standard vga graphics adapter",
};

struct DeviceValues {
    QString deviceId;
    QString name;
    QString manufacturer;
    QString errorCodeText;
    QString classGuid;
    qint32 problemCode = 0;
    qint32 iconId = 0;
};

struct Lists {
    suite::ListItems& hardware;
    suite::ListItems& noDrivers;
    suite::ListItems& problems;
    suite::ListItems& noSystemDevices;
};

QString Unknown() { return QStringLiteral("Unknown"); }

// A property that is null leaves the value as it is.
void ReadText(const pnp::WmiObject& object, const QString& name, QString& value) {
    const QVariant property = object.Property(name);
    if (!property.isNull())
        value = base::CutAtNull(property.toString());
}

void ReadProperties(const pnp::WmiObject& object, DeviceValues& device) {
    ReadText(object, QStringLiteral("DeviceID"), device.deviceId);
    ReadText(object, QStringLiteral("Name"), device.name);
    ReadText(object, QStringLiteral("Manufacturer"), device.manufacturer);
    ReadText(object, QStringLiteral("ConfigManagerErrorCode"), device.errorCodeText);
    ReadText(object, QStringLiteral("ClassGuid"), device.classGuid);
    const QVariant code = object.Property(QStringLiteral("ConfigManagerErrorCode"));
    if (!code.isNull())
        device.problemCode = code.toInt();
    if (device.name.isEmpty())
        device.name = Unknown();
    if (device.manufacturer.isEmpty())
        device.manufacturer = Unknown();
    if (device.classGuid.isEmpty())
        device.classGuid = OtherDevicesClassGuid();
}

void StoreClassIcon(const Lists& lists, DeviceValues& device) {
    const QString iconFile = GetClassIconFile(device.classGuid, device.iconId);
    base::Yield();
    if (iconFile.isEmpty())
        return;
    qint32 key = device.iconId + IconIdOffset;
    qint32 index = device.iconId;
    AddClassIcon(key, iconFile, index);
    base::Yield();
    const suite::IconStore& store = suite::SharedIconStore();
    lists.hardware.SetIcons(&store);
    lists.problems.SetIcons(&store);
    lists.noDrivers.SetIcons(&store);
    lists.noSystemDevices.SetIcons(&store);
    device.iconId += IconIdOffset;
    base::Yield();
}

bool IsExcluded(const QString& deviceId) {
    const QString lower = base::LowerCase(deviceId);
    return std::any_of(std::begin(ExcludedPrefixes), std::end(ExcludedPrefixes),
                       [&lower](const char16_t* prefix) { return lower.startsWith(QStringView(prefix)); });
}

// Each row resolves its properties anew, so the same device costs each list its own look-ups.
void AddRow(suite::ListItems& list, const DeviceValues& device) {
    suite::ListItem* item = list.Add(base::Trim(CleanText(device.name)), device.iconId);
    item->SetTag(device.deviceId);
    const int place = list.Count();
    // The look-ups yield; a row that somebody removed meanwhile takes no more values.
    const auto set = [&](int index, const QString& text) {
        if (list.Count() == place && list.Item(place) == item)
            item->SetSubItems(index, text);
    };
    set(ManufacturerColumn, base::Trim(CleanText(device.manufacturer)));
    set(ErrorCodeColumn, base::Trim(GetProblemText(device.errorCodeText)));
    set(ClassColumn, CleanText(base::Trim(GetClassName(device.classGuid))));
    set(DriverVersionColumn, base::Trim(GetDriverVersion(device.deviceId)));
    set(HardwareIdsColumn, base::Trim(GetHardwareIds(device.deviceId)));
    base::Yield();
}

bool HasNoClass(const DeviceValues& device) {
    return CleanText(base::Trim(device.classGuid)).isEmpty() || device.classGuid == OtherDevicesClassGuid();
}

bool IsStandIn(const DeviceValues& device) {
    const QString name = base::LowerCase(device.name);
    return std::any_of(std::begin(StandInAdapters), std::end(StandInAdapters),
                       [&name](const char16_t* adapter) { return name == QStringView(adapter); });
}

void AddToLists(const Lists& lists, const DeviceValues& device) {
    AddRow(lists.hardware, device);
    if (device.problemCode != 0 || HasNoClass(device))
        AddRow(lists.problems, device);
    if (device.problemCode == DriversNotInstalled || IsStandIn(device) || HasNoClass(device))
        AddRow(lists.noDrivers, device);
    if (base::LowerCase(device.manufacturer) != QStringLiteral("(standard system devices)"))
        AddRow(lists.noSystemDevices, device);
}

void ScanDevice(const Lists& lists, const pnp::WmiObject& object, const StatusText& status) {
    DeviceValues device;
    base::Yield();
    ReadProperties(object, device);
    base::Yield();
    status(QStringLiteral("Status: Getting ") + device.name);
    base::Yield();
    StoreClassIcon(lists, device);
    // The class icon is in the store by now, also that of a device which is left out.
    if (!IsExcluded(device.deviceId))
        AddToLists(lists, device);
    base::Yield();
}

} // namespace

void DeviceScan(suite::ListItems& hardware, suite::ListItems& noDrivers, suite::ListItems& problems,
                suite::ListItems& noSystemDevices, const StatusText& status) {
    const Lists lists{hardware, noDrivers, problems, noSystemDevices};
    const std::optional<pnp::WmiServices> services = pnp::GetObject(QStringLiteral("winmgmts:\\\\.\\root\\CIMV2"));
    std::optional<pnp::WmiObjectSet> devices;
    if (services)
        devices = services->ExecQuery(QStringLiteral("SELECT * FROM Win32_PnPEntity"), QStringLiteral("WQL"),
                                      pnp::WmiServices::ForwardOnly);
    base::Yield();
    if (values::ProgramClosing())
        return;
    suite::SharedIconStore().RemoveAll();
    base::Yield();
    while (devices) {
        const std::optional<pnp::WmiObject> object = devices->Next();
        if (!object)
            break;
        if (values::ProgramClosing())
            return;
        ScanDevice(lists, *object, status);
    }
    if (values::ProgramClosing())
        return;
    status(QStringLiteral("Status: Done"));
    base::Yield();
}

} // namespace inventory
