#include "base/plain_file.h"

#include <QFile>
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace base {

Descriptor::Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
}

bool Descriptor::Close() {
    const int number = std::exchange(number_, -1);
    return number >= 0 && ::close(number) == 0;
}

std::optional<QByteArray> ReadPlainFile(const QString& path, qint64 most) {
    // Not waiting: a pipe without a writer would hold up the program for ever.
    const Descriptor file(::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat status {};
    if (!file || ::fstat(file.Number(), &status) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    QByteArray bytes(qMin<qint64>(status.st_size, most), Qt::Uninitialized);
    qsizetype done = 0;
    while (done < bytes.size()) {
        const ssize_t count = ::read(file.Number(), bytes.data() + done, size_t(bytes.size() - done));
        if (count < 0 && errno != EINTR)
            return std::nullopt;
        if (count == 0)
            break;
        done += qMax<ssize_t>(count, 0);
    }
    bytes.truncate(done);
    return bytes;
}

Descriptor MakeFileAnew(const QString& path) {
    const QByteArray name = QFile::encodeName(path);
    struct stat before {};
    const bool plain = ::lstat(name.constData(), &before) == 0 && S_ISREG(before.st_mode);
    if (::unlink(name.constData()) != 0 && errno != ENOENT)
        return {};
    Descriptor file(::open(name.constData(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0666));
    // Not asked for its result: a file system without permissions refuses it.
    if (file && plain)
        static_cast<void>(::fchmod(file.Number(), before.st_mode & 0777));
    return file;
}

bool WriteAll(const Descriptor& file, const QByteArray& bytes) {
    for (qsizetype done = 0; done < bytes.size();) {
        const ssize_t count = ::write(file.Number(), bytes.constData() + done, size_t(bytes.size() - done));
        if (count <= 0 && errno != EINTR)
            return false;
        done += qMax<ssize_t>(count, 0);
    }
    return true;
}

FolderLock::FolderLock(const QString& folder)
    : folder_(::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {}

bool FolderLock::Lock(int how) {
    return !folder_ || ::flock(folder_.Number(), how | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

bool FolderLock::Try() { return Lock(LOCK_EX); }

bool FolderLock::TryShared() { return Lock(LOCK_SH); }

bool FolderLock::Sync() const { return folder_ && ::fsync(folder_.Number()) == 0; }

} // namespace base
