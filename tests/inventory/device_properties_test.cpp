#include "inventory/device_properties.h"

#include "device_fixture.h"
#include "inventory/class_icons.h"
#include "inventory/registry_routines.h"
#include "pnp/class_table.h"
#include "suite/icon_store.h"
#include "values/program_values.h"

#include <gtest/gtest.h>

namespace {

const QString ClassPath = QStringLiteral("SYSTEM\\CurrentControlSet\\Control\\Class\\");
const QString Guid = QStringLiteral("{11111111-2222-3333-4444-555555555555}");

// A class of the tests' own, whose values each test writes.
class Properties : public testing::Test {
  protected:
    Properties() {
        values::Program().SystemFolder = QStringLiteral("C:\\Windows\\System32\\");
        key.SetKeyRoot(inventory::HKEY_LOCAL_MACHINE);
        key.SetSubkey(ClassPath + Guid);
        key.CreateKey();
    }
    ~Properties() override {
        key.SetSubkey(ClassPath.chopped(1));
        key.DeleteKey(Guid);
        suite::SharedIconStore().RemoveAll();
    }

    void Set(const char* name, const QString& text, qint32 type = inventory::RegistryText) {
        EXPECT_TRUE(key.SetRegistryValue(QString::fromLatin1(name), text, type));
    }
    void SetPath(const QString& path) {
        Set("IconPath", path + QChar(u'\0') + QChar(u'\0'), inventory::RegistryMultiText);
    }
    std::string IconFile(qint32& index) { return Plain(inventory::GetClassIconFile(Guid, index)); }

    inventory::RegistryRoutines key;
};

} // namespace

TEST_F(Properties, ClassNames) {
    EXPECT_EQ(Plain(inventory::GetClassName(Guid)), "Unknown (" + Plain(Guid) + ")");
    Set("Class", QStringLiteral("Ports"));
    EXPECT_EQ(Plain(inventory::GetClassName(Guid)), "Ports");
    Set("", QStringLiteral("Friendly"));
    EXPECT_EQ(Plain(inventory::GetClassName(Guid)), "Friendly");
    EXPECT_EQ(Plain(inventory::GetClassName(QString())), "Unknown ()");
    EXPECT_EQ(Plain(inventory::GetClassName(QString::fromUtf16(pnp::class_guid::Net))), "Network adapters");
}

TEST_F(Properties, DriverVersionsAndIds) {
    DeviceFixture fixture(R"(
/devices/pci0000:00/0000:00:02.0 @ bus/pci
  vendor = 0x8086
  device = 0x0001
  class = 0x020000
/devices/pci0000:00/0000:00:03.0 @ bus/pci
  vendor = 0x8086
  device = 0x0002
  class = 0x020000
  driver -> /bus/pci/drivers/e1000
/devices/virtual/net/lo @ class/net
)");
    const auto path = [&](const char* start) { return fixture.Only(QString::fromLatin1(start)).instancePath; };
    EXPECT_EQ(Plain(inventory::GetDriverVersion(path("PCI\\VEN_8086&DEV_0001"))), "Unknown");
    // A driver whose version nothing tells.
    EXPECT_EQ(Plain(inventory::GetDriverVersion(path("PCI\\VEN_8086&DEV_0002"))), "Unknown");
    fixture.Add("/bus/pci/drivers/e1000/module\nversion = 7.3.21\n");
    EXPECT_EQ(Plain(inventory::GetDriverVersion(path("PCI\\VEN_8086&DEV_0002"))), "7.3.21");
    EXPECT_EQ(inventory::GetDriverVersion(QString()), QString());
    EXPECT_EQ(Plain(inventory::GetDriverVersion(QStringLiteral("NO\\SUCH\\DEVICE"))), "Unknown");

    EXPECT_EQ(Plain(inventory::GetHardwareIds(path("PCI\\VEN_8086&DEV_0001"))),
              "PCI\\VEN_8086&DEV_0001&SUBSYS_00000000|PCI\\VEN_8086&DEV_0001&CC_020000|"
              "PCI\\VEN_8086&DEV_0001&CC_0200|PCI\\VEN_8086&DEV_0001|");
    EXPECT_EQ(Plain(inventory::GetHardwareIds(path("SWD\\"))), "SWD\\NET\\lo");
    EXPECT_EQ(Plain(inventory::GetHardwareIds(QString())), "Unknown");
}

