// Files that the program reads and writes by a name that anybody may have given to something else: nothing but plain
// files is opened, without waiting, and within a limit of size. Paths are native.
#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

namespace base {

// A descriptor that is closed with its owner; below 0 where there is none.
class Descriptor {
  public:
    Descriptor() = default;
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() { Close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    Descriptor(Descriptor&& other) noexcept;
    Descriptor& operator=(Descriptor&& other) noexcept;

    int Number() const { return number_; }
    explicit operator bool() const { return number_ >= 0; }
    // False where there is none, or where what was written could not be kept.
    bool Close();

  private:
    int number_ = -1;
};

// The first `most` bytes of a plain file, or of the one that a link leads to. Nothing where there is none or it cannot
// be read.
std::optional<QByteArray> ReadPlainFile(const QString& path, qint64 most);

// A new, empty file under this name, for writing. What bore the name before, a link too, loses it and is not written
// to; of a plain file the permissions are kept. None where the name cannot be had: it is that of a folder, for
// instance.
Descriptor MakeFileAnew(const QString& path);

bool WriteAll(const Descriptor& file, const QByteArray& bytes);

// One at a time in a folder, or several that share it, of whatever process, for as long as the object lives or until
// its process ends, however that ends.
class FolderLock {
  public:
    explicit FolderLock(const QString& folder);

    // False where another has it. True as well where the file system knows no locks: nothing could be done without.
    bool Try();
    // Beside others that share it.
    bool TryShared();
    // What the folder was told, names above all, is on the disk.
    bool Sync() const;

  private:
    bool Lock(int how);

    Descriptor folder_;
};

} // namespace base
