#include "device_fixture.h"
#include "pnp/class_table.h"

#include <QFile>
#include <gtest/gtest.h>

namespace {

QString Guid(const char16_t* text) { return QString::fromUtf16(text); }

} // namespace

TEST(HdAudio, CodecsHaveTheObservedIds) {
    DeviceFixture fixture(R"(
/devices/pci0000:00/0000:00:1f.3/hdaudioC0D0 @ bus/hdaudio
  vendor_id = 0x10ec0257
  subsystem_id = 0x17aa38bf
  revision_id = 0x100002
  afg = 0x1
  mfg = 0x0
  vendor_name = Realtek
  chip_name = ALC257
  driver -> /bus/hdaudio/drivers/snd_hda_codec_realtek
)");
    const pnp::Device codec = fixture.Only(QStringLiteral("HDAUDIO\\"));
    EXPECT_TRUE(codec.instancePath.startsWith(
        QStringLiteral("HDAUDIO\\FUNC_01&VEN_10EC&DEV_0257&SUBSYS_17AA38BF&REV_1000\\4&")));
    EXPECT_TRUE(codec.instancePath.endsWith(QStringLiteral("&0&0001")));
    EXPECT_EQ(Plain(Joined(codec.hardwareIds)),
              "HDAUDIO\\FUNC_01&VEN_10EC&DEV_0257&SUBSYS_17AA38BF&REV_1000 | "
              "HDAUDIO\\FUNC_01&VEN_10EC&DEV_0257&SUBSYS_17AA38BF | HDAUDIO\\FUNC_01&VEN_10EC&DEV_0257&REV_1000 | "
              "HDAUDIO\\FUNC_01&VEN_10EC&DEV_0257");
    EXPECT_EQ(Plain(codec.name), "ALC257");
    EXPECT_EQ(codec.classGuid, Guid(pnp::class_guid::Media));
}

TEST(HdAudio, OldKernelsShowCodecsInTheSoundClass) {
    DeviceFixture fixture(R"(
/devices/pci0000:00/0000:00:1b.0
  driver -> /bus/pci/drivers/HDA Intel
/devices/pci0000:00/0000:00:1b.0/sound/card0/hwC0D1 @ class/sound
  vendor_id = 0x14f12bfa
  afg = 0x0
  mfg = 0x2
)");
    const pnp::Device modem = fixture.Only(QStringLiteral("HDAUDIO\\FUNC_02&VEN_14F1&DEV_2BFA"));
    EXPECT_TRUE(modem.instancePath.endsWith(QStringLiteral("&0&0102")));
    // A subsystem that nothing tells is in no ID.
    EXPECT_EQ(Plain(Joined(modem.hardwareIds)), "HDAUDIO\\FUNC_02&VEN_14F1&DEV_2BFA");
    EXPECT_EQ(modem.problemCode, 0U);
}

TEST(Monitor, ConnectedOnesWithAnEdidAreListed) {
    DeviceFixture fixture(R"(
/devices/pci0000:00/0000:00:02.0/drm/card1/card1-HDMI-A-1 @ class/drm
  status = connected
  edid : 00FFFFFFFFFFFF00 10ACF440
/devices/pci0000:00/0000:00:02.0/drm/card1/card1-DP-1 @ class/drm
  status = disconnected
  edid : 00FFFFFFFFFFFF00 10ACF440
/devices/pci0000:00/0000:00:02.0/drm/card1/card1-DP-2 @ class/drm
  status = connected
/devices/pci0000:00/0000:00:02.0/drm/card1 @ class/drm
)");
    const QString edid = QStringLiteral("/devices/pci0000:00/0000:00:02.0/drm/card1/card1-HDMI-A-1/edid");
    fixture.Write(edid, QByteArray::fromHex("00FFFFFFFFFFFF0010ACF440").leftJustified(128, '\0'));
    const pnp::Device monitor = fixture.Only(QStringLiteral("DISPLAY\\"));
    EXPECT_TRUE(monitor.instancePath.startsWith(QStringLiteral("DISPLAY\\DEL40F4\\4&")));
    EXPECT_TRUE(monitor.instancePath.contains(QStringLiteral("&0&UID")));
    EXPECT_EQ(Plain(Joined(monitor.hardwareIds)), "MONITOR\\DEL40F4");
    EXPECT_EQ(monitor.problemCode, 0U);
    EXPECT_EQ(monitor.classGuid, Guid(pnp::class_guid::Monitor));
    // A broken block costs the identity, not the monitor.
    fixture.Write(edid, "junk");
    EXPECT_TRUE(fixture.Only(QStringLiteral("DISPLAY\\Default_Monitor\\")).hardwareIds.isEmpty());
}

