#include "base/paths.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <unistd.h>

namespace base {

namespace {

// Where an installation keeps the files that a user's own folder is filled from.
constexpr auto installedDataFolder = "../share/quorvane";

QString& FolderOverride() {
    static QString folder;
    return folder;
}

// Copies whole or not at all: a first start that is cut off must not leave half a database behind.
void CopyWhole(const QString& from, const QString& to) {
    const QString temporary = to + QStringLiteral(".part");
    QFile::remove(temporary);
    if (!QFile::copy(from, temporary))
        return;
    QFile::setPermissions(temporary, QFile::permissions(temporary) | QFile::WriteOwner);
    if (!QFile::rename(temporary, to))
        QFile::remove(temporary);
}

void FillFolder(const QDir& installed, const QDir& own) {
    const auto entries = installed.entryInfoList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QFileInfo& entry : entries) {
        const QString target = own.filePath(entry.fileName());
        if (entry.isDir()) {
            own.mkpath(entry.fileName());
            FillFolder(QDir(entry.filePath()), QDir(target));
        } else {
            CopyWhole(entry.filePath(), target);
        }
    }
}

QString FindProgramFolder() {
    const QString beside = QCoreApplication::applicationDirPath();
    if (access(QFile::encodeName(beside).constData(), W_OK) == 0 &&
        !QFileInfo::exists(QDir(beside).filePath(QLatin1String(installedDataFolder))))
        return beside;
    const QString own =
        QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QStringLiteral("/quorvane");
    const QDir folder(own);
    if (!folder.exists() && QDir().mkpath(own))
        FillFolder(QDir(QDir(beside).filePath(QLatin1String(installedDataFolder))), folder);
    return own;
}

} // namespace

QString NativePath(const QString& path) {
    if (path.isEmpty())
        return path;
    QString native = path;
    native.replace(u'\\', u'/');
    while (native.contains(QLatin1String("//")))
        native.replace(QLatin1String("//"), QLatin1String("/"));
    if (QFileInfo::exists(native))
        return native;
    const qsizetype slash = native.lastIndexOf(u'/');
    const QString name = native.mid(slash + 1);
    const QDir folder(slash < 0 ? QStringLiteral(".") : native.first(slash + 1));
    const auto names = folder.entryList(QDir::AllEntries | QDir::Hidden | QDir::System);
    for (const QString& candidate : names)
        if (candidate.compare(name, Qt::CaseInsensitive) == 0)
            return native.first(slash + 1) + candidate;
    return native;
}

bool FileExists(const QString& path) { return QFileInfo(NativePath(path)).isFile(); }

bool DeleteFileW(const QString& path) {
    const QString native = NativePath(path);
    const QFileInfo info(native);
    if (info.isDir() && !info.isSymLink())
        return false;
    return QFile::remove(native);
}

bool SHCreateDirectoryExW(const QString& path) { return !path.isEmpty() && QDir().mkpath(NativePath(path)); }

QString ProgramFolder() {
    QString& folder = FolderOverride();
    if (folder.isEmpty())
        folder = FindProgramFolder();
    return folder;
}

void SetProgramFolder(const QString& folder) { FolderOverride() = folder; }

} // namespace base
