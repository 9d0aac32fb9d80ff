#include "data/replace_file.h"

#include "data/error.h"
#include "data/guarded_handle.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sqlite3.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace data {

namespace {

constexpr int lockTimeout = 10000; // milliseconds that one replacement waits for another

QString LastError() { return QString::fromLocal8Bit(std::strerror(errno)); }

bool SyncPath(const QString& path, int flags) {
    const int descriptor = ::open(QFile::encodeName(path).constData(), flags | O_CLOEXEC);
    if (descriptor < 0) {
        return false;
    }
    const bool synced = ::fsync(descriptor) == 0;
    ::close(descriptor);
    return synced;
}

bool SyncFolderOf(const QString& path) { return SyncPath(QFileInfo(path).absolutePath(), O_RDONLY | O_DIRECTORY); }

// The old file opened for nobody else. What is no database has no one who writes to it: an empty handle, without error.
Handle OpenExclusively(const QString& path, QString& error) {
    Handle handle;
    int code = SQLITE_OK;
    if (Ran([&] { handle = OpenGuarded(path, nullptr, &code); })) {
        // Rolls back what an interrupted write left; held until the new file stands there.
        code = sqlite3_exec(handle.get(), "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr);
    }
    if (code == SQLITE_BUSY || code == SQLITE_LOCKED) {
        error = QStringLiteral("the database is in use");
    }
    if (code != SQLITE_OK) {
        handle.reset();
    }
    return handle;
}

// Nobody can have begun a write, so a journal or a log that still stands here belongs to nothing. It goes before the
// new file comes: behind the rename it could be one that the new file needs.
bool RemoveNeighbours(const QString& place) {
    for (const char* ending : {"-journal", "-wal", "-shm"}) {
        if (::unlink(QFile::encodeName(place + QLatin1String(ending)).constData()) != 0 && errno != ENOENT) {
            return false;
        }
    }
    return true;
}

// One replacement at a time. The system itself lets go of the lock when its holder ends, however that ends; a file that
// names the holder by its number could name another process by the time somebody reads it.
class ReplacementLock {
  public:
    explicit ReplacementLock(const QString& path) : path_(QFile::encodeName(path)) {
        QElapsedTimer waiting;
        waiting.start();
        while (!Try() && errno == EWOULDBLOCK && !waiting.hasExpired(lockTimeout)) {
            ::usleep(10'000);
        }
    }
    ~ReplacementLock() {
        if (file_ >= 0) {
            ::unlink(path_.constData());
            ::close(file_);
        }
    }
    ReplacementLock(const ReplacementLock&) = delete;
    ReplacementLock& operator=(const ReplacementLock&) = delete;

    bool IsHeld() const { return file_ >= 0; }

  private:
    // False, with errno saying why; EWOULDBLOCK where it is worth another try.
    bool Try() {
        const int file = ::open(path_.constData(), O_CREAT | O_RDWR | O_CLOEXEC | O_NOFOLLOW, 0666);
        if (file < 0) {
            return false;
        }
        struct stat locked {};
        struct stat named {};
        // The holder before may have removed the file meanwhile: a lock on that is none.
        if (::flock(file, LOCK_EX | LOCK_NB) == 0 && ::fstat(file, &locked) == 0 &&
            ::stat(path_.constData(), &named) == 0 && locked.st_ino == named.st_ino) {
            file_ = file;
            return true;
        }
        ::close(file);
        errno = EWOULDBLOCK;
        return false;
    }

    QByteArray path_;
    int file_ = -1;
};

} // namespace

bool ReplaceDatabaseFile(const QString& newFile, const QString& target, QString* error) {
    QString ignored;
    QString& what = error != nullptr ? *error : ignored;
    // Behind a link, the file that it names: its journal stands beside it, not beside the link.
    const QFileInfo info(target);
    const QString place = info.exists() ? info.canonicalFilePath() : info.absoluteFilePath();
    if (info.exists() && !info.isFile()) {
        what = QStringLiteral("not a file");
        return false;
    }
    const ReplacementLock lock(place + QStringLiteral(".lock"));
    if (!lock.IsHeld()) {
        what = QStringLiteral("the folder cannot be written, or another replacement is under way");
        return false;
    }
    if (!SyncPath(newFile, O_RDONLY)) {
        what = LastError();
        return false;
    }
    QString busy;
    const Handle old = info.exists() ? OpenExclusively(place, busy) : Handle();
    if (!busy.isEmpty()) {
        what = busy;
        return false;
    }
    if (!RemoveNeighbours(place) || !SyncFolderOf(place) ||
        std::rename(QFile::encodeName(newFile).constData(), QFile::encodeName(place).constData()) != 0) {
        what = LastError();
        return false;
    }
    SyncFolderOf(place);
    return true;
}

bool CopyDatabaseFile(const QString& path, const QString& copy, QString* error) {
    Handle source;
    Error failure;
    if (!Ran([&] { source = OpenGuarded(path, nullptr); }, &failure)) {
        *error = failure.Description();
        return false;
    }
    sqlite3* opened = nullptr;
    int code = sqlite3_open_v2(QFileInfo(copy).absoluteFilePath().toUtf8().constData(), &opened,
                               SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
    Handle target(opened);
    if (code == SQLITE_OK) {
        // Nobody misses a copy that a crash cut off.
        sqlite3_exec(opened, "PRAGMA synchronous=OFF; PRAGMA journal_mode=OFF", nullptr, nullptr, nullptr);
        // All pages in one step, during which others read but do not write.
        if (sqlite3_backup* backup = sqlite3_backup_init(opened, "main", source.get(), "main")) {
            sqlite3_backup_step(backup, -1);
            sqlite3_backup_finish(backup);
        }
        code = sqlite3_errcode(opened);
    }
    if (code == SQLITE_OK) {
        return true;
    }
    *error = QStringLiteral("%1: %2").arg(path, QString::fromUtf8(sqlite3_errmsg(opened)));
    target.reset();
    QFile::remove(copy);
    return false;
}

bool CreateDatabaseFile(const QString& nativePath, const QStringList& statements, QString* error) {
    // Claimed by its name, so that a file that is there is never touched.
    const int descriptor =
        ::open(QFile::encodeName(nativePath).constData(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0666);
    if (descriptor < 0) {
        if (error != nullptr) {
            *error = LastError();
        }
        return false;
    }
    ::close(descriptor);
    sqlite3* opened = nullptr;
    int code = sqlite3_open_v2(QFileInfo(nativePath).absoluteFilePath().toUtf8().constData(), &opened,
                               SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
    Handle handle(opened);
    QByteArray script = "BEGIN;";
    for (const QString& statement : statements) {
        script += statement.toUtf8() + ';';
    }
    script += "COMMIT;";
    if (code == SQLITE_OK) {
        code = sqlite3_exec(handle.get(), script.constData(), nullptr, nullptr, nullptr);
    }
    if (code == SQLITE_OK) {
        return true;
    }
    if (error != nullptr) {
        *error = QString::fromUtf8(sqlite3_errmsg(handle.get()));
    }
    handle.reset();
    QFile::remove(nativePath);
    return false;
}

} // namespace data
