#include "net/staging_folder.h"

#include <QCoreApplication>
#include <QDir>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace net {

namespace {

constexpr char16_t namePrefix[] = u".unpacking-";

// The lock goes with its holder, however that ends. -1 where another process holds it.
int LockFolder(const QString& path) {
    const int descriptor = open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor >= 0 && flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
        close(descriptor);
        return -1;
    }
    return descriptor;
}

// Folders of processes that were killed: nobody holds their locks.
void RemoveStale(const QString& target) {
    const QStringList names = QDir(target).entryList({QString::fromUtf16(namePrefix) + QChar(u'*')},
                                                     QDir::Dirs | QDir::Hidden | QDir::NoSymLinks);
    for (const QString& name : names) {
        const QString path = target + QChar(u'/') + name;
        const int lock = LockFolder(path);
        if (lock >= 0) {
            QDir(path).removeRecursively();
            close(lock);
        }
    }
}

} // namespace

StagingFolder::StagingFolder(const QString& target) {
    RemoveStale(target);
    const QString path =
        target + QChar(u'/') + QString::fromUtf16(namePrefix) + QString::number(QCoreApplication::applicationPid());
    if (!QDir().mkdir(path)) {
        return;
    }
    lock_ = LockFolder(path);
    if (lock_ < 0) {
        QDir().rmdir(path);
        return;
    }
    path_ = path;
}

StagingFolder::~StagingFolder() {
    file_.close();
    if (!path_.isEmpty()) {
        QDir(path_).removeRecursively();
    }
    if (lock_ >= 0) {
        close(lock_);
    }
}

bool StagingFolder::OpenFile() {
    file_.setFileName(FilePath(count_++));
    return file_.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered);
}

bool StagingFolder::Write(const char* data, qsizetype size) {
    while (size > 0) {
        const qint64 taken = file_.write(data, size);
        if (taken <= 0) {
            return false;
        }
        data += taken;
        size -= taken;
    }
    return true;
}

bool StagingFolder::CloseFile() {
    file_.close();
    return file_.error() == QFileDevice::NoError;
}

bool StagingFolder::Sync() const { return syncfs(lock_) == 0; }

QString StagingFolder::FilePath(qsizetype index) const { return path_ + QChar(u'/') + QString::number(index); }

} // namespace net
