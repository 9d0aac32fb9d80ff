// One open folder of a device tree, wherever the tree is kept: on a file system or in memory. Every question is one
// call to the place behind it and is answered with "nothing" where that fails; none blocks, none throws. Names are
// paths relative to the folder, which may climb with "..".
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace pnp {

class TreeFolder {
  public:
    TreeFolder() = default;
    TreeFolder(const TreeFolder&) = delete;
    TreeFolder& operator=(const TreeFolder&) = delete;
    virtual ~TreeFolder() = default;

    // The first `limit` bytes of a file.
    virtual std::optional<std::string> Read(const std::string& name, std::size_t limit) const = 0;
    // A link's target as it is written there; empty for what is no link.
    virtual std::string ReadLink(const std::string& name) const = 0;
    // Whether the name is there, dangling links included.
    virtual bool Has(const std::string& name) const = 0;
    // Whether the name is a folder itself; a link to one is not.
    virtual bool IsFolder(const std::string& name) const = 0;
    // The names in a folder, in no order, those that begin with a dot left out.
    virtual std::vector<std::string> List(const std::string& name) const = 0;
    // Null where there is no such folder. Links are followed.
    virtual std::shared_ptr<const TreeFolder> Open(const std::string& name) const = 0;
};

// A folder of the file system, which stays the same folder when another takes its place; null where there is none.
std::shared_ptr<const TreeFolder> OpenFolder(const std::string& path);

} // namespace pnp
