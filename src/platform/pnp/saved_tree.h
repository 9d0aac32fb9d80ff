// A device tree in memory: folders, files and links below one root, as they were read from a machine or from a file
// that somebody sent. Whatever is added, the tree stays a tree of bounded depth whose links stay inside.
#pragma once

#include "pnp/tree_folder.h"

#include <functional>
#include <map>
#include <memory>
#include <string>

namespace pnp {

class SavedTree {
  public:
    enum class Kind { Folder, File, Link };

    struct Entry {
        Kind kind = Kind::Folder;
        // What a file holds; where a link leads, as it is written there.
        std::string bytes;
        const Entry* parent = nullptr;
        std::map<std::string, std::unique_ptr<Entry>> children;
    };

    // Folders on the way are made. All three refuse (false) a path that is no plain one ("/a/b", without "." and
    // ".."), lies deeper than a machine's ever do, leads through a file or a link, or is taken by another kind or
    // another target. A file that is there already takes the longer contents.
    bool AddFolder(const std::string& path) { return Add(path, Kind::Folder, {}); }
    bool AddFile(const std::string& path, const std::string& bytes) { return Add(path, Kind::File, bytes); }
    // Refuses a target that is absolute or climbs above the root as well.
    bool AddLink(const std::string& path, const std::string& target);

    const Entry& Root() const { return root_; }
    // How many entries there are, the root not counted.
    std::size_t Count() const { return count_; }
    // Each entry with its path, a folder in front of what is in it, in the order of their names.
    void ForEach(const std::function<void(const std::string& path, const Entry& entry)>& visit) const;

  private:
    bool Add(const std::string& path, Kind kind, const std::string& bytes);

    Entry root_;
    std::size_t count_ = 0;
};

// The root of a tree as readers see it. It keeps the tree alive, which must not change any more.
std::shared_ptr<const TreeFolder> OpenSavedTree(std::shared_ptr<const SavedTree> tree);

// A link's target, relative to the folder that the link is in, for a target below the root.
std::string RelativeTarget(const std::string& folder, const std::string& target);

} // namespace pnp
