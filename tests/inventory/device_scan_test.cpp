#include "inventory/device_scan.h"

#include "device_fixture.h"
#include "inventory/device_lists.h"
#include "pnp/device_tree.h"
#include "suite/icon_store.h"
#include "values/program_values.h"

#include <QTimer>
#include <array>
#include <gtest/gtest.h>

namespace {

// The rows that the assignment is about, one device each.
constexpr char Machine[] = R"(
/devices/pci0000:00/0000:00:00.0 @ bus/pci
  vendor = 0x8086
  device = 0x0001
  class = 0x060000
/devices/pci0000:00/0000:00:02.0 @ bus/pci
  vendor = 0x1234
  device = 0x0002
  class = 0x020000
/devices/pci0000:00/0000:00:03.0 @ bus/pci
  vendor = 0x1234
  device = 0x0003
  class = 0xff0000
/devices/pci0000:00/0000:00:04.0 @ bus/pci
  vendor = 0x1234
  device = 0x0004
  class = 0x068000
/devices/pci0000:00/0000:00:14.0/usb1 @ bus/usb
  idProduct = 0002
/devices/pci0000:00/0000:00:14.0/usb1/1-1 @ bus/usb
  idVendor = 1234
  idProduct = 0001
  bDeviceClass = 09
  product = Working
  manufacturer = Maker
  driver -> /bus/usb/drivers/usb
/devices/pci0000:00/0000:00:14.0/usb1/1-2 @ bus/usb
  idVendor = 1234
  idProduct = 0002
  bDeviceClass = 09
  product = Disabled
  manufacturer = Maker
  authorized = 0
  driver -> /bus/usb/drivers/usb
/devices/pci0000:00/0000:00:14.0/usb1/1-3 @ bus/usb
  idVendor = 1234
  idProduct = 0003
  bDeviceClass = 09
  product = Microsoft BASIC Display Adapter
  manufacturer = (Standard display types)
  driver -> /bus/usb/drivers/usb
/devices/pci0000:00/0000:00:14.0/usb1/1-4 @ bus/usb
  idVendor = 1234
  idProduct = 0004
  bDeviceClass = 09
  product = Standard
  manufacturer = (STANDARD system devices)
  driver -> /bus/usb/drivers/usb
/devices/virtual/net/lo @ class/net
/devices/platform/pcspkr @ bus/platform
)";

class Scan : public testing::Test {
  protected:
    Scan() {
        values::Program().SystemFolder = QStringLiteral("C:\\Windows\\System32\\");
        for (suite::ListItems& list : lists)
            inventory::AddDeviceColumns(list);
    }
    ~Scan() override {
        values::Program().ProgramClosing = false;
        suite::SharedIconStore().RemoveAll();
    }

    void Run() {
        inventory::DeviceScan(lists[inventory::Hardware], lists[inventory::NoDrivers], lists[inventory::Problems],
                              lists[inventory::NoSystemDevices], [this](const QString& text) {
                                  status.append(text);
                                  if (onStatus)
                                      onStatus(text);
                              });
    }

    // Which lists show a device: H, D, P, S.
    std::string Shown(const QString& name) const {
        std::string shown;
        for (int i = 0; i < inventory::DeviceListCount; ++i) {
            const suite::ListItems& list = lists[std::size_t(i)];
            for (int row = 1; row <= list.Count(); ++row) {
                if (list.Item(row)->Text() == name)
                    shown += "HDPS"[i];
            }
        }
        return shown;
    }

    std::array<suite::ListItems, inventory::DeviceListCount> lists;
    QStringList status;
    std::function<void(const QString&)> onStatus;
};

} // namespace

TEST_F(Scan, AssignsDevicesToLists) {
    const DeviceFixture fixture(Machine);
    Run();
    EXPECT_EQ(Shown(QStringLiteral("Working")), "HS");
    EXPECT_EQ(Shown(QStringLiteral("PCI standard host CPU bridge")), "H");
    EXPECT_EQ(Shown(QStringLiteral("Standard")), "H");
    EXPECT_EQ(Shown(QStringLiteral("Disabled")), "HPS");
    EXPECT_EQ(Shown(QStringLiteral("Ethernet Controller")), "HDPS");
    EXPECT_EQ(Shown(QStringLiteral("Microsoft BASIC Display Adapter")), "HDS");
    // Without a class; and without a driver, which standard equipment does not hide.
    EXPECT_EQ(Shown(QStringLiteral("PCI Device")), "HDPS");
    EXPECT_EQ(Shown(QStringLiteral("PCI Bridge")), "HDPS");
    // Root hubs, virtual interfaces and platform devices are in no list, though the scan came by.
    EXPECT_EQ(lists[inventory::Hardware].Count(), 8);
    EXPECT_TRUE(status.contains(QStringLiteral("Status: Getting pcspkr")));
    EXPECT_EQ(status.last(), QStringLiteral("Status: Done"));
}

