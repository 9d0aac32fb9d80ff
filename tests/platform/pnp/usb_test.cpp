#include "device_fixture.h"
#include "pnp/class_table.h"

#include <gtest/gtest.h>

namespace {

constexpr char Tree[] = R"(
/devices/pci0000:00/0000:00:14.0 @ bus/pci
  vendor = 0x8086
  device = 0xa36d
  revision = 0x10
  class = 0x0c0330
  driver -> /bus/pci/drivers/xhci_hcd
/devices/pci0000:00/0000:00:14.0/usb1 @ bus/usb
  idVendor = 1d6b
  idProduct = 0002
  manufacturer = Linux 5.10.0-8-amd64 xhci-hcd
  driver -> /bus/usb/drivers/usb
/devices/pci0000:00/0000:00:14.0/usb2 @ bus/usb
  idVendor = 1d6b
  idProduct = 0003
  driver -> /bus/usb/drivers/usb
/devices/pci0000:00/0000:00:14.0/usb1/1-2 @ bus/usb
  idVendor = c0f4
  idProduct = 04e0
  bcdDevice = 0110
  bDeviceClass = 00
  bNumInterfaces =  2
  driver -> /bus/usb/drivers/usb
/devices/pci0000:00/0000:00:14.0/usb1/1-2/1-2:1.0 @ bus/usb
  bInterfaceNumber = 00
  bInterfaceClass = 03
  driver -> /bus/usb/drivers/usbhid
/devices/pci0000:00/0000:00:14.0/usb1/1-2/1-2:1.1 @ bus/usb
  bInterfaceNumber = 01
  bInterfaceClass = 03
/devices/pci0000:00/0000:00:14.0/usb1/1-6 @ bus/usb
  idVendor = 275d
  idProduct = 0ba6
  bcdDevice = 0100
  bDeviceClass = 00
  bNumInterfaces =  1
  product = Optical Mouse
  manufacturer = Maker
  driver -> /bus/usb/drivers/usb
/devices/pci0000:00/0000:00:14.0/usb1/1-6/1-6:1.0 @ bus/usb
  bInterfaceNumber = 00
  bInterfaceClass = 03
  bInterfaceSubClass = 01
  bInterfaceProtocol = 02
  driver -> /bus/usb/drivers/usbhid
/devices/pci0000:00/0000:00:14.0/usb1/1-0:1.0 @ bus/usb
  bInterfaceClass = 09
)";

QString Guid(const char16_t* text) { return QString::fromUtf16(text); }

} // namespace

TEST(Usb, CompositeDevicesShowTheirInterfaces) {
    const DeviceFixture fixture(Tree);
    const pnp::Device device = fixture.Only(QStringLiteral("USB\\VID_C0F4&PID_04E0\\5&"));
    EXPECT_TRUE(device.instancePath.endsWith(QStringLiteral("&0&2")));
    EXPECT_EQ(Plain(Joined(device.hardwareIds)), "USB\\VID_C0F4&PID_04E0&REV_0110 | USB\\VID_C0F4&PID_04E0");
    EXPECT_EQ(device.classGuid, Guid(pnp::class_guid::Usb));
    const pnp::Device interface = fixture.Only(QStringLiteral("USB\\VID_C0F4&PID_04E0&MI_01\\6&"));
    EXPECT_TRUE(interface.instancePath.endsWith(QStringLiteral("&0&0001")));
    EXPECT_EQ(Plain(Joined(interface.hardwareIds)),
              "USB\\VID_C0F4&PID_04E0&REV_0110&MI_01 | USB\\VID_C0F4&PID_04E0&MI_01");
    EXPECT_EQ(interface.problemCode, 28U);
    EXPECT_EQ(fixture.Only(QStringLiteral("USB\\VID_C0F4&PID_04E0&MI_00")).problemCode, 0U);
}

