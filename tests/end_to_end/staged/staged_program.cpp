// The real program on a machine that is made up: quorvane's own main, behind a stage that says which devices, kernel
// and servers there are. For pictures and demonstrations that come out the same everywhere.
//
//   QUORVANE_STAGE          a machine in the form that device_fixture.h tells
//   QUORVANE_STAGE_SERVER   the update and upload server, http://host:port; without it nobody is asked
#include "device_fixture.h"
#include "values/addresses.h"

#include <QFile>
#include <cstdio>

int QuorvaneMain(int argc, char** argv);

namespace {

// A device that is there has a kernel that drives it, and its processors have a brand.
void SetRunningSystem(DeviceFixture& machine) {
    const QString processors = QStringLiteral("/cpuinfo");
    machine.Write(processors, "processor\t: 0\nmodel name\t: Intel(R) Core(TM) i5-9500T CPU @ 2.20GHz\n");
    pnp::Sources sources = pnp::SystemSources();
    sources.deviceRoot = machine.Root();
    sources.processorInfo = machine.Root() + processors;
    sources.kernelRelease = QStringLiteral("6.1.0-28-amd64");
    sources.modulesFolder = machine.Beside(QStringLiteral("modules"));
    sources.modprobeFolders.clear();
    pnp::SetSources(sources);
}

} // namespace

int main(int argc, char** argv) {
    QFile file(qEnvironmentVariable("QUORVANE_STAGE"));
    if (!file.open(QIODevice::ReadOnly)) {
        std::fputs("quorvane-staged: QUORVANE_STAGE names no file\n", stderr);
        return 2;
    }
    DeviceFixture machine(file.readAll());
    SetRunningSystem(machine);
    const QString server = qEnvironmentVariable("QUORVANE_STAGE_SERVER", QStringLiteral("http://127.0.0.1:9"));
    values::ServerAddresses().UpdateHost = server;
    values::ServerAddresses().UploadHost = server;
    return QuorvaneMain(argc, argv);
}