TEST(Processor, IsNamedByMakerFamilyAndModel) {
    DeviceFixture fixture(R"(
/devices/system/cpu
  modalias = cpu:type:x86,ven0000fam0006mod009E:feature:,0000,0001,003D,0040
/devices/system/cpu/cpu0
/devices/system/cpu/cpu1
  driver -> /bus/cpu/drivers/processor
/devices/system/cpu/cpufreq
/devices/LNXSYSTM:00/ACPI0007:00 @ bus/acpi
  hid = ACPI0007
)");
    pnp::Sources sources = pnp::CurrentSources();
    sources.processorInfo = fixture.Beside(QStringLiteral("cpuinfo"));
    QFile info(sources.processorInfo);
    ASSERT_TRUE(info.open(QIODevice::WriteOnly));
    info.write("processor\t: 0\nmodel name\t: Intel(R) Core(TM) i7-8700 CPU @ 3.20GHz\n");
    info.close();
    pnp::SetSources(sources);
    EXPECT_EQ(fixture.Devices().size(), 2U);
    const pnp::Device processor = fixture.Devices().at(1);
    EXPECT_EQ(Plain(processor.instancePath), "ACPI\\GenuineIntel_-_Intel64_Family_6_Model_158_-_"
                                             "Intel(R)_Core(TM)_i7-8700_CPU_@_3.20GHz\\_1");
    EXPECT_EQ(Plain(Joined(processor.hardwareIds)),
              "ACPI\\GenuineIntel_-_Intel64_Family_6_Model_158 | *GenuineIntel_-_Intel64_Family_6_Model_158 | "
              "ACPI\\GenuineIntel_-_Intel64_Family_6 | *GenuineIntel_-_Intel64_Family_6 | "
              "ACPI\\GenuineIntel_-_Intel64 | *GenuineIntel_-_Intel64");
    EXPECT_EQ(Plain(processor.service), "processor");
}

TEST(Mmc, CardsAndFunctions) {
    DeviceFixture fixture(R"(
/devices/pci0000:00/0000:00:1a.0/mmc_host/mmc0/mmc0:0001 @ bus/mmc
  type = SD
  manfid = 0x000003
  oemid = 0x5344
  name = SL16G
  hwrev = 0x8
  fwrev = 0x0
  driver -> /bus/mmc/drivers/mmcblk
/devices/pci0000:00/0000:00:1a.1/mmc_host/mmc1/mmc1:0001 @ bus/mmc
  type = SDIO
/devices/pci0000:00/0000:00:1a.1/mmc_host/mmc1/mmc1:0001/mmc1:0001:1 @ bus/sdio
  vendor = 0x02d0
  device = 0x4330
  class = 0x00
/devices/pci0000:00/0000:00:1a.1/mmc_host/mmc1/mmc1:0001/mmc1:0001:1/net/wlan0
)");
    EXPECT_EQ(fixture.Devices().size(), 2U);
    const pnp::Device card = fixture.Only(QStringLiteral("SD\\VID_03&OID_5344&PID_SL16G&REV_8.0\\"));
    EXPECT_EQ(Plain(Joined(card.hardwareIds)), "SD\\VID_03&OID_5344&PID_SL16G&REV_8.0 | SD\\VID_03&OID_5344&PID_SL16G");
    EXPECT_EQ(card.classGuid, Guid(pnp::class_guid::DiskDrive));
    const pnp::Device function = fixture.Only(QStringLiteral("SD\\VID_02D0&PID_4330&FN_1\\"));
    EXPECT_EQ(Plain(Joined(function.hardwareIds)), "SD\\VID_02D0&PID_4330&FN_1 | SD\\VID_02D0&PID_4330");
    EXPECT_EQ(function.classGuid, Guid(pnp::class_guid::Net));
}

TEST(Thunderbolt, RoutersAreListed) {
    DeviceFixture fixture(R"(
/devices/pci0000:00/0000:00:0d.2/domain0/0-0 @ bus/thunderbolt
  vendor = 0x8086
  device = 0x9a1b
/devices/pci0000:00/0000:00:0d.2/domain0/0-0/0-1 @ bus/thunderbolt
  vendor = 0x00d4
  device = 0xb070
  vendor_name = Dell
  device_name = Dock
  unique_id = d4010000-0070-6508
  authorized = 0
/devices/pci0000:00/0000:00:0d.2/domain0 @ bus/thunderbolt
)");
    EXPECT_EQ(fixture.Devices().size(), 2U);
    EXPECT_EQ(Plain(Joined(fixture.Only(QStringLiteral("USB4\\ROOT_DEVICE_ROUTER&VID_8086&PID_9A1B")).hardwareIds)),
              "USB4\\ROOT_DEVICE_ROUTER&VID_8086&PID_9A1B");
    const pnp::Device dock = fixture.Only(QStringLiteral("USB4\\VID_00D4&PID_B070\\d4010000"));
    EXPECT_EQ(Plain(dock.name), "Dock");
    EXPECT_EQ(dock.problemCode, 22U);
}

TEST(Software, VirtualDevicesStandApart) {
    DeviceFixture fixture(R"(
/devices/virtual/net/lo @ class/net
/devices/pci0000:00/0000:00:19.0/net/eth0 @ class/net
/devices/platform/pcspkr @ bus/platform
/devices/platform/AMDI0010:00 @ bus/platform
  firmware_node -> /devices/LNXSYSTM:00/AMDI0010:00
)");
    EXPECT_EQ(fixture.Devices().size(), 2U);
    EXPECT_EQ(Plain(fixture.Only(QStringLiteral("SWD\\")).instancePath), "SWD\\NET\\lo");
    EXPECT_EQ(Plain(fixture.Only(QStringLiteral("ROOT\\")).instancePath), "ROOT\\PCSPKR\\0000");
}
