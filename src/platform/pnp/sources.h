// Where the device tree and the names in it come from. One set for the process: the running system by default, a
// captured tree or a fixture when another root is set. A change takes effect at the next bind.
#pragma once

#include <QString>
#include <QStringList>
#include <memory>

namespace pnp {

class TreeFolder;
struct MachineFacts;

struct Sources {
    // Stands for /sys.
    QString deviceRoot = QStringLiteral("/sys");
    // Brand names of processors, which sysfs lacks; empty for none.
    QString processorInfo = QStringLiteral("/proc/cpuinfo");
    // Holds pci.ids, usb.ids and pnp.ids.
    QString idFolder = QStringLiteral("/usr/share/hwdata");
    // Whether release and modules are those of the tree's own kernel. Only then do they say anything.
    bool live = true;
    // Release of the kernel; used for live trees alone.
    QString kernelRelease;
    // Holds modules.alias of that release.
    QString modulesFolder;
    // Folders of *.conf files with "blacklist" lines.
    QStringList modprobeFolders;
    // The root itself where it is no folder of the file system; null for that of deviceRoot.
    std::shared_ptr<const TreeFolder> tree;
    // A saved machine's answers, in place of processorInfo, modulesFolder and modprobeFolders; null for none.
    std::shared_ptr<const MachineFacts> facts;
    // Takes down what the readers learn from those three; null where nobody asks.
    std::shared_ptr<MachineFacts> noted;
};

// The sources of the running system.
Sources SystemSources();

const Sources& CurrentSources();
void SetSources(const Sources& sources);

// Sources for a tree below `root`; anything but /sys counts as captured from another system.
void SetDeviceRoot(const QString& root);

// Whether the root can be listed at all.
bool DeviceRootReadable();
// Whether it holds "bus" or "class", without which no reader finds anything.
bool DeviceRootHasDevices();

} // namespace pnp
