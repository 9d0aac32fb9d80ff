#include "device_fixture.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

namespace {

const QString Folder = QStringLiteral("/devices/pci0000:00/0000:00:03.0");

QByteArray Function(const char* attributes) {
    return QByteArray("/devices/pci0000:00/0000:00:03.0 @ bus/pci\nvendor = 0x8086\ndevice = 0x100e\n"
                      "modalias = pci:v00008086d0000100Esv00001AF4sd00001100bc02sc00i00\n") +
           attributes + "\n";
}

quint32 Problem(const char* attributes) {
    return DeviceFixture(Function(attributes)).Only(QStringLiteral("PCI\\")).problemCode;
}

void WriteFile(const QString& path, const QByteArray& bytes) {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

} // namespace

TEST(Problems, ConditionsOfTheTree) {
    EXPECT_EQ(Problem("class = 0x020000\ndriver -> /bus/pci/drivers/e1000"), 0U);
    EXPECT_EQ(Problem("class = 0x020000"), 28U);
    EXPECT_EQ(Problem("class = 0x060000"), 0U);
    EXPECT_EQ(Problem("class = 0x050000"), 0U);
    EXPECT_EQ(Problem("class = 0x0c0500"), 28U);
    EXPECT_EQ(Problem("class = 0x020000\ndriver -> /bus/pci/drivers/vfio-pci"), 22U);
    EXPECT_EQ(Problem("class = 0x020000\ndriver_override = vfio-pci"), 22U);
    EXPECT_EQ(Problem("class = 0x020000\ndriver_override = (null)"), 28U);
    // An idle function shows this as well.
    EXPECT_EQ(Problem("class = 0x020000\nenable = 0\ndriver -> /bus/pci/drivers/e1000"), 0U);
    EXPECT_EQ(Problem("class = 0x020000\nwaiting_for_supplier = 1"), 51U);
    EXPECT_EQ(Problem("class = 0x020000\nwaiting_for_supplier = 0\ndriver -> /bus/pci/drivers/e1000"), 0U);
}

TEST(Problems, ResourcesAndPower) {
    DeviceFixture fixture(Function("class = 0x020000\ndriver -> /bus/pci/drivers/e1000"));
    const auto problem = [&fixture] { return fixture.Only(QStringLiteral("PCI\\")).problemCode; };
    fixture.Write(Folder + QStringLiteral("/power/runtime_status"), "error\n");
    EXPECT_EQ(problem(), 10U);
    fixture.Write(Folder + QStringLiteral("/power/runtime_status"), "suspended\n");
    EXPECT_EQ(problem(), 0U);
    // Memory that was never placed; an empty region and the expansion ROM do not count.
    fixture.Write(Folder + QStringLiteral("/resource"),
                  "0x00000000fe000000 0x00000000fe01ffff 0x0000000000040200\n0x0 0x0 0x0\n0x0 0x0 0x0\n0x0 0x0 0x0\n"
                  "0x0 0x0 0x0\n0x0 0x0 0x0\n0x0000000000000000 0x000000000000ffff 0x0000000000046200\n");
    EXPECT_EQ(problem(), 0U);
    fixture.Write(Folder + QStringLiteral("/resource"), "0x0000000000000000 0x000000000001ffff 0x0000000020040200\n");
    EXPECT_EQ(problem(), 12U);
    fixture.Write(Folder + QStringLiteral("/resource"), "0x0 junk\n");
    EXPECT_EQ(problem(), 0U);
}

// Links of a captured tree lead nowhere, and are drivers all the same.
TEST(Problems, DanglingDriverLinksCount) {
    DeviceFixture fixture(Function("class = 0x020000"));
    ASSERT_TRUE(QFile::link(QStringLiteral("../../../bus/pci/drivers/HDA Intel"),
                            fixture.Root() + Folder + QStringLiteral("/driver")));
    const pnp::Device device = fixture.Only(QStringLiteral("PCI\\"));
    EXPECT_EQ(device.problemCode, 0U);
    EXPECT_EQ(Plain(device.service), "HDA Intel");
}

// Only the running kernel's own tree can be held against its modules.
TEST(Problems, InstalledModulesTellWhyADriverIsMissing) {
    DeviceFixture fixture(Function("class = 0x020000"));
    pnp::Sources sources = pnp::CurrentSources();
    sources.live = true;
    sources.kernelRelease = QStringLiteral("6.1.0-test");
    sources.modulesFolder = fixture.Beside(QStringLiteral("modules"));
    sources.modprobeFolders = {fixture.Beside(QStringLiteral("modprobe.d"))};
    pnp::SetSources(sources);
    // The code and the module that would fit.
    const auto problem = [&fixture] {
        const pnp::Device device = fixture.Only(QStringLiteral("PCI\\"));
        return std::to_string(device.problemCode) + ' ' + Plain(device.fittingModule);
    };
    EXPECT_EQ(problem(), "28 ") << "no file of aliases";

    const QString aliases = sources.modulesFolder + QStringLiteral("/modules.alias");
    WriteFile(aliases, "# comment\nalias pci:v00008086d00001234sv*sd*bc*sc*i* other\nbroken\n");
    EXPECT_EQ(problem(), "28 ");
    WriteFile(aliases, "alias pci:v00008086d0000100Esv*sd*bc*sc*i* my-driver\n");
    EXPECT_EQ(problem(), "31 my_driver");
    WriteFile(aliases, "alias pci:v*d*sv*sd*bc02sc00i* other\nalias pci:v*d*sv*sd*bc02sc00i* my-driver\n");
    EXPECT_EQ(problem(), "31 other") << "patterns that begin with a wildcard";
    WriteFile(sources.modprobeFolders[0] + QStringLiteral("/a.conf"), "blacklist my_driver\n");
    EXPECT_EQ(problem(), "32 my_driver");
    fixture.Add("/module/my_driver\n");
    EXPECT_EQ(problem(), "10 my_driver");
    fixture.Write(Folder + QStringLiteral("/driver_override"), "vfio-pci\n");
    EXPECT_EQ(problem(), "22 ");
    fixture.Remove(Folder + QStringLiteral("/driver_override"));
    sources.live = false;
    pnp::SetSources(sources);
    EXPECT_EQ(problem(), "28 ");
}

TEST(Problems, TheKernelsReleaseIsTheVersionOfItsModules) {
    DeviceFixture fixture(Function("class = 0x020000\ndriver -> /bus/pci/drivers/e1000"));
    const auto version = [&fixture] { return Plain(fixture.Only(QStringLiteral("PCI\\")).driverVersion); };
    EXPECT_EQ(version(), "") << "a captured tree that does not tell its kernel";
    pnp::Sources sources = pnp::CurrentSources();
    sources.live = true;
    sources.kernelRelease = QStringLiteral("6.1.0-test");
    pnp::SetSources(sources);
    EXPECT_EQ(version(), "6.1.0-test");
    fixture.Add("/bus/pci/drivers/e1000/module\nversion = 7.3.21-k8\n");
    EXPECT_EQ(version(), "7.3.21-k8");
}
