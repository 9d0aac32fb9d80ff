#include "base/paths.h"

#include "base/file_mode.h"
#include "base/plain_file.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <algorithm>
#include <array>
#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>

namespace base {

namespace {

// Where an installation keeps the files that a user's own folder is filled from.
constexpr auto installedDataFolder = "../share/quorvane";

// Where a user's own folder is filled. It goes with the last file that is put in its place; found there, the filling
// was cut off.
constexpr auto fillingName = ".filling";
constexpr int fillingTimeout = 20'000; // milliseconds that one start waits for another's filling

// What a user's own folder is filled with. Without the first there is nothing to start with.
constexpr auto databaseName = "hwids.mdb";
constexpr std::array<const char*, 2> otherNames = {"color_presets", "improve_database_keywords_to_skip.txt"};

QString& FolderOverride() {
    static QString folder;
    return folder;
}

QString ProgramsFolder() { return QCoreApplication::applicationDirPath(); }

QDir InstalledFolder() { return QDir(QDir(ProgramsFolder()).filePath(QLatin1String(installedDataFolder))); }

// Where a user's own folder is filled from: the installation, or a copied folder that cannot be written, on a disc for
// instance.
QDir Source() { return InstalledFolder().exists() ? InstalledFolder() : QDir(ProgramsFolder()); }

// A file or a folder of files, with the user's own permissions instead of the installation's. False where it is not
// there whole: the disk is full, for instance.
bool CopyWhole(const QFileInfo& from, const QString& to) {
    if (!from.isDir())
        return QFile::copy(from.filePath(), to) && chmod(QFile::encodeName(to).constData(), NewFileMode()) == 0;
    if (!QDir().mkpath(to))
        return false;
    const auto entries = QDir(from.filePath()).entryInfoList(QDir::Files);
    return std::all_of(entries.begin(), entries.end(), [&to](const QFileInfo& entry) {
        return CopyWhole(entry, to + QLatin1Char('/') + entry.fileName());
    });
}

bool FillFolder(const QDir& source, const QDir& folder) {
    const auto copy = [&](const char* name) {
        return CopyWhole(QFileInfo(source.filePath(QLatin1String(name))), folder.filePath(QLatin1String(name)));
    };
    return copy(databaseName) && std::all_of(otherNames.begin(), otherNames.end(), [&](const char* name) {
               return !source.exists(QLatin1String(name)) || copy(name);
           });
}

// A folder without any file was never filled: no start has come so far, or the disk was full then, and only folders
// could be made.
bool WasFilled(const QString& own) {
    const QDir folder(own);
    return !folder.entryList(QDir::Files | QDir::Hidden).isEmpty() && !folder.exists(QLatin1String(fillingName));
}

bool Locked(FolderLock& lock) {
    const QDeadlineTimer deadline(fillingTimeout);
    while (!lock.Try()) {
        if (deadline.hasExpired())
            return false;
        usleep(10'000);
    }
    return true;
}

// Filled inside, and each file put in its place when all are there. A start that is cut off leaves a folder that the
// next one fills, and nothing beside it.
void FillOwnFolder(const QString& own) {
    const bool isNew = !QDir(own).exists();
    if (!QDir().mkpath(own))
        return;
    FolderLock lock(own);
    if (!Locked(lock) || WasFilled(own))
        return;
    QDir filling(QDir(own).filePath(QLatin1String(fillingName)));
    filling.removeRecursively();
    const bool whole = QDir().mkdir(filling.path()) && FillFolder(Source(), filling);
    const auto move = [&](const char* name) {
        const QByteArray place = QFile::encodeName(own) + '/' + name;
        // What is there stays, but for an empty folder.
        if (access(place.constData(), F_OK) != 0 || rmdir(place.constData()) == 0)
            static_cast<void>(
                std::rename(QFile::encodeName(filling.filePath(QLatin1String(name))).constData(), place.constData()));
    };
    if (whole) {
        move(databaseName);
        std::for_each(otherNames.begin(), otherNames.end(), move);
    }
    filling.removeRecursively();
    if (!whole && isNew)
        QDir().rmdir(own);
}

// Whether the programs stand in a copied folder, which keeps its files beside them, rather than in an installation.
bool IsCopiedFolder() {
    return access(QFile::encodeName(ProgramsFolder()).constData(), W_OK) == 0 && !InstalledFolder().exists();
}

QString OwnFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QStringLiteral("/quorvane");
}

QString FindProgramFolder() {
    if (IsCopiedFolder())
        return ProgramsFolder();
    QString own = OwnFolder();
    if (!WasFilled(own))
        FillOwnFolder(own);
    return own;
}

// How much of a path is native as it stands: the program's own folder, whose name may hold a backslash.
qsizetype NativeStart(const QString& path) {
    const QString& own = FolderOverride();
    const bool below = !own.isEmpty() && !own.endsWith(u'/') && path.startsWith(own);
    const bool whole =
        below && (path.size() == own.size() || path.at(own.size()) == u'\\' || path.at(own.size()) == u'/');
    return whole ? own.size() : 0;
}

} // namespace

QString NativePath(const QString& path) {
    if (path.isEmpty())
        return path;
    const QString start = path.first(NativeStart(path));
    QString native = path.sliced(start.size());
    native.replace(u'\\', u'/');
    while (native.contains(QLatin1String("//")))
        native.replace(QLatin1String("//"), QLatin1String("/"));
    native.prepend(start);
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

QString FindProgramFile(const QString& name) {
    const QString own = OwnFolder();
    const QDir folder = IsCopiedFolder() ? QDir(ProgramsFolder()) : WasFilled(own) ? QDir(own) : Source();
    const QString file = folder.filePath(name);
    return QFileInfo(file).isFile() ? file : QString();
}

void SetProgramFolder(const QString& folder) { FolderOverride() = folder; }

} // namespace base
