// Where the device tree and the names in it come from. One set for the process: the running system by default, a
// captured tree or a fixture when another root is set. A change takes effect at the next bind.
#pragma once

#include <QString>
#include <QStringList>

namespace pnp {

struct Sources {
    // Stands for /sys.
    QString deviceRoot = QStringLiteral("/sys");
    // Brand names of processors, which sysfs lacks; empty for none.
    QString processorInfo = QStringLiteral("/proc/cpuinfo");
    // Holds pci.ids, usb.ids and pnp.ids.
    QString idFolder = QStringLiteral("/usr/share/hwdata");
    // Whether the tree is that of the running kernel. Only then do its modules and its release say anything.
    bool live = true;
    // Release of the running kernel; used for live trees alone.
    QString kernelRelease;
    // Holds modules.alias of that release.
    QString modulesFolder;
    // Folders of *.conf files with "blacklist" lines.
    QStringList modprobeFolders;
};

// The sources of the running system.
Sources SystemSources();

const Sources& CurrentSources();
void SetSources(const Sources& sources);

// Sources for a tree below `root`; anything but /sys counts as captured from another system.
void SetDeviceRoot(const QString& root);

// Whether the root can be listed at all.
bool DeviceRootReadable();

} // namespace pnp