TEST_F(Properties, IconFilesByPath) {
    qint32 index = 99;
    SetPath(QStringLiteral("C:\\Windows\\system32\\setupapi.dll,-5"));
    EXPECT_EQ(IconFile(index), "C:\\Windows\\system32\\setupapi.dll");
    EXPECT_EQ(index, -5);
    SetPath(QStringLiteral("%SystemRoot%\\System32\\setupapi.dll, 5 ,7"));
    EXPECT_EQ(IconFile(index), "C:\\Windows\\System32\\setupapi.dll");
    EXPECT_EQ(index, -5);
    for (const char* part : {"a.dll", "a.dll,", "a.dll,x"}) {
        SetPath(QString::fromLatin1(part));
        EXPECT_EQ(IconFile(index), "a.dll");
        EXPECT_EQ(index, 0) << part;
    }
    index = 99;
    EXPECT_EQ(inventory::GetClassIconFile(QString(), index), QString());
    EXPECT_EQ(index, 99);
}

TEST_F(Properties, IconFilesByPropertyPages) {
    qint32 index = 99;
    const std::string setup = "C:\\Windows\\System32\\setupapi.dll";
    EXPECT_EQ(IconFile(index), setup);
    EXPECT_EQ(index, 0);
    Set("Icon", QStringLiteral(" 12 "));
    EXPECT_EQ(IconFile(index), setup);
    EXPECT_EQ(index, -12);
    Set("Icon", QStringLiteral("-7"));
    Set("EnumPropPages32", QStringLiteral("MsPorts.dll,Provider"));
    EXPECT_EQ(IconFile(index), "C:\\Windows\\System32\\MsPorts.dll");
    EXPECT_EQ(index, -7);
    Set("EnumPropPages32", QStringLiteral(",Provider"));
    EXPECT_EQ(IconFile(index), setup);
    // A full path is joined all the same.
    Set("EnumPropPages32", QStringLiteral("C:\\x\\y.dll,Provider"));
    EXPECT_EQ(IconFile(index), "C:\\Windows\\System32\\C:\\x\\y.dll");
}

// Both ways bring the icon of every class, and an icon that is nowhere leaves the store alone.
TEST_F(Properties, EveryClassHasItsIcon) {
    suite::IconStore& store = suite::SharedIconStore();
    for (const pnp::SetupClass& entry : pnp::SetupClasses()) {
        qint32 index = 0;
        const QString file = inventory::GetClassIconFile(QString::fromUtf16(entry.guid), index);
        qint32 id = index + 5000;
        store.RemoveAll();
        inventory::AddClassIcon(id, file, index);
        EXPECT_TRUE(store.Icon(5000 - entry.iconResource)) << Plain(file) << " " << index;
    }
    store.RemoveAll();
    const auto add = [&store](const char* file, qint32 index) {
        qint32 id = 1;
        store.RemoveAll();
        inventory::AddClassIcon(id, QString::fromLatin1(file), index);
        return store.Icon(1).has_value();
    };
    // A module has no fallback, a file that icons are extracted from has.
    EXPECT_FALSE(add("C:\\Windows\\System32\\none.dll", -5));
    EXPECT_FALSE(add("C:\\Windows\\System32\\none.DLL", -5));
    EXPECT_TRUE(add("C:\\Windows\\System32\\none.exe", -5));
    EXPECT_FALSE(add("C:\\Windows\\System32\\none.exe", -4711));
    EXPECT_FALSE(add("", -4711));
}