TEST(Usb, ASingleInterfaceIsTheDevice) {
    const DeviceFixture fixture(Tree);
    const pnp::Device mouse = fixture.Only(QStringLiteral("USB\\VID_275D&PID_0BA6"));
    EXPECT_TRUE(mouse.instancePath.startsWith(QStringLiteral("USB\\VID_275D&PID_0BA6\\5&")));
    EXPECT_TRUE(mouse.instancePath.endsWith(QStringLiteral("&0&6")));
    EXPECT_EQ(mouse.classGuid, Guid(pnp::class_guid::HidClass));
    EXPECT_EQ(Plain(mouse.service), "usbhid");
    EXPECT_EQ(Plain(mouse.name), "Optical Mouse");
    // The captured kernel names itself in its root hubs.
    EXPECT_EQ(Plain(mouse.driverVersion), "5.10.0-8-amd64");
}

TEST(Usb, RootHubsAreKnownByTheirController) {
    const DeviceFixture fixture(Tree);
    const pnp::Device hub = fixture.Only(QStringLiteral("USB\\ROOT_HUB30\\4&"));
    EXPECT_TRUE(hub.instancePath.endsWith(QStringLiteral("&0&0")));
    EXPECT_EQ(Plain(Joined(hub.hardwareIds)),
              "USB\\ROOT_HUB30&VID8086&PIDA36D&REV0010 | USB\\ROOT_HUB30&VID8086&PIDA36D | USB\\ROOT_HUB30");
    EXPECT_EQ(Plain(fixture.Only(QStringLiteral("USB\\ROOT_HUB20\\")).service), "usb");
}

// A serial number is the instance; the second device that claims it takes its place instead.
TEST(Usb, SerialNumbersNameInstances) {
    DeviceFixture fixture;
    const QByteArray common = "idVendor = 0951\nidProduct = 1666\nbDeviceClass = 00\nbNumInterfaces = 1\n";
    fixture.Add("/devices/pci0000:00/0000:00:14.0/usb1/1-1 @ bus/usb\n" + common + "serial = 60A44C 3FAC\n");
    fixture.Add("/devices/pci0000:00/0000:00:14.0/usb1/1-2 @ bus/usb\n" + common + "serial = 60A44C 3FAC\n");
    fixture.Add("/devices/pci0000:00/0000:00:14.0/usb1/1-3 @ bus/usb\n" + common + "serial = 000000000\n");
    fixture.Add("/devices/pci0000:00/0000:00:14.0/usb1/1-4 @ bus/usb\n" + common + "serial = a\\b\n");
    const std::vector<pnp::Device> devices = fixture.Devices();
    ASSERT_EQ(devices.size(), 4U);
    EXPECT_EQ(Plain(devices[0].instancePath), "USB\\VID_0951&PID_1666\\60A44C_3FAC");
    EXPECT_TRUE(devices[1].instancePath.endsWith(QStringLiteral("&0&2")));
    EXPECT_TRUE(devices[2].instancePath.endsWith(QStringLiteral("&0&3")));
    EXPECT_TRUE(devices[3].instancePath.endsWith(QStringLiteral("&0&4")));
}

// The kernel counts buses as controllers come up; a path must not depend on that.
TEST(Usb, PathsSurviveAnotherBusNumber) {
    const auto path = [](const char* bus, const char* device) {
        DeviceFixture fixture;
        const QByteArray controller = "/devices/pci0000:00/0000:00:14.0/";
        fixture.Add(controller + bus + "/" + device +
                    " @ bus/usb\nidVendor = 0951\nidProduct = 1666\nbDeviceClass = 09\n");
        return fixture.Only(QStringLiteral("USB\\VID")).instancePath;
    };
    EXPECT_EQ(Plain(path("usb1", "1-3/1-3.2")), Plain(path("usb4", "4-3/4-3.2")));
    EXPECT_NE(Plain(path("usb1", "1-3/1-3.2")), Plain(path("usb1", "1-4/1-4.2")));
}

