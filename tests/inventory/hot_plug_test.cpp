// Devices that come and go while a scan runs: every row tells of one device, never of a mix of two that stood in the
// same place one after the other.
#include "device_fixture.h"
#include "inventory/device_lists.h"
#include "inventory/device_scan.h"
#include "suite/icon_store.h"
#include "support/long_form.h"
#include "values/program_values.h"

#include <QRegularExpression>
#include <QSet>
#include <array>
#include <atomic>
#include <gtest/gtest.h>
#include <random>
#include <thread>

namespace {

constexpr int Marks = 9; // devices that take turns, 1 to 9; every value of a device holds its number

// Four kinds of devices, %1 being the place and %2 the mark: as the kernel plugs them, folder first and link last.
constexpr const char* Kinds[] = {R"(
/devices/pci0000:00/0000:00:1%1.0
  vendor = 0xa00%2
  device = 0xb00%2
  subsystem_vendor = 0xc00%2
  subsystem_device = 0xd00%2
  revision = 0x0%2
  class = 0x020000
  driver -> /bus/any/drivers/driver%2
/bus/pci/devices
  0000:00:1%1.0 -> /devices/pci0000:00/0000:00:1%1.0
)",
                                 R"(
/devices/usb1/1-%1
  idVendor = a00%2
  idProduct = b00%2
  bcdDevice = 000%2
  bDeviceClass = 00
  bNumInterfaces = 2
  manufacturer = Maker %2
  product = Device %2
  serial = SERIAL%2
  driver -> /bus/any/drivers/driver%2
/devices/usb1/1-%1/1-%1:1.0
  bInterfaceNumber = 00
  bInterfaceClass = ff
  driver -> /bus/any/drivers/driver%2
/devices/usb1/1-%1/1-%1:1.1
  bInterfaceNumber = 01
  bInterfaceClass = ff
  modalias = usb:vA00%2pB00%2d000%2
/bus/usb/devices
  1-%1 -> /devices/usb1/1-%1
  1-%1:1.0 -> /devices/usb1/1-%1/1-%1:1.0
  1-%1:1.1 -> /devices/usb1/1-%1/1-%1:1.1
)",
                                 R"(
/devices/usb2/2-%1
  idVendor = a00%2
  idProduct = b00%2
  bcdDevice = 000%2
  bDeviceClass = 00
  manufacturer = Maker %2
/devices/usb2/2-%1/2-%1:1.0
  bInterfaceNumber = 00
  bInterfaceClass = 03
/devices/usb2/2-%1/2-%1:1.0/0003:A00%2:B00%2.000%1
  uevent : "HID_ID=0003:0000A00%2:0000B00%2" 0A "HID_NAME=Device %2" 0A
  report_descriptor : 05 01 09 02 A1 01 C0
/bus/usb/devices
  2-%1 -> /devices/usb2/2-%1
/bus/hid/devices
  0003:A00%2:B00%2.000%1 -> /devices/usb2/2-%1/2-%1:1.0/0003:A00%2:B00%2.000%1
)",
                                 R"(
/devices/host0/%1:0:0:0
  type = 0
  vendor = Maker %2
  model = Device %2
  rev = R00%2
  driver -> /bus/any/drivers/driver%2
/bus/scsi/devices
  %1:0:0:0 -> /devices/host0/%1:0:0:0
)"};

// The other side: plugs and unplugs, the links first when a device goes.
void PlugUntil(const std::atomic<bool>& ended, std::atomic<int>& turns, DeviceFixture& fixture) {
    std::array<std::string, 8> slots;
    std::minstd_rand random(3);
    for (; !ended; ++turns) {
        const std::size_t slot = random() % slots.size();
        const QStringList lines = QString::fromStdString(slots[slot]).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        QString folder;
        for (const QString& line : lines.filter(QRegularExpression(QStringLiteral("^/bus/|-> /devices/")))) {
            if (line.startsWith(QStringLiteral("/bus")))
                folder = line + QLatin1Char('/');
            else
                fixture.Remove(folder + line.trimmed().section(QLatin1Char(' '), 0, 0));
        }
        if (!lines.isEmpty())
            fixture.Remove(lines.first());
        slots[slot].clear();
        // A place stays empty now and then.
        if (random() % 5 != 0)
            slots[slot] =
                QString::fromLatin1(Kinds[slot % 4]).arg(slot / 4 + 1).arg(1 + random() % Marks).toStdString();
        fixture.Add(QByteArray::fromStdString(slots[slot]));
    }
}

QString Text(const suite::ListItem& row) {
    QString text = row.Text();
    for (int column = 1; column <= 5; ++column)
        text += u'\n' + row.SubItems(column).value_or(QString());
    return text;
}

// The numbers of the devices that a row tells of.
QSet<QString> DevicesIn(const QString& row) {
    static const QRegularExpression marks(
        QStringLiteral(
            "(?:VEN_A00|DEV_B00|SUBSYS_D00|SUBSYS_D00.C00|VID_A00|PID_B00|REV_0+|Device[ _]|Maker[ _]|R00)([1-9])"
            "|^([1-9])\\.7$"),
        QRegularExpression::MultilineOption);
    QSet<QString> devices;
    for (auto match = marks.globalMatch(row); match.hasNext();) {
        const QRegularExpressionMatch found = match.next();
        devices.insert(found.captured(1) + found.captured(2));
    }
    return devices;
}

} // namespace

TEST(HotPlug, NoRowIsAMixOfTwoDevices) {
    DeviceFixture fixture;
    for (int mark = 1; mark <= Marks; ++mark)
        fixture.Add(QStringLiteral("/bus/any/drivers/driver%1/module\nversion = %1.7\n").arg(mark).toLatin1());
    values::Program().SystemFolder = QStringLiteral("C:\\Windows\\System32\\");
    std::array<suite::ListItems, inventory::DeviceListCount> lists;
    for (suite::ListItems& list : lists)
        inventory::AddDeviceColumns(list);

    std::atomic<bool> ended = false;
    std::atomic<int> turns = 0;
    std::thread plugging([&] { PlugUntil(ended, turns, fixture); });
    int rows = 0;
    int told = 0;
    const int scans = support::Rounds(60, 5000);
    for (int scan = 0; scan < scans || turns < scans; ++scan) {
        for (suite::ListItems& list : lists)
            list.Clear();
        inventory::DeviceScan(lists[inventory::Hardware], lists[inventory::NoDrivers], lists[inventory::Problems],
                              lists[inventory::NoSystemDevices], [](const QString&) {});
        for (const suite::ListItems& list : lists) {
            for (int i = 1; i <= list.Count(); ++i) {
                const qsizetype devices = DevicesIn(Text(*list.Item(i))).size();
                EXPECT_LE(devices, 1) << Plain(Text(*list.Item(i)));
                ++rows;
                told += devices == 1 ? 1 : 0;
            }
        }
    }
    ended = true;
    plugging.join();
    // The tree did change, and the rows did tell whose they are.
    EXPECT_GT(told, scans);
    EXPECT_GT(told, rows / 2);
    RecordProperty("scans", scans);
    RecordProperty("turns", turns);
    RecordProperty("rows", rows);
    suite::SharedIconStore().RemoveAll();
}
