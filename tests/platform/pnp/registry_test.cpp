// The registry's keys as the program's own routines ask for them, and what those leave out.
#include "device_fixture.h"
#include "pnp/device_tree.h"
#include "pnp/registry_calls.h"

#include <array>
#include <gtest/gtest.h>

namespace {

constexpr qint32 LocalMachine = qint32(0x80000002);
constexpr quint32 Read = 0x20119;
constexpr quint32 Write = 0x20106;
const QString ClassPath = QStringLiteral("SYSTEM\\CurrentControlSet\\Control\\Class\\");
const QString EnumPath = QStringLiteral("SYSTEM\\CurrentControlSet\\Enum\\");
const QString Net = QStringLiteral("{4D36E972-E325-11CE-BFC1-08002BE10318}\\");

constexpr char Tree[] = R"(
/devices/pci0000:00/0000:00:03.0 @ bus/pci
  class = 0x020000
  driver -> /bus/pci/drivers/e1000
/devices/pci0000:00/0000:00:04.0 @ bus/pci
  class = 0x020000
  driver -> /bus/pci/drivers/e1000
)";

qint32 Open(const QString& path, qint32& key, quint32 access = Read) {
    return pnp::RegOpenKeyExW(LocalMachine, path, 0, access, key);
}

// A text value, or the strings of a value of several, parted by bars.
QString TextOf(qint32 key, const QString& name) {
    quint32 size = 0;
    quint32 type = 0;
    if (pnp::RegQueryValueExW(key, name, &type, nullptr, &size) != pnp::Success)
        return QStringLiteral("missing");
    QString text(qsizetype(size / 2), QChar(u'\0'));
    EXPECT_EQ(pnp::RegQueryValueExW(key, name, &type, text.data(), &size), pnp::Success);
    text.chop(1);
    return text.replace(QChar(u'\0'), QLatin1Char('|'));
}

int CountSubkeys(const QString& path) {
    qint32 key = 0;
    if (Open(path, key) != pnp::Success)
        return -1;
    std::array<char16_t, 260> name{};
    quint32 size = name.size();
    quint32 count = 0;
    for (; pnp::RegEnumKeyExW(key, count, name.data(), &size, nullptr) == pnp::Success; ++count)
        size = name.size();
    pnp::RegCloseKey(key);
    return int(count);
}

} // namespace

// A driver's key is asked for before its device was, subkeys before any walk, and paths in any case.
TEST(Registry, DevicesAndTheirDriversHaveKeys) {
    DeviceFixture fixture(Tree);
    const QString path = fixture.Devices()[1].instancePath;
    pnp::BindTree();
    qint32 key = 0;
    ASSERT_EQ(Open(ClassPath + Net.toLower() + QStringLiteral("0001"), key), pnp::Success);
    EXPECT_EQ(Open(ClassPath + Net + QStringLiteral("0002"), key), pnp::NotFound);
    EXPECT_EQ(key, 0);
    pnp::BindTree();
    EXPECT_EQ(CountSubkeys(EnumPath.chopped(1)), 1);
    EXPECT_EQ(CountSubkeys(EnumPath + QStringLiteral("PCI")), 1);
    EXPECT_EQ(Open(EnumPath + QStringLiteral("PCI\\NO\\DEVICE"), key), pnp::NotFound);
    ASSERT_EQ(Open(EnumPath.toUpper() + path.toLower(), key), pnp::Success);
    EXPECT_EQ(TextOf(key, QStringLiteral("driver")), Net + QStringLiteral("0001"));
    // A new snapshot has other keys; a handle that was open reads on.
    fixture.Remove(QStringLiteral("/bus/pci/devices/0000:00:04.0"));
    pnp::BindTree();
    qint32 gone = 0;
    EXPECT_EQ(Open(EnumPath + path, gone), pnp::NotFound);
    EXPECT_NE(TextOf(key, QStringLiteral("Driver")), QStringLiteral("missing"));
    EXPECT_EQ(pnp::RegCloseKey(key), pnp::Success);
    EXPECT_EQ(pnp::RegCloseKey(key), pnp::InvalidHandle);
}

TEST(Registry, HandlesOnlyDoWhatTheyWereOpenedFor) {
    const DeviceFixture fixture;
    qint32 key = 0;
    const QString path = ClassPath.chopped(1);
    ASSERT_EQ(Open(path, key), pnp::Success);
    EXPECT_EQ(pnp::RegSetValueExW(key, QStringLiteral("x"), 4, &key, 4), pnp::AccessDenied);
    EXPECT_EQ(pnp::RegDeleteValueW(key, QStringLiteral("x")), pnp::AccessDenied);
    pnp::RegCloseKey(key);
    ASSERT_EQ(Open(path, key, Write), pnp::Success);
    EXPECT_EQ(pnp::RegQueryValueExW(key, QString(), nullptr, nullptr, nullptr), pnp::AccessDenied);
    pnp::RegCloseKey(key);
    for (const qint32 none : {12345, qint32(0x80000042)})
        EXPECT_EQ(pnp::RegOpenKeyExW(none, path, 0, Read, key), pnp::InvalidHandle);
    EXPECT_EQ(pnp::RegDeleteKeyW(LocalMachine, QStringLiteral("SYSTEM")), pnp::AccessDenied);
}

// Room that is too small is told, and nothing is written.
TEST(Registry, BuffersMayBeTooSmall) {
    const DeviceFixture fixture;
    qint32 key = 0;
    quint32 disposition = 0;
    const QString path = QStringLiteral("Sizes");
    ASSERT_EQ(pnp::RegCreateKeyExW(LocalMachine, path, 0xF013F, key, &disposition), pnp::Success);
    EXPECT_EQ(disposition, 1U);
    ASSERT_EQ(pnp::RegSetValueExW(key, QStringLiteral("Value"), 3, "abc", 3), pnp::Success);
    QByteArray buffer(3, '\0');
    quint32 size = 2;
    EXPECT_EQ(pnp::RegQueryValueExW(key, QStringLiteral("VALUE"), nullptr, buffer.data(), &size), pnp::MoreData);
    EXPECT_EQ(size, 3U);
    EXPECT_EQ(buffer[0], '\0');
    std::array<char16_t, 6> name{};
    size = 5;
    EXPECT_EQ(pnp::RegEnumValueW(key, 0, name.data(), &size, nullptr, nullptr, nullptr), pnp::MoreData);
    size = 6;
    EXPECT_EQ(pnp::RegEnumValueW(key, 0, name.data(), &size, nullptr, nullptr, nullptr), pnp::Success);
    EXPECT_EQ(size, 5U);
    pnp::RegCloseKey(key);
    pnp::RegDeleteKeyW(LocalMachine, path);
    EXPECT_EQ(pnp::ExpandEnvironmentStringsW(QStringLiteral("%windir%"), name.data(), 4), 11U);
    EXPECT_EQ(QString::fromUtf16(name.data()), QStringLiteral("C:\\"));
    QString target(64, QChar(u'\0'));
    pnp::ExpandEnvironmentStringsW(QStringLiteral("%systemroot%%NoSuchVariable%100%%windir"),
                                   reinterpret_cast<char16_t*>(target.data()), 64);
    EXPECT_EQ(Plain(target.left(target.indexOf(QChar(u'\0')))), "C:\\Windows%NoSuchVariable%100%%windir");
}