TEST(Usb, AnInterfaceOutlivesItsDevice) {
    DeviceFixture fixture;
    fixture.Link(QStringLiteral("/bus/usb/devices/1-2:1.0"), QStringLiteral("/devices/gone/usb1/1-2/1-2:1.0"));
    fixture.Add("/devices/pci0000:00/0000:00:14.0/usb1/1-3:1.1 @ bus/usb\n"
                "modalias = usb:v046DpC52Bd1201dc00dsc00dp00ic03isc01ip02in01\n");
    const std::vector<pnp::Device> devices = fixture.Devices();
    ASSERT_EQ(devices.size(), 1U);
    EXPECT_EQ(Plain(Joined(devices[0].hardwareIds)),
              "USB\\VID_046D&PID_C52B&REV_1201&MI_01 | USB\\VID_046D&PID_C52B&MI_01");
    EXPECT_EQ(devices[0].classGuid, Guid(pnp::class_guid::HidClass));
}

// Interfaces that an association joins are one function, known by the first.
TEST(Usb, AssociatedInterfacesAreOneFunction) {
    DeviceFixture fixture(R"(
/devices/pci0000:00/0000:00:14.0/usb1/1-8 @ bus/usb
  idVendor = 04f2
  idProduct = b604
  bDeviceClass = ef
  bDeviceSubClass = 02
  bDeviceProtocol = 01
  bNumInterfaces =  2
/devices/pci0000:00/0000:00:14.0/usb1/1-8/1-8:1.0 @ bus/usb
  bInterfaceNumber = 00
  bInterfaceClass = 0e
  iad_bFirstInterface = 00
/devices/pci0000:00/0000:00:14.0/usb1/1-8/1-8:1.1 @ bus/usb
  bInterfaceNumber = 01
  bInterfaceClass = 0e
  iad_bFirstInterface = 00
)");
    EXPECT_EQ(fixture.Devices().size(), 2U);
    EXPECT_EQ(fixture.Only(QStringLiteral("USB\\VID_04F2&PID_B604&MI_")).classGuid, Guid(pnp::class_guid::Camera));
}

// What user space drives shows no driver and has no problem; what the user switched off has.
TEST(Usb, DriversAreNotEverythingInProblems) {
    struct Case {
        const char* attributes;
        const char* interface;
        quint32 problem;
        const char16_t* guid;
    };
    const Case cases[] = {
        {"idVendor = 138a\nidProduct = 0011\nbDeviceClass = ff", "ff", 0, pnp::class_guid::Biometric},
        {"idVendor = 076b\nidProduct = 3021\nbDeviceClass = 00", "0b", 0, pnp::class_guid::SmartCardReader},
        {"idVendor = 04b8\nidProduct = 0005\nbDeviceClass = 00", "07", 0, pnp::class_guid::Usb},
        {"idVendor = 0a5c\nidProduct = 2110\nbDeviceClass = e0\nbDeviceSubClass = 01\nbDeviceProtocol = 01", "e0", 28,
         pnp::class_guid::Bluetooth},
        {"idVendor = 0bda\nidProduct = 8179\nbDeviceClass = 00", "ff", 28, nullptr},
        {"idVendor = 0951\nidProduct = 1666\nbDeviceClass = 00\nauthorized = 0", "08", 22, pnp::class_guid::Usb},
    };
    for (const Case& one : cases) {
        DeviceFixture fixture;
        const QByteArray folder = "/devices/pci0000:00/0000:00:14.0/usb1/1-1";
        fixture.Add(folder + " @ bus/usb\nbNumInterfaces = 1\n" + one.attributes + "\n" + folder +
                    "/1-1:1.0 @ bus/usb\nbInterfaceNumber = 00\nbInterfaceClass = " + one.interface + "\n");
        const pnp::Device device = fixture.Only(QStringLiteral("USB\\"));
        EXPECT_EQ(device.problemCode, one.problem) << one.attributes;
        EXPECT_EQ(Plain(device.classGuid), Plain(one.guid == nullptr ? QString() : Guid(one.guid))) << one.attributes;
    }
}
