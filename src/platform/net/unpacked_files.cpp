#include "net/unpacked_files.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QStringList>
#include <cstdio>
#include <fcntl.h>
#include <optional>
#include <unistd.h>

namespace net {

namespace {

// The folders that the files go to, each listed once. Those that were made for them go again unless they are kept.
class TargetFolders {
  public:
    TargetFolders() = default;
    ~TargetFolders() {
        for (auto folder = made_.crbegin(); folder != made_.crend(); ++folder) {
            QDir().rmdir(*folder);
        }
    }
    TargetFolders(const TargetFolders&) = delete;
    TargetFolders& operator=(const TargetFolders&) = delete;

    void Keep() { made_.clear(); }

    // The place for `name` in a folder: a file that is there keeps its own spelling, since names that differ in case
    // alone are one file here.
    QString PlaceOf(const QString& folder, const QString& name) {
        const QString spelled = folder + QChar(u'/') + name;
        QHash<QString, QString>& names = NamesIn(folder);
        QString& there = names[name.toCaseFolded()];
        if (there.isEmpty()) {
            there = name;
        }
        return QFileInfo::exists(spelled) ? spelled : folder + QChar(u'/') + there;
    }

    // The folder for `relative` below `root`, made where it is missing. Nothing where a link or a file is in the way.
    std::optional<QString> Make(const QString& root, const QStringList& relative) {
        QString path = root;
        for (const QString& component : relative) {
            path = PlaceOf(path, component);
            const QFileInfo info(path);
            if (info.isSymLink() || (info.exists() && !info.isDir())) {
                return std::nullopt;
            }
            if (!info.exists()) {
                if (!QDir().mkdir(path)) {
                    return std::nullopt;
                }
                made_.append(path);
            }
        }
        return path;
    }

  private:
    QHash<QString, QString>& NamesIn(const QString& folder) {
        const auto known = names_.find(folder);
        if (known != names_.end()) {
            return *known;
        }
        QHash<QString, QString> names;
        const QStringList entries =
            QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
        for (const QString& entry : entries) {
            names.insert(entry.toCaseFolded(), entry);
        }
        return *names_.insert(folder, names);
    }

    QHash<QString, QHash<QString, QString>> names_; // of each folder: spellings by the name without its case
    QStringList made_;
};

bool Rename(const QString& from, const QString& to) {
    return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

// The files that stand in their places by now, and the way back.
class PlacedFiles {
  public:
    bool Put(const UnpackedFile& file, const QString& place, const Replacer& replace) {
        const QString kept = file.Path + QStringLiteral(".kept");
        const bool hadOne = QFileInfo::exists(place);
        // A second name for the old file: whoever has it open meanwhile, it stays what it is. Of a link, for the file
        // that the replacer replaces behind it.
        const int flags = IsDatabase(file) ? AT_SYMLINK_FOLLOW : 0;
        const bool isKept = hadOne && ::linkat(AT_FDCWD, QFile::encodeName(place).constData(), AT_FDCWD,
                                               QFile::encodeName(kept).constData(), flags) == 0;
        if (!replace(file.Path, place)) {
            return false;
        }
        placed_.append({place, isKept ? kept : QString(), hadOne, replace});
        return true;
    }

    void TakeBack() const {
        for (auto file = placed_.crbegin(); file != placed_.crend(); ++file) {
            if (!file->HadOne) {
                QFile::remove(file->Place);
            } else if (!file->Kept.isEmpty()) {
                file->Replace(file->Kept, file->Place);
            }
        }
    }

  private:
    struct Placed {
        QString Place;
        QString Kept; // empty where the file system knows no links
        bool HadOne;
        Replacer Replace;
    };
    QList<Placed> placed_;
};

// Where each file goes; empty where a place cannot be had.
QStringList Places(const QList<UnpackedFile>& files, const QString& target, TargetFolders& folders) {
    QStringList places;
    for (const UnpackedFile& file : files) {
        QStringList components = file.Name.split(QChar(u'/'));
        const QString name = components.takeLast();
        const std::optional<QString> folder = folders.Make(target, components);
        const QString place = folder ? folders.PlaceOf(*folder, name) : QString();
        if (!folder || QFileInfo(place).isDir()) {
            return {};
        }
        places.append(place);
    }
    return places;
}

} // namespace

bool IsDatabase(const UnpackedFile& file) { return file.Name.endsWith(QStringLiteral(".mdb"), Qt::CaseInsensitive); }

bool PutInPlace(const QList<UnpackedFile>& files, const QString& target, const Replacer& replaceDatabase) {
    TargetFolders folders;
    const QStringList places = Places(files, target, folders);
    if (places.size() != files.size()) {
        return false;
    }
    PlacedFiles placed;
    for (const bool databases : {true, false}) {
        const Replacer& replace = databases && replaceDatabase ? replaceDatabase : Rename;
        for (qsizetype index = 0; index < files.size(); ++index) {
            if (IsDatabase(files.at(index)) == databases && !placed.Put(files.at(index), places.at(index), replace)) {
                placed.TakeBack();
                return false;
            }
        }
    }
    folders.Keep();
    return true;
}

} // namespace net
