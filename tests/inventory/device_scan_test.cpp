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

// A hub each on the ports 1 to 5 bears the name.
struct Row {
    const char* name;
    const char* lists; // that show it: H, D, P, S
    const char* tree;
};

constexpr Row Rows[] = {
    {"Working", "HS", "manufacturer = Maker"},
    {"Disabled", "HPS", "authorized = 0"},
    {"Microsoft BASIC Display Adapter", "HDS", "manufacturer = (Standard display types)"},
    {"Standard VGA Graphics Adapter", "HDS", ""},
    {"Standard", "H", "manufacturer = (STANDARD system devices)"},
    {"PCI standard host CPU bridge", "H", "/devices/pci0/0000:00:00.0 @ bus/pci\nclass = 0x060000"},
    {"Ethernet Controller", "HDPS", "/devices/pci0/0000:00:02.0 @ bus/pci\nclass = 0x020000"},
    // Without a class; and without a driver, which standard equipment does not hide.
    {"PCI Device", "HDPS", "/devices/pci0/0000:00:03.0 @ bus/pci\nclass = 0xff0000"},
    {"PCI Bridge", "HDPS", "/devices/pci0/0000:00:04.0 @ bus/pci\nclass = 0x068000"},
    // Left out, though the scan comes by.
    {"lo (virtual network interface)", "", "/devices/virtual/net/lo @ class/net"},
    {"USB Root Hub", "", "/devices/usb1 @ bus/usb\nidProduct = 0002"},
    {"pcspkr", "", "/devices/platform/pcspkr @ bus/platform"},
};

QByteArray Machine() {
    QByteArray text;
    for (int i = 0; i < int(std::size(Rows)); ++i) {
        if (i < 5)
            text +=
                QStringLiteral("/devices/usb1/1-%1 @ bus/usb\nidVendor = 1234\nidProduct = 000%1\nbDeviceClass = 09\n"
                               "driver -> /bus/usb/drivers/usb\nproduct = ")
                    .arg(i + 1)
                    .toUtf8() +
                Rows[i].name + '\n';
        text += QByteArray(Rows[i].tree) + '\n';
    }
    return text;
}

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
    const DeviceFixture fixture(Machine());
    Run();
    for (const Row& row : Rows) {
        EXPECT_EQ(Shown(QLatin1String(row.name)), row.lists) << row.name;
        EXPECT_TRUE(status.contains(QStringLiteral("Status: Getting ") + QLatin1String(row.name))) << row.name;
    }
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

// A class's icon is stored before its device is left out, and goes with the next scan.
TEST_F(Scan, ExcludedDevicesLeaveTheirIcon) {
    DeviceFixture fixture("/devices/virtual/net/lo @ class/net\n");
    Run();
    EXPECT_EQ(lists[inventory::Hardware].Count(), 0);
    EXPECT_TRUE(suite::SharedIconStore().Icon(5000 - 5));
    fixture.Remove(QStringLiteral("/class/net/lo"));
    status.clear();
    Run();
    EXPECT_EQ(status, QStringList{QStringLiteral("Status: Done")});
    EXPECT_EQ(suite::SharedIconStore().Count(), 0);
}

TEST_F(Scan, ClosingStopsAtTheNextDevice) {
    const DeviceFixture fixture(Machine());
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
    const DeviceFixture fixture(Machine());
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
