#include "device_fixture.h"
#include "pnp/class_table.h"

#include <gtest/gtest.h>

namespace {

QString Guid(const char16_t* text) { return QString::fromUtf16(text); }

} // namespace

TEST(Disk, AnAtaDiskHasNoVendor) {
    DeviceFixture fixture(R"(
/devices/pci0000:00/0000:00:17.0/ata1
/devices/pci0000:00/0000:00:17.0/ata2/host1/target1:0:0/1:0:0:0 @ bus/scsi
  type = 0
  vendor = ATA     
  model = KINGSTON SA400S3
  rev = SBFK
  state = running
  driver -> /bus/scsi/drivers/sd
)");
    const pnp::Device disk = fixture.Only(QStringLiteral("SCSI\\"));
    EXPECT_TRUE(disk.instancePath.startsWith(QStringLiteral("SCSI\\Disk&Ven_&Prod_KINGSTON_SA400S3\\4&")));
    // The second port of its controller.
    EXPECT_TRUE(disk.instancePath.endsWith(QStringLiteral("&0&010000"))) << Plain(disk.instancePath);
    EXPECT_EQ(Plain(Joined(disk.hardwareIds)),
              "SCSI\\Disk________KINGSTON_SA400S3SBFK | SCSI\\Disk________KINGSTON_SA400S3 | "
              "SCSI\\________KINGSTON_SA400S3S | ________KINGSTON_SA400S3S | GenDisk");
    EXPECT_EQ(disk.classGuid, Guid(pnp::class_guid::DiskDrive));
}

TEST(Disk, FieldsAreFilledAndCut) {
    DeviceFixture fixture(R"(
/devices/pci0000:00/0000:00:10.0/host0/target0:0:3/0:0:3:1 @ bus/scsi
  type = 5
  vendor = HL-DT-ST
  model = DVD+-RW GU90N plus more
  rev = A1
)");
    const pnp::Device drive = fixture.Only(QStringLiteral("SCSI\\CdRom&Ven_HL-DT-ST&Prod_DVD+-RW_GU90N_pl"));
    EXPECT_TRUE(drive.instancePath.endsWith(QStringLiteral("&0&000301")));
    EXPECT_EQ(Plain(Joined(drive.hardwareIds)),
              "SCSI\\CdRomHL_DT_STDVD__RW_GU90N_plA1__ | SCSI\\CdRomHL_DT_STDVD__RW_GU90N_pl | SCSI\\CdRomHL_DT_ST | "
              "SCSI\\HL_DT_STDVD__RW_GU90N_plA | HL_DT_STDVD__RW_GU90N_plA | GenCdRom");
    EXPECT_EQ(drive.classGuid, Guid(pnp::class_guid::Cdrom));
    EXPECT_EQ(drive.problemCode, 28U);
}

TEST(Disk, UsbDrivesAreKnownBySerial) {
    DeviceFixture fixture(R"(
/devices/pci0000:00/0000:00:14.0/usb1/1-1
  serial = 0123ABC
/devices/pci0000:00/0000:00:14.0/usb1/1-1/1-1:1.0/host7/target7:0:0/7:0:0:0 @ bus/scsi
  type = 0
  vendor = SanDisk 
  model = Ultra           
  rev = 1.00
  state = offline
)");
    const pnp::Device disk = fixture.Only(QStringLiteral("USBSTOR\\"));
    EXPECT_EQ(Plain(disk.instancePath), "USBSTOR\\Disk&Ven_SanDisk&Prod_Ultra&Rev_1.00\\0123ABC&0");
    EXPECT_EQ(Plain(disk.hardwareIds.value(0)), "USBSTOR\\DiskSanDisk_Ultra___________1_00");
    EXPECT_EQ(disk.problemCode, 43U);
}

TEST(Disk, NvmeControllersAreDisks) {
    DeviceFixture fixture(R"(
/devices/pci0000:00/0000:00:1d.0/0000:02:00.0
  driver -> /bus/pci/drivers/nvme
/devices/pci0000:00/0000:00:1d.0/0000:02:00.0/nvme/nvme0 @ class/nvme
  model = Samsung SSD 990 PRO 2TB
  firmware_rev = 4B2QJXD7
  state = live
)");
    const pnp::Device disk = fixture.Only(QStringLiteral("SCSI\\Disk&Ven_NVMe&Prod_Samsung_SSD_990\\5&"));
    EXPECT_TRUE(disk.instancePath.endsWith(QStringLiteral("&0&000000")));
    EXPECT_EQ(Plain(disk.hardwareIds.value(0)), "SCSI\\DiskNVMe____Samsung_SSD_990_PRO_2TB_________________4B2QJXD7");
    EXPECT_EQ(Plain(disk.hardwareIds.value(2)), "SCSI\\DiskNVMe____Samsung_SSD_990_4B2Q");
    EXPECT_EQ(Plain(disk.bus + QLatin1Char(' ') + disk.address), "nvme nvme0");
    EXPECT_EQ(disk.problemCode, 0U);
    fixture.Write(QStringLiteral("/devices/pci0000:00/0000:00:1d.0/0000:02:00.0/nvme/nvme0/state"), "dead\n");
    EXPECT_EQ(fixture.Only(QStringLiteral("SCSI\\Disk")).problemCode, 43U);
}
