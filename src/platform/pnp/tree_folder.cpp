#include "pnp/tree_folder.h"

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace pnp {

namespace {

int OpenAt(int folder, const std::string& name) {
    return openat(folder, name.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
}

class DiskFolder : public TreeFolder {
  public:
    explicit DiskFolder(int folder) : folder_(folder) {}
    ~DiskFolder() override { close(folder_); }

    std::optional<std::string> Read(const std::string& name, std::size_t limit) const override;
    std::string ReadLink(const std::string& name) const override;
    bool Has(const std::string& name) const override;
    bool IsFolder(const std::string& name) const override;
    std::vector<std::string> List(const std::string& name) const override;
    std::shared_ptr<const TreeFolder> Open(const std::string& name) const override;

  private:
    int folder_;
};

std::optional<std::string> DiskFolder::Read(const std::string& name, std::size_t limit) const {
    // Not blocking: a fixture or a captured tree may hold a pipe under any name.
    const int file = openat(folder_, name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (file < 0)
        return std::nullopt;
    // Attributes are short as a rule, so the first round asks for little.
    std::string bytes(std::min<std::size_t>(limit, 512), '\0');
    std::size_t used = 0;
    bool failed = false;
    while (used < limit) {
        if (used == bytes.size())
            bytes.resize(std::min(limit, bytes.size() * 4));
        const ssize_t count = read(file, bytes.data() + used, bytes.size() - used);
        if (count < 0 && errno == EINTR)
            continue;
        failed = count < 0;
        if (count <= 0)
            break;
        used += std::size_t(count);
    }
    close(file);
    if (failed)
        return std::nullopt;
    bytes.resize(used);
    return bytes;
}

std::string DiskFolder::ReadLink(const std::string& name) const {
    char target[4096];
    const ssize_t length = readlinkat(folder_, name.c_str(), target, sizeof target);
    return length > 0 && std::size_t(length) < sizeof target ? std::string(target, std::size_t(length)) : std::string();
}

bool DiskFolder::Has(const std::string& name) const {
    struct stat status {};
    return fstatat(folder_, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
}

bool DiskFolder::IsFolder(const std::string& name) const {
    struct stat status {};
    return fstatat(folder_, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(status.st_mode);
}

std::vector<std::string> DiskFolder::List(const std::string& name) const {
    std::vector<std::string> names;
    const int file = openat(folder_, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    DIR* const stream = file < 0 ? nullptr : fdopendir(file);
    if (stream == nullptr) {
        if (file >= 0)
            close(file);
        return names;
    }
    while (const dirent* entry = readdir(stream)) {
        if (entry->d_name[0] != '.')
            names.emplace_back(entry->d_name);
    }
    closedir(stream);
    return names;
}

std::shared_ptr<const TreeFolder> DiskFolder::Open(const std::string& name) const {
    const int folder = OpenAt(folder_, name);
    return folder < 0 ? nullptr : std::make_shared<DiskFolder>(folder);
}

} // namespace

std::shared_ptr<const TreeFolder> OpenFolder(const std::string& path) {
    const int folder = OpenAt(AT_FDCWD, path);
    return folder < 0 ? nullptr : std::make_shared<DiskFolder>(folder);
}

} // namespace pnp
