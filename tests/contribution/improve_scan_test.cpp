#include "contribution/improve_scan.h"

#include "base/text.h"
#include "contribution/improve_filters.h"
#include "device_fixture.h"
#include "forms/forms.h"
#include "shell/frm_main.h"
#include "suite/list_box.h"
#include "suite/list_items.h"
#include "support/usb_device.h"
#include "values/program_values.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

using namespace contribution;

namespace {

// The main window holds the set of allowed characters; it is made and not loaded.
class ImproveScanTest : public testing::Test {
  protected:
    ImproveScanTest() {
        values::Program() = values::ProgramValues();
        all_.SetAllGone([] {});
        shell::RegisterMainWindow();
        all_.Shared("FrmMain");
    }
    ~ImproveScanTest() override {
        all_.Clear();
        values::Program() = values::ProgramValues();
    }

    static QStringList Scan() {
        suite::ListItems list;
        for (const char* key : {"Name", "Manufacturer", "HardwareIDs"})
            list.AddColumn(key, key, 1500);
        list.SetSorted(true);
        ImproveScan(list, [](const QString&) {});
        QStringList rows;
        for (int i = 1; i <= list.Count(); ++i)
            rows << list.Item(i)->Text() + u'/' + list.Item(i)->CellText(1) + u'/' + list.Item(i)->CellText(2);
        return rows;
    }

