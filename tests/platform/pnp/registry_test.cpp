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

constexpr char Tree[] = R"(
/devices/pci0000:00/0000:00:03.0 @ bus/pci
  vendor = 0x8086
  device = 0x100e
  revision = 0x03
  class = 0x020000
  driver -> /bus/pci/drivers/e1000
/bus/pci/drivers/e1000/module
  version = 7.3.21
)";

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

QStringList Subkeys(const QString& path) {
    QStringList names;
    qint32 key = 0;
    if (pnp::RegOpenKeyExW(LocalMachine, path, 0, Read, key) != pnp::Success)
        return names;
    std::array<char16_t, 260> name{};
    for (quint32 index = 0;; ++index) {
        quint32 size = name.size();
        const qint32 result = pnp::RegEnumKeyExW(key, index, name.data(), &size, nullptr);
        if (result == pnp::NoMoreItems)
            break;
        EXPECT_EQ(result, pnp::Success);
        names.append(QString::fromUtf16(name.data(), qsizetype(size)));
    }
    pnp::RegCloseKey(key);
    return names;
}

} // namespace

TEST(Registry, DevicesAndTheirDriversHaveKeys) {
    const DeviceFixture fixture(Tree);
    const QString path = fixture.Only(QStringLiteral("PCI\\")).instancePath;
    qint32 device = 0;
    ASSERT_EQ(pnp::RegOpenKeyExW(LocalMachine, EnumPath.toLower() + path.toLower(), 0, Read, device), pnp::Success);
    EXPECT_TRUE(TextOf(device, QStringLiteral("HardwareID"))
                    .startsWith(QStringLiteral("PCI\\VEN_8086&DEV_100E&SUBSYS_00000000&REV_03|PCI\\")));
    const QString driver = TextOf(device, QStringLiteral("driver"));
    pnp::RegCloseKey(device);
    qint32 key = 0;
    ASSERT_EQ(pnp::RegOpenKeyExW(LocalMachine, ClassPath + driver, 0, Read, key), pnp::Success);
    EXPECT_EQ(Plain(TextOf(key, QStringLiteral("DriverVersion"))), "7.3.21");
    pnp::RegCloseKey(key);
    EXPECT_EQ(pnp::RegOpenKeyExW(LocalMachine, EnumPath + QStringLiteral("PCI\\NO\\DEVICE"), 0, Read, key),
              pnp::NotFound);
    EXPECT_EQ(key, 0);
}

// Asked for the driver's key before its device was, and enumerated without any walk before.
TEST(Registry, KeysComeWithoutAWalk) {
    const DeviceFixture fixture(Tree);
    pnp::BindTree();
    qint32 key = 0;
    EXPECT_EQ(pnp::RegOpenKeyExW(LocalMachine,
                                 ClassPath + QStringLiteral("{4D36E972-E325-11CE-BFC1-08002BE10318}\\0000"), 0, Read,
                                 key),
              pnp::Success);
    pnp::RegCloseKey(key);
    pnp::BindTree();
    EXPECT_EQ(Subkeys(EnumPath.chopped(1)), QStringList{QStringLiteral("PCI")});
    EXPECT_EQ(Subkeys(EnumPath + QStringLiteral("PCI")).size(), 1);
}

TEST(Registry, FollowsTheNewestSnapshot) {
    DeviceFixture fixture(Tree);
    const QString path = fixture.Only(QStringLiteral("PCI\\")).instancePath;
    qint32 open = 0;
    ASSERT_EQ(pnp::RegOpenKeyExW(LocalMachine, EnumPath + path, 0, Read, open), pnp::Success);
    fixture.Remove(QStringLiteral("/bus/pci/devices/0000:00:03.0"));
    pnp::BindTree();
    qint32 key = 0;
    EXPECT_EQ(pnp::RegOpenKeyExW(LocalMachine, EnumPath + path, 0, Read, key), pnp::NotFound);
    // A handle that was open reads on.
    EXPECT_NE(TextOf(open, QStringLiteral("HardwareID")), QStringLiteral("missing"));
    EXPECT_EQ(pnp::RegCloseKey(open), pnp::Success);
    EXPECT_EQ(pnp::RegCloseKey(open), pnp::InvalidHandle);
    EXPECT_TRUE(Subkeys(EnumPath.chopped(1)).isEmpty());
}

