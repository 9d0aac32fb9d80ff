#include "inventory/device_lists.h"

#include <array>

namespace inventory {

namespace {

constexpr double FirstWidth = 1500;

constexpr std::array<const char16_t*, DeviceListCount> Titles = {
    u"All Hardware", u"No Drivers Installed", u"Hardware With Problems", u"All Except Standard System Devices"};

struct ColumnRow {
    const char16_t* key;
    const char16_t* caption;
};

constexpr ColumnRow Columns[] = {
    {u"Name", u"Name"},   {u"Manufacturer", u"Manufacturer"},    {u"ErrorCode", u"Error Code"},
    {u"Class", u"Class"}, {u"DriverVersion", u"Driver Version"}, {u"HardwareIDs", u"Hardware IDs"},
};

} // namespace

QString DeviceListTitle(DeviceList list) { return QString::fromUtf16(Titles[std::size_t(list)]); }

QString DeviceListCaption(const QString& title, int count) {
    return title + QStringLiteral(" (") + QString::number(count) + QLatin1Char(')');
}

void AddDeviceColumns(suite::ListItems& list) {
    for (const ColumnRow& column : Columns)
        list.AddColumn(QString::fromUtf16(column.key), QString::fromUtf16(column.caption), FirstWidth);
}

void SortByName(suite::ListItems& list) {
    list.SetSorted(false);
    list.SetSortKey(0);
    list.SetSortOrder(suite::SortOrder::Ascending);
    list.SetSorted(true);
}

} // namespace inventory
