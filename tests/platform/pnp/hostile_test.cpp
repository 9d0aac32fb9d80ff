// Whatever an attribute holds, it costs that field and nothing else.
#include "device_fixture.h"
#include "pnp/device_tree.h"

#include <QDir>
#include <QFile>
#include <atomic>
#include <cstdio>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <thread>

namespace {

const QString Folder = QStringLiteral("/devices/pci0000:00/0000:00:14.0/usb1/1-1");

constexpr char Stick[] = R"(
/devices/pci0000:00/0000:00:14.0/usb1/1-1 @ bus/usb
  idVendor = 0951
  idProduct = 1666
  bcdDevice = 0100
  bDeviceClass = 08
  product = Stick
  manufacturer = Maker
)";

std::string NameOf(const QByteArray& product) {
    DeviceFixture fixture(Stick);
    fixture.Write(Folder + QStringLiteral("/product"), product);
    const pnp::Device device = fixture.Only(QStringLiteral("USB\\VID_0951&PID_1666"));
    EXPECT_EQ(Plain(device.manufacturer), "Maker");
    EXPECT_EQ(device.hardwareIds.size(), 2);
    return Plain(device.name);
}

} // namespace

TEST(HostileAttributes, CostTheirFieldOnly) {
    const std::string fallback = "USB Mass Storage Device";
    EXPECT_EQ(NameOf("  Stick of mine \t\n"), "Stick of mine");
    EXPECT_EQ(NameOf("\n"), fallback);
    EXPECT_EQ(NameOf(""), fallback);
    EXPECT_EQ(NameOf(QByteArray("Stick\0junk\n", 11)), "Stick");
    EXPECT_EQ(NameOf(QByteArray("\0Stick\n", 7)), fallback);
    EXPECT_EQ(NameOf("Stick \xFF\xFE\n"), fallback);
    EXPECT_EQ(NameOf(QByteArray(5000000, 'x')), fallback);
    EXPECT_EQ(NameOf(QByteArray(4096, 'x')), fallback);
    EXPECT_EQ(NameOf(QByteArray(4096, '\0')), fallback);
    EXPECT_EQ(NameOf(QByteArray("Stick\n").leftJustified(4096, '\0')), "Stick");
    EXPECT_EQ(NameOf("two\nlines\x01"), "two lines");
    EXPECT_EQ(NameOf("Gr\xC3\xBC\xC3\x9F\x65\n"), "Gr\xC3\xBC\xC3\x9F\x65");
    // What would drive a terminal, and what would show the text behind it in another order.
    EXPECT_EQ(NameOf("a\x1b[31m\x7f\xC2\x9B\x62"), "a [31m  b");
    EXPECT_EQ(NameOf("a\xE2\x80\xAE\xE2\x81\xA6\x62\xE2\x80\x8F"), "a  b");
    // Inner tabs are the reader's to clean.
    EXPECT_EQ(NameOf("a\tb\n"), "a\tb");
}

TEST(HostileAttributes, OddFilesInPlaceOfAttributes) {
    DeviceFixture fixture(Stick);
    for (const char* name : {"serial", "product", "uevent", "bNumInterfaces", "authorized"}) {
        fixture.Remove(Folder + QLatin1Char('/') + QLatin1String(name));
        QDir().mkpath(fixture.Root() + Folder + QLatin1Char('/') + QLatin1String(name));
    }
    // A pipe that nobody writes to must not hold up the scan.
    fixture.Remove(Folder + QStringLiteral("/manufacturer"));
    ASSERT_EQ(mkfifo(QFile::encodeName(fixture.Root() + Folder + QStringLiteral("/manufacturer")).constData(), 0600),
              0);
    ASSERT_TRUE(QFile::link(QStringLiteral("driver"), fixture.Root() + Folder + QStringLiteral("/driver")));
    EXPECT_EQ(Plain(fixture.Only(QStringLiteral("USB\\VID_0951&PID_1666")).manufacturer), "");
}

