#include "device_fixture.h"
#include "pnp/class_table.h"
#include "pnp/pci_class.h"

#include <gtest/gtest.h>

namespace {

QString Guid(const char16_t* text) { return text == nullptr ? QString() : QString::fromUtf16(text); }

constexpr char Tree[] = R"(
/devices/pci0000:00/0000:00:10.1 @ bus/pci
  vendor = 0x8086
  device = 0x2f34
  subsystem_vendor = 0x8086
  subsystem_device = 0x2f34
  revision = 0x02
  class = 0x110100
  driver -> /bus/pci/drivers/ioatdma
/devices/pci0000:00/0000:00:01.0 @ bus/pci
  vendor = 0x8086
  device = 0x2f02
  revision = 0x02
  class = 0x060400
  modalias = pci:v00008086d00002F02sv00000000sd00000000bc06sc04i00
/devices/pci0000:00/0000:00:01.0/0000:01:00.0 @ bus/pci
  vendor = 0x10de
  device = 0x1183
  subsystem_vendor = 0x1043
  subsystem_device = 0x841f
  revision = 0xa1
  class = 0x030000
/bus/pci/drivers/ioatdma/module
  version = 5.00
)";

} // namespace

TEST(Pci, MakesTheObservedIdentifiers) {
    const DeviceFixture fixture(Tree);
    const pnp::Device device = fixture.Only(QStringLiteral("PCI\\VEN_8086&DEV_2F34"));
    EXPECT_TRUE(device.instancePath.startsWith(QStringLiteral("PCI\\VEN_8086&DEV_2F34&SUBSYS_2F348086&REV_02\\3&")));
    EXPECT_TRUE(device.instancePath.endsWith(QStringLiteral("&0&81")));
    EXPECT_EQ(Plain(Joined(device.hardwareIds)),
              "PCI\\VEN_8086&DEV_2F34&SUBSYS_2F348086&REV_02 | PCI\\VEN_8086&DEV_2F34&SUBSYS_2F348086 | "
              "PCI\\VEN_8086&DEV_2F34&CC_110100 | PCI\\VEN_8086&DEV_2F34&CC_1101 | PCI\\VEN_8086&DEV_2F34&REV_02 | "
              "PCI\\VEN_8086&DEV_2F34");
    EXPECT_EQ(Plain(device.driverVersion), "5.00");
    EXPECT_EQ(device.classGuid, Guid(pnp::class_guid::System));
    EXPECT_EQ(Plain(device.driverKey), "{4D36E97D-E325-11CE-BFC1-08002BE10318}\\0000");
}

TEST(Pci, LocatesAFunctionBehindABridge) {
    const DeviceFixture fixture(Tree);
    const pnp::Device device = fixture.Only(QStringLiteral("PCI\\VEN_10DE&DEV_1183&SUBSYS_841F1043&REV_A1\\4&"));
    EXPECT_TRUE(device.instancePath.endsWith(QStringLiteral("&0&0008"))) << Plain(device.instancePath);
    EXPECT_EQ(Plain(device.bus + QLatin1Char(' ') + device.address), "pci 0000:01:00.0");
    EXPECT_EQ(device.problemCode, 28U);
    EXPECT_EQ(device.classGuid, Guid(pnp::class_guid::Display));
    EXPECT_TRUE(device.driverKey.isEmpty());
    // A bridge without a driver works, and is nobody's product.
    const pnp::Device bridge = fixture.Only(QStringLiteral("PCI\\VEN_8086&DEV_2F02&SUBSYS_00000000"));
    EXPECT_EQ(bridge.problemCode, 0U);
    EXPECT_EQ(Plain(bridge.manufacturer), "(Standard system devices)");
}

// Old kernels and partial captures lack attributes: the same function told in four ways is the same device.
TEST(Pci, TakesMissingNumbersFromElsewhere) {
    QByteArray config(64, '\0');
    config[0x08] = 0x1a;
    config[0x2c] = char(0xaa);
    config[0x2d] = 0x17;
    config[0x2e] = 0x34;
    config[0x2f] = 0x12;
    const char* attributes = "/devices/pci0000:00/0000:00:02.0 @ bus/pci\n"
                             "vendor = 0x8086\ndevice = 0x0046\nclass = 0x030000\n";
    const QString expected = QStringLiteral("PCI\\VEN_8086&DEV_0046&SUBSYS_123417AA");
    {
        DeviceFixture fixture(attributes);
        fixture.Write(QStringLiteral("/devices/pci0000:00/0000:00:02.0/config"), config);
        EXPECT_EQ(fixture.Only(expected).hardwareIds.value(0), expected + QStringLiteral("&REV_1A"));
    }
    {
        DeviceFixture fixture(attributes);
        fixture.Add("/devices/pci0000:00/0000:00:02.0\n"
                    "modalias = pci:v00008086d00000046sv000017AAsd00001234bc03sc00i00\n");
        const pnp::Device device = fixture.Only(expected);
        // Without a revision no ID names one.
        EXPECT_EQ(device.hardwareIds.value(0), expected);
        EXPECT_FALSE(Joined(device.hardwareIds).contains(QStringLiteral("REV_")));
    }
    {
        DeviceFixture fixture("/devices/pci0000:00/0000:00:02.0 @ bus/pci\n");
        fixture.Write(QStringLiteral("/devices/pci0000:00/0000:00:02.0/uevent"),
                      "PCI_CLASS=30000\nPCI_ID=8086:0046\nPCI_SUBSYS_ID=17AA:1234\n");
        EXPECT_TRUE(fixture.Only(expected).hardwareIds.contains(QStringLiteral("PCI\\VEN_8086&DEV_0046&CC_030000")));
    }
    {
        DeviceFixture fixture("/devices/pci0000:00/0000:00:02.0 @ bus/pci\n"
                              "modalias = pci:v00008086d00000046sv000017AAsd00001234bc0Csc03i30\n");
        EXPECT_TRUE(fixture.Only(expected).hardwareIds.contains(QStringLiteral("PCI\\VEN_8086&DEV_0046&CC_0C0330")));
    }
}

