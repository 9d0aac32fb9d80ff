// The tool as its user runs it: a process of its own, with its statuses and its text.
#include "device_fixture.h"

#include <QCoreApplication>
#include <QProcess>
#include <gtest/gtest.h>

namespace {

struct Result {
    int status;
    QString output;
    QString errors;
};

Result RunTool(const QStringList& arguments) {
    QProcess process;
    // No display may be needed.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        environment.remove(QString::fromLatin1(name));
    process.setProcessEnvironment(environment);
    process.start(QCoreApplication::applicationDirPath() + QStringLiteral("/quorvane-list"), arguments);
    EXPECT_TRUE(process.waitForFinished(60000));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

constexpr char Machine[] = R"(
/devices/pci0000:00/0000:00:00.0 @ bus/pci
  vendor = 0xfff0
  device = 0x0001
  class = 0x060000
/devices/pci0000:00/0000:00:02.0 @ bus/pci
  vendor = 0xfff0
  device = 0x0002
  class = 0x030000
)";

const QString Header = QStringLiteral("Name,Manufacturer,Error Code,Class,Driver Version,Hardware IDs\r\n");
const QString Video = QStringLiteral("Video Controller (VGA Compatible),Unknown,(28) Drivers are not installed,"
                                     "Display adapters,Unknown,PCI\\VEN_FFF0&DEV_0002&SUBSYS_00000000|"
                                     "PCI\\VEN_FFF0&DEV_0002&CC_030000|PCI\\VEN_FFF0&DEV_0002&CC_0300|"
                                     "PCI\\VEN_FFF0&DEV_0002|\r\n");

} // namespace

TEST(QuorvaneList, PrintsTheListsOfATree) {
    const DeviceFixture fixture(Machine);
    const auto list = [&fixture](const char* name) {
        return RunTool({QStringLiteral("--root"), fixture.Root(), QStringLiteral("--list"), QString::fromLatin1(name)});
    };
    const Result hardware = RunTool({QStringLiteral("--root=") + fixture.Root()});
    EXPECT_EQ(hardware.status, 0);
    EXPECT_TRUE(hardware.output.startsWith(Header + QStringLiteral("PCI standard host CPU bridge,")))
        << Plain(hardware.output);
    EXPECT_TRUE(hardware.output.endsWith(Video));
    EXPECT_EQ(Plain(list("hardware").output), Plain(hardware.output));
    EXPECT_EQ(Plain(list("nodrivers").output), Plain(Header + Video));
    EXPECT_EQ(Plain(list("problems").output), Plain(Header + Video));
    EXPECT_EQ(Plain(list("nosystem").output), Plain(Header + Video));
    const QString all = list("all").output;
    EXPECT_TRUE(all.startsWith(QStringLiteral("All Hardware (2)\r\n") + hardware.output));
    EXPECT_TRUE(all.endsWith(QStringLiteral("All Except Standard System Devices (1)\r\n") + Header + Video));
    EXPECT_EQ(hardware.errors, QString());
}

TEST(QuorvaneList, TellsWhatItIs) {
    const Result help = RunTool({QStringLiteral("--help")});
    EXPECT_EQ(help.status, 0);
    EXPECT_TRUE(help.output.startsWith(QStringLiteral("Usage: quorvane-list")));
    const Result version = RunTool({QStringLiteral("--version")});
    EXPECT_EQ(version.status, 0);
    EXPECT_TRUE(version.output.startsWith(QStringLiteral("quorvane-list ")));
}

TEST(QuorvaneList, RefusesInOneLine) {
    const QStringList refused[] = {
        {QStringLiteral("--wrong")},
        {QStringLiteral("extra")},
        {QStringLiteral("--list")},
        {QStringLiteral("--list"), QStringLiteral("none")},
        {QStringLiteral("--root")},
        {QStringLiteral("--root=")},
        {QStringLiteral("--root"), QStringLiteral("/nonexistent")},
        {QStringLiteral("--root"), QStringLiteral("/dev/null")},
    };
    for (const QStringList& arguments : refused) {
        const Result result = RunTool(arguments);
        EXPECT_EQ(result.status, 2) << Plain(arguments.join(QLatin1Char(' ')));
        EXPECT_EQ(result.output, QString());
        EXPECT_EQ(result.errors.count(QLatin1Char('\n')), 1) << Plain(result.errors);
    }
}

TEST(QuorvaneList, AnEmptyTreeHasAHeaderOnly) {
    const DeviceFixture fixture;
    const Result result = RunTool({QStringLiteral("--root"), fixture.Root()});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(Plain(result.output), Plain(Header));
}
