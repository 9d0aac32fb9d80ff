#include "pnp/sources.h"

#include "pnp/sysfs.h"

#include <QFileInfo>
#include <sys/utsname.h>

namespace pnp {

namespace {

Sources& Held() {
    static Sources held = SystemSources();
    return held;
}

} // namespace

Sources SystemSources() {
    Sources sources;
    utsname names{};
    if (uname(&names) == 0)
        sources.kernelRelease = QString::fromLocal8Bit(names.release);
    sources.modulesFolder = QStringLiteral("/lib/modules/") + sources.kernelRelease;
    sources.modprobeFolders = {QStringLiteral("/etc/modprobe.d"), QStringLiteral("/run/modprobe.d"),
                               QStringLiteral("/usr/lib/modprobe.d"), QStringLiteral("/lib/modprobe.d")};
    return sources;
}

const Sources& CurrentSources() { return Held(); }

void SetSources(const Sources& sources) { Held() = sources; }

void SetDeviceRoot(const QString& root) {
    Sources sources = SystemSources();
    QString folder = root;
    while (folder.size() > 1 && folder.endsWith(QLatin1Char('/')))
        folder.chop(1);
    if (folder != sources.deviceRoot) {
        sources.deviceRoot = folder;
        sources.processorInfo.clear();
        sources.live = false;
    }
    SetSources(sources);
}

bool DeviceRootReadable() {
    const QFileInfo root(Held().deviceRoot);
    return Held().tree != nullptr || (root.isDir() && root.isReadable());
}

bool DeviceRootHasDevices() {
    const Sysfs files(Held());
    return files.Has("/bus") || files.Has("/class");
}

} // namespace pnp