    forms::Forms& all_ = forms::Forms::Instance();
};

// Devices of one product number, so of one ID.
QByteArray UsbDevice(int port, const QByteArray& name, const QByteArray& maker,
                     const QByteArray& more = support::usbDriver) {
    return support::UsbDevice(port, "0001", name, maker, more);
}

TEST_F(ImproveScanTest, TheAllowedSetHas107BytesAndTabAndNonBreakingSpace) {
    int allowed = 0;
    for (int byte = 0; byte < 256; ++byte)
        allowed += IsPlainText(base::FromAnsi(QByteArray(1, char(byte)))) ? 1 : 0;
    EXPECT_EQ(allowed, 107 + 2);
    for (const char16_t* plain :
         {u"", u"\t\u00A0", u"USB\\A&B|'\"?~", u"Maker\u00AE\u2122", u"\u201EIn\u201C \u2022 \u2013"})
        EXPECT_TRUE(IsPlainText(QString::fromUtf16(plain)));
    for (const char16_t* garbled : {u"Gerät", u"Мышь", u"a\nb", u"a\u2014b", u"\u20AC"})
        EXPECT_FALSE(IsPlainText(QString::fromUtf16(garbled)));
}

TEST_F(ImproveScanTest, DevicesOfNoUseAreLeftOutAndTheirNeighboursKept) {
    const QString id = "USB\\VID_1", name = "Some Device", maker = "Some Maker";
    EXPECT_TRUE(IsDeviceWorthHaving(id, name, maker));
    for (const char* bad :
         {"Root\\X", "STORAGE\\Volume\\1", "USB\\ROOT_HUB30", "SWD\\X", "UUIDx", "UMB\\X", "WPDBUSENUMROOT\\UMB"})
        EXPECT_FALSE(IsDeviceWorthHaving(bad, name, maker)) << bad;
    for (const char* good : {"Roots\\X", "STORAGE\\Disk", "USB\\ROOT", "XSWD\\"})
        EXPECT_TRUE(IsDeviceWorthHaving(good, name, maker)) << good;
    for (const char* bad :
         {"", "Standardised Thing", "ATA Channel 1", "USB Composite Device", "usb mass storage device",
          "USB Printing Support", "Generic PnP Monitor", "HID Keyboard Device", "HID-compliant mouse",
          "Generic USB Hub", "Primary IDE Channel", "Secondary IDE Channel", "Gerät"})
        EXPECT_FALSE(IsDeviceWorthHaving(id, QString::fromUtf8(bad), maker)) << bad;
    for (const char* good : {"My Standard", "USB Composite Device 2", "Generic USB Hub ", "HID-compliant mouse X"})
        EXPECT_TRUE(IsDeviceWorthHaving(id, good, maker)) << good;
    for (const char* bad : {"", "UNKNOWNs of the World", "(Standard System Devices)", "Hersteller ü"})
        EXPECT_FALSE(IsDeviceWorthHaving(id, name, QString::fromUtf8(bad))) << bad;
    EXPECT_TRUE(IsDeviceWorthHaving(id, name, "(Standard disk drives)"));
    for (const char* generic : {"", "  ", " USBSTOR\\GenCdRom", "GenDiskX", "gencdrom", "UMB\\1", "uuid",
                                "HID_DEVICE_UP", "Internal_IDE_Channel"})
        EXPECT_TRUE(IsGenericId(generic)) << generic;
    for (const char* product : {"USBSTOR\\Disk", "HID\\HID_DEVICE", "gendis"})
        EXPECT_FALSE(IsGenericId(product)) << product;
}

TEST_F(ImproveScanTest, KeywordsMatchAnyFieldInAnyCase) {
    forms::Form form("Holder", 1000, 1000);
    suite::ListBox keywords(form.Client(), "List1");
    EXPECT_FALSE(ListHasKeyword("ID|||Name|||Maker", keywords));
    keywords.AddItem("nothing");
    keywords.AddItem("D|||nAM");
    EXPECT_TRUE(ListHasKeyword("ID|||Name|||Maker", keywords));
    EXPECT_FALSE(ListHasKeyword("ID|||Maker|||Name", keywords));
}

TEST_F(ImproveScanTest, WorkingDevicesBecomeOneRowForEachId) {
    const DeviceFixture machine(
        UsbDevice(1, "  Zoom\xC2\xA0 Camera ", "Some Maker") + UsbDevice(2, "Zoom Camera", "Some Maker") +
        UsbDevice(3, "Not working", "Some Maker", {}) + UsbDevice(4, "Ger\xC3\xA4t", "Some Maker") +
        UsbDevice(5, "Standard Hub", "Some Maker") + UsbDevice(6, QByteArray(250, 'n') + "ame too long", "Some Maker") +
        "/devices/pci0000:00/0000:00:02.0 @ bus/pci\n  vendor = 0x8086\n  device = 0x100e\n  class = 0x020000\n"
        "  revision = 0x01\n  subsystem_vendor = 0x1111\n  subsystem_device = 0x2222\n"
        "  driver -> /bus/pci/drivers/e1000\n");
    QDir().mkpath(machine.Beside("ids"));
    QFile ids(machine.Beside("ids/pci.ids"));
    ASSERT_TRUE(ids.open(QIODevice::WriteOnly));
    ids.write("8086  Intel Corporation\n\t100e  82540EM Gigabit\n");
    ids.close();
    const QString chip = "82540EM Gigabit/Intel Corporation/PCI\\VEN_8086&DEV_100E";
    // Sorted by name; rows of one name as they came. A name beyond the rowset's 255 characters is lost.
    EXPECT_EQ(Scan(), (QStringList{"/Some Maker/USB\\VID_1234&PID_0001", chip + "&SUBSYS_22221111&REV_01",
                                   chip + "&SUBSYS_22221111", chip + "&CC_020000", chip + "&CC_0200", chip + "&REV_01",
                                   chip, "Zoom Camera/Some Maker/USB\\VID_1234&PID_0001"}));
}

TEST_F(ImproveScanTest, NothingIsOfferedWithoutDevicesOrAtTheProgramsEnd) {
    {
        const DeviceFixture none;
        EXPECT_TRUE(Scan().isEmpty());
    }
    const DeviceFixture machine(UsbDevice(1, "Camera", "Some Maker"));
    EXPECT_FALSE(Scan().isEmpty());
    values::Program().ProgramClosing = true;
    EXPECT_TRUE(Scan().isEmpty());
}

} // namespace
