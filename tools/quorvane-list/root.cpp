#include "root.h"

#include "machine_file.h"
#include "pnp/sources.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace list_tool {

namespace {

bool HoldsDevices(const QString& folder) {
    return QFileInfo(folder + QStringLiteral("/bus")).isDir() || QFileInfo(folder + QStringLiteral("/class")).isDir();
}

// A folder of devices just below; the one with the usual name if there are several.
QString MeantFolder(const QString& folder) {
    const QDir directory(folder);
    QStringList names = directory.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    names.prepend(QStringLiteral("sys"));
    for (const QString& name : names) {
        if (HoldsDevices(directory.filePath(name)))
            return directory.filePath(name);
    }
    return {};
}

std::string Quoted(const QString& path) { return "\"" + QFile::encodeName(path).toStdString() + "\""; }

} // namespace

std::string UseRoot(const std::string& root) {
    if (!root.empty() && QFileInfo(QFile::decodeName(root.c_str())).isFile()) {
        pnp::SavedMachine machine;
        const std::string fault = ReadMachine(root, machine);
        if (fault.empty())
            pnp::SetSources(pnp::SavedSources(machine, QFile::decodeName(root.c_str())));
        return fault;
    }
    if (!root.empty())
        pnp::SetDeviceRoot(QFile::decodeName(root.c_str()));
    const QString folder = pnp::CurrentSources().deviceRoot;
    if (!pnp::DeviceRootReadable())
        return "the folder " + Quoted(folder) + " cannot be read";
    if (pnp::DeviceRootHasDevices())
        return {};
    const QString meant = MeantFolder(folder);
    return "the folder " + Quoted(folder) + " holds neither \"bus\" nor \"class\"" +
           (meant.isEmpty() ? std::string() : "; " + Quoted(meant) + " is probably meant");
}

} // namespace list_tool
