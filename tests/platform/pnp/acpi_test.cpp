#include "device_fixture.h"
#include "pnp/class_table.h"

#include <gtest/gtest.h>

namespace {

QString Guid(const char16_t* text) { return QString::fromUtf16(text); }

} // namespace

TEST(Acpi, IdsOfEightAndSevenCharacters) {
    DeviceFixture fixture(R"(
/devices/LNXSYSTM:00/LNXSYBUS:00/QCOM0CA8:00 @ bus/acpi
  hid = QCOM0CA8
  uid = 0
  hrv = 2
/devices/LNXSYSTM:00/LNXSYBUS:00/LEN0071:00 @ bus/acpi
  hid = LEN0071
  modalias = acpi:LEN0071:PNP0303:LNXDOCK:
)");
    const pnp::Device eight = fixture.Only(QStringLiteral("ACPI\\QCOM0CA8"));
    EXPECT_EQ(Plain(eight.instancePath), "ACPI\\QCOM0CA8\\0");
    EXPECT_EQ(Plain(Joined(eight.hardwareIds)),
              "ACPI\\VEN_QCOM&DEV_0CA8&REV_0002 | ACPI\\VEN_QCOM&DEV_0CA8 | ACPI\\QCOM0CA8 | *QCOM0CA8");
    EXPECT_TRUE(eight.classGuid.isEmpty());
    EXPECT_EQ(eight.problemCode, 28U);
    const pnp::Device seven = fixture.Only(QStringLiteral("ACPI\\LEN0071\\3&"));
    EXPECT_EQ(Plain(Joined(seven.hardwareIds)),
              "ACPI\\VEN_LEN&DEV_0071 | ACPI\\LEN0071 | *LEN0071 | ACPI\\VEN_PNP&DEV_0303 | ACPI\\PNP0303 | *PNP0303");
    EXPECT_EQ(seven.classGuid, Guid(pnp::class_guid::Keyboard));
}

// One device, though the kernel lists it on both buses; the driver is bound to the PnP side.
TEST(Acpi, ANodeAndItsPnpDeviceAreOne) {
    DeviceFixture fixture(R"(
/devices/LNXSYSTM:00/LNXSYBUS:00/PNP0501:00 @ bus/acpi
  hid = PNP0501
  uid = 1
  physical_node -> /devices/pnp0/00:05
/devices/pnp0/00:05 @ bus/pnp
  id = PNP0501
  firmware_node -> /devices/LNXSYSTM:00/LNXSYBUS:00/PNP0501:00
  driver -> /bus/pnp/drivers/serial
/devices/pnp0/00:06 @ bus/pnp
  id = PNP0400
  firmware_node -> /devices/LNXSYSTM:00/LNXSYBUS:00/PNP0400:00
)");
    EXPECT_EQ(fixture.Devices().size(), 2U);
    const pnp::Device port = fixture.Only(QStringLiteral("ACPI\\PNP0501"));
    EXPECT_EQ(Plain(port.instancePath), "ACPI\\PNP0501\\1");
    EXPECT_EQ(Plain(port.service), "serial");
    EXPECT_EQ(port.classGuid, Guid(pnp::class_guid::Ports));
    // Its node is gone, so it stands for itself.
    EXPECT_EQ(fixture.Only(QStringLiteral("ACPI\\PNP0400")).problemCode, 28U);
}

TEST(Acpi, SkipsWhatIsNoDeviceOfItsOwn) {
    DeviceFixture fixture(R"(
/devices/LNXSYSTM:00 @ bus/acpi
  hid = LNXSYSTM
/devices/LNXSYSTM:00/device:02 @ bus/acpi
  path = \_SB_.PC00.GFX0
/devices/LNXSYSTM:00/LNXPWRBN:00 @ bus/acpi
  hid = LNXPWRBN
/devices/LNXSYSTM:00/INT3515:00 @ bus/acpi
  hid = INT3515
  status = 0
/devices/LNXSYSTM:00/NVDA0820:00 @ bus/acpi
  hid = NVDA0820
  physical_node -> /devices/pci0000:00/0000:00:01.0
)");
    EXPECT_TRUE(fixture.Devices().empty());
}

// The bits count where a driver is needed; interrupt links, motherboard resources and their like read so in health.
TEST(Acpi, StatusTellsWhatTheFirmwareDid) {
    struct Case {
        const char* ids;
        const char* status;
        quint32 problem;
    };
    const Case cases[] = {
        {"LEN0071:PNP0303", "11", 28}, {"LEN0071:PNP0303", "13", 29}, {"LEN0071:PNP0303", "3", 43},
        {"LEN0071:PNP0303", "9", 29},  {"QCOM0CA8", "junk", 28},      {"PNP0C0A", "13", 29},
        {"PNP0C0F", "9", 0},           {"PNP0C0F", "11", 0},          {"PNP0C01", "3", 0},
        {"PNP0C02", "3", 0},           {"PNP0C02", "13", 0},          {"INT3F0D:PNP0C02", "3", 0},
        {"PNP0103", "3", 0},           {"INT0800", "15", 0},          {"INT33A1:PNP0D80", "15", 0},
    };
    for (const Case& one : cases) {
        DeviceFixture fixture;
        fixture.Add(QByteArray("/devices/LNXSYSTM:00/NODE:00 @ bus/acpi\nmodalias = acpi:") + one.ids +
                    ":\nstatus = " + one.status + "\n");
        EXPECT_EQ(fixture.Only(QStringLiteral("ACPI\\")).problemCode, one.problem) << one.ids << ' ' << one.status;
    }
}

TEST(Acpi, BatteriesBearTheirOwnNames) {
    DeviceFixture fixture(R"(
/devices/LNXSYSTM:00/PNP0C0A:00 @ bus/acpi
  hid = PNP0C0A
  uid = 1
  driver -> /bus/acpi/drivers/battery
/devices/LNXSYSTM:00/PNP0C0A:00/power_supply/BAT0
  model_name = 42T5245
  manufacturer = SANYO
/devices/LNXSYSTM:00/ACPI0003:00 @ bus/acpi
  hid = ACPI0003
  driver -> /bus/acpi/drivers/ac
)");
    const pnp::Device battery = fixture.Only(QStringLiteral("ACPI\\PNP0C0A"));
    EXPECT_EQ(Plain(battery.instancePath), "ACPI\\PNP0C0A\\1");
    EXPECT_EQ(Plain(battery.name), "42T5245");
    EXPECT_EQ(Plain(battery.manufacturer), "SANYO");
    EXPECT_EQ(battery.classGuid, Guid(pnp::class_guid::Battery));
    EXPECT_EQ(fixture.Only(QStringLiteral("ACPI\\ACPI0003")).classGuid, Guid(pnp::class_guid::Battery));
}

// Two nodes may claim one unique id.
TEST(Acpi, DoubledUniqueIdsStayApart) {
    DeviceFixture fixture(R"(
/devices/LNXSYSTM:00/PNP0C02:00 @ bus/acpi
  hid = PNP0C02
  uid = 1
/devices/LNXSYSTM:00/PNP0C02:01 @ bus/acpi
  hid = PNP0C02
  uid = 1
)");
    EXPECT_EQ(Plain(fixture.Devices().at(0).instancePath), "ACPI\\PNP0C02\\1");
    EXPECT_TRUE(fixture.Devices().at(1).instancePath.endsWith(QStringLiteral("&0&01")));
}