TEST(Registry, SizesGoInTwoSteps) {
    const DeviceFixture fixture;
    qint32 key = 0;
    quint32 disposition = 0;
    const QString path = QStringLiteral("SOFTWARE\\Test\\Sizes");
    ASSERT_EQ(pnp::RegCreateKeyExW(LocalMachine, path, 0xF013F, key, &disposition), pnp::Success);
    EXPECT_EQ(disposition, 1U);
    const QByteArray bytes(3000, 'x');
    ASSERT_EQ(pnp::RegSetValueExW(key, QStringLiteral("Value"), 3, bytes.constData(), 3000), pnp::Success);
    QByteArray buffer(3000, '\0');
    quint32 size = 1024;
    EXPECT_EQ(pnp::RegQueryValueExW(key, QStringLiteral("VALUE"), nullptr, buffer.data(), &size), pnp::MoreData);
    EXPECT_EQ(size, 3000U);
    EXPECT_EQ(buffer[0], '\0');
    EXPECT_EQ(pnp::RegQueryValueExW(key, QStringLiteral("VALUE"), nullptr, buffer.data(), &size), pnp::Success);
    EXPECT_EQ(buffer, bytes);
    EXPECT_EQ(pnp::RegQueryValueExW(key, QStringLiteral("Other"), nullptr, nullptr, &size), pnp::NotFound);

    std::array<char16_t, 6> name{};
    quint32 nameSize = 5;
    EXPECT_EQ(pnp::RegEnumValueW(key, 0, name.data(), &nameSize, nullptr, nullptr, nullptr), pnp::MoreData);
    nameSize = 6;
    EXPECT_EQ(pnp::RegEnumValueW(key, 0, name.data(), &nameSize, nullptr, nullptr, nullptr), pnp::Success);
    EXPECT_EQ(nameSize, 5U);
    EXPECT_EQ(pnp::RegEnumValueW(key, 1, name.data(), &nameSize, nullptr, nullptr, nullptr), pnp::NoMoreItems);
    pnp::RegCloseKey(key);
    EXPECT_EQ(pnp::RegDeleteKeyW(LocalMachine, path), pnp::Success);
    EXPECT_EQ(pnp::RegDeleteKeyW(LocalMachine, path), pnp::NotFound);
    EXPECT_EQ(pnp::RegDeleteKeyExW(LocalMachine, QStringLiteral("SOFTWARE"), 256), pnp::AccessDenied);
    pnp::RegDeleteKeyW(LocalMachine, QStringLiteral("SOFTWARE\\Test"));
    pnp::RegDeleteKeyW(LocalMachine, QStringLiteral("SOFTWARE"));
}

TEST(Registry, HandlesOnlyDoWhatTheyWereOpenedFor) {
    const DeviceFixture fixture;
    qint32 key = 0;
    const QString path = ClassPath.chopped(1);
    ASSERT_EQ(pnp::RegOpenKeyExW(LocalMachine, path, 0, Read, key), pnp::Success);
    EXPECT_EQ(pnp::RegSetValueExW(key, QStringLiteral("x"), 4, &key, 4), pnp::AccessDenied);
    EXPECT_EQ(pnp::RegDeleteValueW(key, QStringLiteral("x")), pnp::AccessDenied);
    pnp::RegCloseKey(key);
    ASSERT_EQ(pnp::RegOpenKeyExW(LocalMachine, path, 0, Write, key), pnp::Success);
    EXPECT_EQ(pnp::RegQueryValueExW(key, QString(), nullptr, nullptr, nullptr), pnp::AccessDenied);
    EXPECT_EQ(pnp::RegDeleteValueW(key, QStringLiteral("x")), pnp::NotFound);
    pnp::RegCloseKey(key);
    EXPECT_EQ(pnp::RegOpenKeyExW(12345, path, 0, Read, key), pnp::InvalidHandle);
    EXPECT_EQ(pnp::RegOpenKeyExW(qint32(0x80000042), path, 0, Read, key), pnp::InvalidHandle);
}

TEST(Registry, ExpandsVariables) {
    const auto expanded = [](const QString& text) {
        QString target(200, QChar(u'\0'));
        const quint32 needed = pnp::ExpandEnvironmentStringsW(text, reinterpret_cast<char16_t*>(target.data()), 200);
        target.truncate(target.indexOf(QChar(u'\0')));
        EXPECT_EQ(needed, quint32(target.size()) + 1);
        return Plain(target);
    };
    EXPECT_EQ(expanded(QStringLiteral("%SystemRoot%\\System32\\setupapi.dll,-5")),
              "C:\\Windows\\System32\\setupapi.dll,-5");
    EXPECT_EQ(expanded(QStringLiteral("%systemroot%%NoSuchVariable%100%%windir")),
              "C:\\Windows%NoSuchVariable%100%%windir");
    std::array<char16_t, 4> small{};
    EXPECT_EQ(pnp::ExpandEnvironmentStringsW(QStringLiteral("%windir%"), small.data(), 4), 11U);
    EXPECT_EQ(QString::fromUtf16(small.data()), QStringLiteral("C:\\"));
}

TEST(Registry, LastWriteTimesMoveOn) {
    const DeviceFixture fixture;
    qint32 key = 0;
    ASSERT_EQ(pnp::RegCreateKeyExW(LocalMachine, QStringLiteral("Times\\Inner"), 0xF013F, key, nullptr), pnp::Success);
    pnp::RegCloseKey(key);
    ASSERT_EQ(pnp::RegOpenKeyExW(LocalMachine, QStringLiteral("Times"), 0, Read, key), pnp::Success);
    std::array<char16_t, 260> name{};
    quint32 size = name.size();
    pnp::FileTime time;
    ASSERT_EQ(pnp::RegEnumKeyExW(key, 0, name.data(), &size, &time), pnp::Success);
    // 2020-01-01 in 100 nanoseconds since 1601.
    EXPECT_GT(time.value, 132223104000000000ULL);
    pnp::RegCloseKey(key);
    pnp::RegDeleteKeyW(LocalMachine, QStringLiteral("Times\\Inner"));
    pnp::RegDeleteKeyW(LocalMachine, QStringLiteral("Times"));
}
