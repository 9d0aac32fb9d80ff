#include "device_fixture.h"
#include "pnp/class_table.h"

#include <gtest/gtest.h>

namespace {

// A keyboard, then a consumer control behind it in the same descriptor.
constexpr char Keyboard[] = "05 01 09 06 A1 01 05 07 19 E0 29 E7 81 02 C0 ";
constexpr char Consumer[] = "05 0C 09 01 A1 01 15 00 C0 ";

QByteArray Device(const QByteArray& descriptor) {
    return QByteArray(R"(
/devices/pci0000:00/0000:00:14.0/usb1/1-2 @ bus/usb
  idVendor = 1532
  idProduct = 029f
  bcdDevice = 0200
  bDeviceClass = 00
  bNumInterfaces = 2
  manufacturer = Maker
/devices/pci0000:00/0000:00:14.0/usb1/1-2/1-2:1.0 @ bus/usb
  bInterfaceNumber = 00
  bInterfaceClass = 03
/devices/pci0000:00/0000:00:14.0/usb1/1-2/1-2:1.1 @ bus/usb
  bInterfaceNumber = 01
  bInterfaceClass = 03
/devices/pci0000:00/0000:00:14.0/usb1/1-2/1-2:1.0/0003:1532:029F.0004 @ bus/hid
  uevent = HID_ID=0003:00001532:0000029F
  driver -> /bus/hid/drivers/hid-generic
  report_descriptor : )") +
           descriptor + "\n";
}

} // namespace

TEST(Hid, AKeyboardHasTheObservedIds) {
    DeviceFixture fixture(Device(Keyboard));
    const pnp::Device device = fixture.Only(QStringLiteral("HID\\VID_1532&PID_029F&MI_00\\7&"));
    EXPECT_TRUE(device.instancePath.endsWith(QStringLiteral("&0&0000")));
    EXPECT_EQ(Plain(Joined(device.hardwareIds)),
              "HID\\VID_1532&PID_029F&REV_0200&MI_00 | HID\\VID_1532&PID_029F&MI_00 | HID\\VID_1532&UP:0001_U:0006 | "
              "HID_DEVICE_SYSTEM_KEYBOARD | HID_DEVICE_UP:0001_U:0006 | HID_DEVICE");
    EXPECT_EQ(device.classGuid, QString::fromUtf16(pnp::class_guid::Keyboard));
    EXPECT_EQ(Plain(device.manufacturer), "Maker");
    EXPECT_EQ(device.problemCode, 0U);
}

TEST(Hid, EachCollectionIsADevice) {
    DeviceFixture fixture(Device(QByteArray(Keyboard) + Consumer));
    EXPECT_TRUE(fixture.Only(QStringLiteral("HID\\VID_1532&PID_029F&MI_00&Col01\\"))
                    .hardwareIds.contains(QStringLiteral("HID\\VID_1532&PID_029F&REV_0200&MI_00&Col01")));
    const pnp::Device consumer = fixture.Only(QStringLiteral("HID\\VID_1532&PID_029F&MI_00&Col02\\"));
    EXPECT_TRUE(consumer.instancePath.endsWith(QStringLiteral("&0&0001")));
    EXPECT_TRUE(consumer.hardwareIds.contains(QStringLiteral("HID_DEVICE_SYSTEM_CONSUMER")));
    EXPECT_EQ(consumer.classGuid, QString::fromUtf16(pnp::class_guid::HidClass));
}

// The last number of the folder is counted up at each arrival and is no part of the place.
TEST(Hid, PathsSurviveReplugging) {
    const QByteArray before = Device(Keyboard);
    const QByteArray after = QByteArray(before).replace("029F.0004", "029F.00A1");
    const QString start = QStringLiteral("HID\\");
    EXPECT_EQ(Plain(DeviceFixture(before).Only(start).instancePath),
              Plain(DeviceFixture(after).Only(start).instancePath));
}

TEST(Hid, OtherBusesNameDevicesTheirWay) {
    DeviceFixture fixture(R"(
/devices/pci0000:00/0000:00:15.0/i2c_designware.0/i2c-3/i2c-ELAN0672:00/0018:04F3:3187.0001 @ bus/hid
  uevent = HID_ID=0018:000004F3:00003187
  report_descriptor : 05 0D 09 05 A1 01 C0
/devices/virtual/misc/uhid/0005:046D:B342.0005 @ bus/hid
  uevent = HID_ID=0005:0000046D:0000B342
)");
    EXPECT_EQ(fixture.Only(QStringLiteral("HID\\ELAN0672\\")).hardwareIds.value(0), QStringLiteral("HID\\ELAN0672"));
    EXPECT_EQ(fixture.Only(QStringLiteral("HID\\{00001124-")).hardwareIds.value(0),
              QStringLiteral("HID\\{00001124-0000-1000-8000-00805F9B34FB}_VID&0002046D_PID&B342"));
}