// No identifier may carry what parts paths and lists.
TEST(HostileAttributes, NothingBreaksPathsAndIds) {
    DeviceFixture fixture(Stick);
    fixture.Write(Folder + QStringLiteral("/serial"), "a\\b|c\n");
    fixture.Add(R"(
/devices/pci0000:00/0000:00:17.0/host0/target0:0:0/0:0:0:0 @ bus/scsi
  type = 0
  vendor = A\B|C,D
  model = x&y/z\\..
/devices/LNXSYSTM:00/EVIL:00 @ bus/acpi
  hid = A\B|C
/devices/LNXSYSTM:00/EVIL:01 @ bus/acpi
  hid = ABC0001
  uid = ..\..|x
)");
    for (const pnp::Device& device : fixture.Devices()) {
        EXPECT_EQ(device.instancePath.count(QLatin1Char('\\')), 2) << Plain(device.instancePath);
        EXPECT_FALSE((device.instancePath + device.hardwareIds.join(QString())).contains(QLatin1Char('|')));
    }
}

TEST(HostileAttributes, LinksOutOfTheTreeAreNotFollowed) {
    DeviceFixture fixture;
    QDir().mkpath(fixture.Root() + QStringLiteral("/bus/pci/devices"));
    QDir().mkpath(fixture.Beside(QStringLiteral("outside/0000:00:01.0")));
    ASSERT_TRUE(QFile::link(QStringLiteral("../../../../outside/0000:00:01.0"),
                            fixture.Root() + QStringLiteral("/bus/pci/devices/0000:00:01.0")));
    ASSERT_TRUE(QFile::link(QStringLiteral("/etc"), fixture.Root() + QStringLiteral("/bus/pci/devices/0000:00:02.0")));
    EXPECT_TRUE(fixture.Devices().empty());
}

TEST(HostileAttributes, AnEmptyOrMissingTreeHasNoDevices) {
    DeviceFixture fixture;
    EXPECT_TRUE(fixture.Devices().empty());
    pnp::SetDeviceRoot(QStringLiteral("/nonexistent/sys"));
    EXPECT_FALSE(pnp::DeviceRootReadable());
    EXPECT_EQ(pnp::BindTree()->At(0), nullptr);
}

TEST(HostileAttributes, ADeviceThatVanishesIsLeftOut) {
    DeviceFixture fixture(Stick);
    fixture.Add("/devices/pci0000:00/0000:00:03.0 @ bus/pci\nvendor = 0x8086\ndevice = 0x1\n");
    const std::shared_ptr<pnp::DeviceTree> tree = pnp::BindTree();
    ASSERT_NE(tree->At(0), nullptr);
    fixture.Remove(Folder);
    EXPECT_EQ(tree->At(1), nullptr);
}

// Devices come and go while they are read, and another takes the place of one that goes: a record may lack fields, yet
// never holds those of two devices.
TEST(HotPlug, NoRecordIsAMixOfTwoDevices) {
    DeviceFixture fixture;
    const QString place = fixture.Root() + QStringLiteral("/devices/pci0000:00/0000:00:03.0");
    const auto device = [](const char* digit) {
        return QByteArray("vendor = 0x") + digit + "\ndevice = 0x" + digit + "\nsubsystem_vendor = 0x" + digit +
               "\nsubsystem_device = 0x" + digit + "\nclass = 0x020000\n";
    };
    fixture.Add("/devices/pci0000:00/0000:00:03.0 @ bus/pci\n" + device("1111"));
    fixture.Add("/devices/other\n" + device("2222"));
    const std::string live = QFile::encodeName(place).toStdString();
    const std::string other = QFile::encodeName(fixture.Root() + QStringLiteral("/devices/other")).toStdString();
    const std::string aside = live + ".aside";
    std::atomic<bool> stop = false;
    std::thread exchange([&] {
        while (!stop) {
            std::rename(live.c_str(), aside.c_str());
            std::rename(other.c_str(), live.c_str());
            std::rename(aside.c_str(), other.c_str());
        }
    });
    int seen = 0;
    for (int i = 0; i < 2000; ++i) {
        const std::shared_ptr<pnp::DeviceTree> tree = pnp::BindTree();
        const pnp::Device* found = tree->At(0);
        if (found == nullptr)
            continue;
        ++seen;
        const QString ids = found->hardwareIds.join(QString());
        EXPECT_FALSE(ids.contains(QStringLiteral("1111")) && ids.contains(QStringLiteral("2222"))) << Plain(ids);
    }
    stop = true;
    exchange.join();
    EXPECT_GT(seen, 0);
}
