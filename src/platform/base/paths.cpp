#include "base/paths.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <algorithm>
#include <array>
#include <unistd.h>

namespace base {

namespace {

// Where an installation keeps the files that a user's own folder is filled from.
constexpr auto installedDataFolder = "../share/quorvane";

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

// A file or a folder of files. False where it is not there whole: the disk is full, for instance.
bool CopyWhole(const QFileInfo& from, const QString& to) {
    if (!from.isDir())
        return QFile::copy(from.filePath(), to) &&
               QFile::setPermissions(to, QFile::permissions(to) | QFile::WriteOwner);
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

// Filled beside its place and moved there whole: a first start that is cut off must not leave half a folder behind,
// which no later start would fill.
void MakeOwnFolder(const QString& own) {
    const QFileInfo place(own);
    if (!QDir().mkpath(place.path()))
        return;
    const QTemporaryDir beside(place.path() + QStringLiteral("/.quorvane-XXXXXX"));
    const QString filled = beside.filePath(QStringLiteral("filled"));
    if (beside.isValid() && QDir().mkpath(filled) && FillFolder(Source(), QDir(filled)))
        QDir().rename(filled, own);
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
    if (!QFileInfo::exists(own))
        MakeOwnFolder(own);
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

QString FindProgramFile(const QString& name) {
    const QString own = OwnFolder();
    const QDir folder = IsCopiedFolder() ? QDir(ProgramsFolder()) : QFileInfo::exists(own) ? QDir(own) : Source();
    const QString file = folder.filePath(name);
    return QFileInfo(file).isFile() ? file : QString();
}

void SetProgramFolder(const QString& folder) { FolderOverride() = folder; }

} // namespace base