TEST_F(Scan, RowsHoldTheSevenValues) {
    DeviceFixture fixture(R"(
/devices/pci0000:00/0000:00:14.0/usb1/1-1 @ bus/usb
  idVendor = 1234
  idProduct = 0001
  bcdDevice = 0100
  bDeviceClass = 09
  manufacturer = Maker
  driver -> /bus/usb/drivers/usb
/bus/usb/drivers/usb/module
  version = 1.2
/devices/pci0000:00/0000:00:03.0 @ bus/pci
  class = 0xff0000
)");
    const QString name = QStringLiteral("Hub\t \u00A0 of  mine");
    fixture.Write(QStringLiteral("/devices/pci0000:00/0000:00:14.0/usb1/1-1/product"), name.toUtf8());
    Run();
    const suite::ListItem* hub = lists[inventory::NoSystemDevices].Item(2);
    ASSERT_NE(hub, nullptr);
    EXPECT_EQ(Plain(hub->Text()), "Hub of mine");
    EXPECT_EQ(hub->Icon(), 5000 - 20);
    EXPECT_TRUE(suite::SharedIconStore().Icon(hub->Icon()));
    const char* expected[] = {"Maker", "(0) OK", "Universal Serial Bus controllers", "1.2",
                              "USB\\VID_1234&PID_0001&REV_0100|USB\\VID_1234&PID_0001|"};
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(Plain(hub->SubItems(i + 1).value()), expected[i]);
    // The status shows the name as it came.
    EXPECT_TRUE(status.contains(QStringLiteral("Status: Getting ") + name));
    // Nothing known but the place: every fallback shows.
    const suite::ListItem* unknown = lists[inventory::Problems].Item(1);
    EXPECT_EQ(Plain(unknown->SubItems(1).value()), "Unknown");
    EXPECT_EQ(Plain(unknown->SubItems(2).value()), "(28) Drivers are not installed");
    EXPECT_EQ(Plain(unknown->SubItems(3).value()), "Other devices");
    EXPECT_EQ(Plain(unknown->SubItems(4).value()), "Unknown");
    EXPECT_TRUE(unknown->SubItems(5)->startsWith(QStringLiteral("PCI\\VEN_0000&DEV_0000&SUBSYS_00000000&REV_00\\3&")));
    EXPECT_EQ(lists[inventory::Hardware].Icons(), &suite::SharedIconStore());
}

// The icon of a class is stored before its device is left out.
TEST_F(Scan, ExcludedDevicesLeaveTheirIcon) {
    const DeviceFixture fixture("/devices/virtual/net/lo @ class/net\n");
    Run();
    EXPECT_EQ(lists[inventory::Hardware].Count(), 0);
    EXPECT_TRUE(suite::SharedIconStore().Icon(5000 - 5));
    EXPECT_EQ(status.last(), QStringLiteral("Status: Done"));
}

TEST_F(Scan, AnEmptyMachineIsDone) {
    const DeviceFixture fixture;
    qint32 id = 1;
    suite::SharedIconStore().LoadIcon(1, 5, id);
    Run();
    EXPECT_EQ(status, QStringList{QStringLiteral("Status: Done")});
    EXPECT_EQ(suite::SharedIconStore().Count(), 0);
}

TEST_F(Scan, ClosingStopsAtTheNextDevice) {
    const DeviceFixture fixture(Machine);
    onStatus = [](const QString&) { values::Program().ProgramClosing = true; };
    Run();
    EXPECT_EQ(status.size(), 1);
    EXPECT_EQ(lists[inventory::Hardware].Count(), 1);
    lists[inventory::Hardware].Clear();
    status.clear();
    Run();
    EXPECT_TRUE(status.isEmpty());
}

// Handlers run in the scan's yields: one that empties the lists, and one that scans anew and replaces the snapshot.
TEST_F(Scan, OutlivesWhatRunsInItsYields) {
    const DeviceFixture fixture(Machine);
    QTimer timer;
    int ticks = 0;
    QObject::connect(&timer, &QTimer::timeout, [this, &ticks] {
        ++ticks;
        for (suite::ListItems& list : lists)
            list.Clear();
        if (ticks % 8 == 0)
            pnp::BindTree();
    });
    timer.start(0);
    Run();
    EXPECT_GT(ticks, 20);
    EXPECT_EQ(status.last(), QStringLiteral("Status: Done"));
}

TEST_F(Scan, ASecondScanShowsTheSame) {
    const DeviceFixture fixture(Machine);
    Run();
    const int count = lists[inventory::Hardware].Count();
    for (suite::ListItems& list : lists)
        list.Clear();
    Run();
    EXPECT_EQ(lists[inventory::Hardware].Count(), count);
}
