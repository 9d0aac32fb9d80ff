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

// What devices that are there show, the scan's rows tell.
TEST_F(Properties, FallbacksOfVersionsAndIds) {
    const DeviceFixture fixture(
        "/devices/platform/a @ bus/platform\ndriver -> /bus/platform/drivers/without_version\n");
    for (const char* device : {"ROOT\\A\\0000", "NO\\X"}) {
        EXPECT_EQ(Plain(inventory::GetDriverVersion(QLatin1String(device))), "Unknown");
        EXPECT_EQ(Plain(inventory::GetHardwareIds(QLatin1String(device))), device);
    }
    EXPECT_EQ(inventory::GetDriverVersion(QString()), QString());
    EXPECT_EQ(Plain(inventory::GetHardwareIds(QString())), "Unknown");
}

TEST_F(Properties, IconFiles) {
    struct Row {
        const char* path;  // "IconPath", else
        const char* icon;  // "Icon" and
        const char* pages; // "EnumPropPages32"; null for a value that is not there
        const char* file;
        qint32 index;
    };
    const char* setup = "C:\\Windows\\System32\\setupapi.dll";
    const Row rows[] = {
        {nullptr, nullptr, nullptr, setup, 0},
        {nullptr, " 12 ", nullptr, setup, -12},
        {nullptr, "-7", "MsPorts.dll,Provider", "C:\\Windows\\System32\\MsPorts.dll", -7},
        {nullptr, nullptr, ",Provider", setup, -7},
        // A full path is joined all the same.
        {nullptr, "x", "C:\\x\\y.dll,Provider", "C:\\Windows\\System32\\C:\\x\\y.dll", 0},
        {"C:\\Windows\\system32\\setupapi.dll,-5", nullptr, nullptr, "C:\\Windows\\system32\\setupapi.dll", -5},
        {"%SystemRoot%\\System32\\setupapi.dll, 5 ,7", nullptr, nullptr, setup, -5},
        {"a.dll", nullptr, nullptr, "a.dll", 0},
        {"a.dll,", nullptr, nullptr, "a.dll", 0},
        {"a.dll,x", nullptr, nullptr, "a.dll", 0},
    };
    qint32 index = 99;
    EXPECT_EQ(inventory::GetClassIconFile(QString(), index), QString());
    EXPECT_EQ(index, 99);
    // A value that a row does not name is that of the row before.
    for (const Row& row : rows) {
        if (row.path != nullptr)
            Set("IconPath", QLatin1String(row.path) + QString(2, QChar(u'\0')), inventory::RegistryMultiText);
        if (row.icon != nullptr)
            Set("Icon", QLatin1String(row.icon));
        if (row.pages != nullptr)
            Set("EnumPropPages32", QLatin1String(row.pages));
        index = 99;
        EXPECT_EQ(Plain(inventory::GetClassIconFile(Guid, index)), row.file) << &row - rows;
        EXPECT_EQ(index, row.index) << &row - rows;
    }
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
