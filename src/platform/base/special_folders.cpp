#include "base/special_folders.h"

#include "base/paths.h"

#include <QDir>
#include <QStandardPaths>

namespace base {

namespace {

QString UserFolder(int folder) {
    switch (folder) {
    case csidlDesktop:
        return QStandardPaths::writableLocation(QStandardPaths::DesktopLocation);
    case csidlPersonal:
        return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    case csidlAppData:
        return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    case csidlLocalAppData:
        return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    case csidlProfile:
        return QDir::homePath();
    default:
        return {};
    }
}

} // namespace

qint32 SHGetFolderPathW(int folder, int capacity, QString& path) {
    path.clear();
    const int number = folder & ~csidlFlagCreate;
    QString found;
    if (number == csidlSystem) {
        found = QStringLiteral("C:\\Windows\\System32");
    } else if (number == csidlWindows) {
        found = QStringLiteral("C:\\Windows");
    } else {
        found = UserFolder(number);
        if (found.isEmpty())
            return folderUnknown;
        if ((folder & csidlFlagCreate) != 0)
            SHCreateDirectoryExW(found);
        if (!QDir(found).exists())
            return folderMissing;
    }
    if (found.size() >= capacity)
        return folderUnknown;
    path = found;
    return 0;
}

} // namespace base