TEST(Pci, AFunctionThatTellsNothingHasNoIds) {
    const DeviceFixture fixture("/devices/pci0000:00/0000:00:02.0 @ bus/pci\nvendor = junk\n");
    const pnp::Device device = fixture.Only(QStringLiteral("PCI\\"));
    EXPECT_TRUE(device.hardwareIds.isEmpty());
    EXPECT_TRUE(device.classGuid.isEmpty());
    EXPECT_EQ(device.problemCode, 28U);
}

TEST(Pci, ClassCodesDecideTheSetupClass) {
    using namespace pnp::class_guid;
    struct Case {
        quint32 code;
        const char16_t* guid;
    };
    const Case cases[] = {
        {0x01018a, Hdc},         {0x010601, Hdc},         {0x010000, ScsiAdapter}, {0x010400, ScsiAdapter},
        {0x010700, ScsiAdapter}, {0x010802, ScsiAdapter}, {0x028000, Net},         {0x030200, Display},
        {0x040300, System},      {0x050000, System},      {0x060100, System},      {0x060700, Pcmcia},
        {0x070002, Ports},       {0x080000, System},      {0x080501, SdHost},      {0x0c0010, Adapter1394},
        {0x0c0330, Usb},         {0x0c0500, System},      {0x118000, System},      {0x120000, ComputeAccelerator},
        {0xff0000, nullptr},     {0x000000, nullptr},
    };
    for (const Case& one : cases)
        EXPECT_EQ(Guid(pnp::PciSetupClass(one.code)), Guid(one.guid)) << std::hex << one.code;
}

// The function is the device; the driver and the class are those of the virtio device below it.
TEST(Pci, AVirtioFunctionStandsForItsDevice) {
    DeviceFixture fixture(R"(
/devices/pci0000:00/0000:00:01.0 @ bus/pci
  vendor = 0x1af4
  device = 0x1045
  subsystem_vendor = 0x1af4
  subsystem_device = 0x1045
  revision = 0x01
  class = 0xffff00
  driver -> /bus/pci/drivers/virtio-pci
/devices/pci0000:00/0000:00:01.0/virtio0 @ bus/virtio
  modalias = virtio:d00000005v00001AF4
/devices/pci0000:00/0000:00:02.0 @ bus/pci
  vendor = 0x1af4
  device = 0x1000
  subsystem_vendor = 0x1af4
  subsystem_device = 0x0001
  class = 0xffff00
  driver -> /bus/pci/drivers/virtio-pci
/devices/pci0000:00/0000:00:02.0/virtio1 @ bus/virtio
  driver -> /bus/virtio/drivers/virtio_net
)");
    const pnp::Device balloon = fixture.Only(QStringLiteral("PCI\\VEN_1AF4&DEV_1045"));
    EXPECT_EQ(balloon.problemCode, 28U);
    EXPECT_EQ(balloon.classGuid, Guid(pnp::class_guid::System));
    const pnp::Device network = fixture.Only(QStringLiteral("PCI\\VEN_1AF4&DEV_1000"));
    EXPECT_EQ(network.problemCode, 0U);
    EXPECT_EQ(Plain(network.service), "virtio_net");
    EXPECT_EQ(network.classGuid, Guid(pnp::class_guid::Net));
    EXPECT_EQ(fixture.Devices().size(), 2U);
}

// Devices of the same kind behind deep chains and in other domains stay apart.
TEST(Pci, PathsOfEqualFunctionsDiffer) {
    DeviceFixture fixture;
    QByteArray tree;
    QByteArray folder = "/devices/pci0000:00";
    for (int depth = 0; depth < 12; ++depth) {
        folder += "/0000:" + QByteArray::number(depth, 16).rightJustified(2, '0') + ":00.0";
        tree += folder + " @ bus/pci\nvendor = 0x1234\ndevice = 0x5678\nclass = 0x060400\n";
    }
    tree += "/devices/pci0001:00/0001:00:00.0 @ bus/pci\nvendor = 0x1234\ndevice = 0x5678\nclass = 0x060400\n";
    fixture.Add(tree);
    QStringList paths;
    for (const pnp::Device& device : fixture.Devices())
        paths.append(device.instancePath);
    EXPECT_EQ(paths.size(), 13);
    EXPECT_EQ(paths.removeDuplicates(), 0);
}
