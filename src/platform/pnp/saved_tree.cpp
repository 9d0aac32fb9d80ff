#include "pnp/saved_tree.h"

#include "pnp/sysfs.h"

#include <algorithm>

namespace pnp {

namespace {

using Entry = SavedTree::Entry;
using Kind = SavedTree::Kind;

// The deepest device of a real machine, behind a row of hubs, has some twenty folders above it.
constexpr std::size_t Deepest = 60;
constexpr std::size_t LongestName = 255;
constexpr std::size_t LongestTarget = 4000;
// As many as the kernel follows.
constexpr int MostLinks = 40;

bool IsPlainName(const std::string& name) {
    return name != "." && name != ".." && name.size() <= LongestName &&
           std::none_of(name.begin(), name.end(), [](unsigned char c) { return c < ' ' || c == 0x7F; });
}

// Walks from folder to folder. A link that leads nowhere, above the root, or in circles ends at nothing.
class Walk {
  public:
    explicit Walk(const Entry* start) : at_(start) {}

    // The last link stays one unless `follow`.
    const Entry* To(const std::string& path, bool follow) {
        const std::vector<std::string> names = Components(path);
        for (std::size_t i = 0; i < names.size() && at_ != nullptr; ++i)
            Step(names[i], follow || i + 1 < names.size());
        return at_;
    }

  private:
    void Step(const std::string& name, bool follow) {
        if (name == ".")
            return;
        if (name == "..") {
            at_ = at_->parent;
            return;
        }
        const auto found = at_->children.find(name);
        const Entry* const next = found == at_->children.end() ? nullptr : found->second.get();
        if (next == nullptr || next->kind != Kind::Link || !follow) {
            at_ = next;
            return;
        }
        if (++links_ > MostLinks) {
            at_ = nullptr;
            return;
        }
        // From the folder that the link is in, which is where the walk stands.
        To(next->bytes, true);
    }

    const Entry* at_;
    int links_ = 0;
};

class SavedFolder : public TreeFolder {
  public:
    SavedFolder(std::shared_ptr<const SavedTree> tree, const Entry* folder) : tree_(std::move(tree)), folder_(folder) {}

    std::optional<std::string> Read(const std::string& name, std::size_t limit) const override {
        const Entry* const file = Find(name, true);
        return file == nullptr || file->kind != Kind::File ? std::nullopt : std::optional(file->bytes.substr(0, limit));
    }

    std::string ReadLink(const std::string& name) const override {
        const Entry* const link = Find(name, false);
        return link == nullptr || link->kind != Kind::Link ? std::string() : link->bytes;
    }

    bool Has(const std::string& name) const override { return Find(name, false) != nullptr; }

    bool IsFolder(const std::string& name) const override {
        const Entry* const entry = Find(name, false);
        return entry != nullptr && entry->kind == Kind::Folder;
    }

    std::vector<std::string> List(const std::string& name) const override {
        std::vector<std::string> names;
        if (const Entry* const folder = Find(name, true)) {
            for (const auto& [child, entry] : folder->children) {
                if (child.front() != '.')
                    names.push_back(child);
            }
        }
        return names;
    }

    std::shared_ptr<const TreeFolder> Open(const std::string& name) const override {
        const Entry* const folder = Find(name, true);
        return folder == nullptr || folder->kind != Kind::Folder ? nullptr
                                                                 : std::make_shared<SavedFolder>(tree_, folder);
    }

  private:
    const Entry* Find(const std::string& name, bool follow) const { return Walk(folder_).To(name, follow); }

    std::shared_ptr<const SavedTree> tree_;
    const Entry* folder_;
};

void Visit(const std::string& path, const Entry& folder,
           const std::function<void(const std::string&, const Entry&)>& visit) {
    for (const auto& [name, entry] : folder.children) {
        const std::string below = path + "/" + name;
        visit(below, *entry);
        Visit(below, *entry, visit);
    }
}

} // namespace

bool SavedTree::Add(const std::string& path, Kind kind, const std::string& bytes) {
    const std::vector<std::string> names = Components(path);
    if (names.empty() || names.size() > Deepest || !std::all_of(names.begin(), names.end(), IsPlainName))
        return false;
    Entry* at = &root_;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const Kind wanted = i + 1 < names.size() ? Kind::Folder : kind;
        std::unique_ptr<Entry>& child = at->children[names[i]];
        if (child == nullptr) {
            child = std::make_unique<Entry>();
            child->kind = wanted;
            child->parent = at;
            ++count_;
        } else if (child->kind != wanted) {
            return false;
        }
        at = child.get();
    }
    if (kind == Kind::Link && !at->bytes.empty() && at->bytes != bytes)
        return false;
    if (bytes.size() > at->bytes.size())
        at->bytes = bytes;
    return true;
}

bool SavedTree::AddLink(const std::string& path, const std::string& target) {
    if (target.empty() || target.front() == '/' || target.size() > LongestTarget ||
        target.find('\0') != std::string::npos)
        return false;
    // Above the root is outside, even if the way leads back in.
    std::size_t depth = Components(ParentPath(path)).size();
    for (const std::string& part : Components(target)) {
        if (part == ".." && depth-- == 0)
            return false;
        depth += part == "." || part == ".." ? 0 : 1;
    }
    return Add(path, Kind::Link, target);
}

void SavedTree::ForEach(const std::function<void(const std::string&, const Entry&)>& visit) const {
    Visit({}, root_, visit);
}

std::shared_ptr<const TreeFolder> OpenSavedTree(std::shared_ptr<const SavedTree> tree) {
    const Entry* const root = &tree->Root();
    return std::make_shared<SavedFolder>(std::move(tree), root);
}

std::string RelativeTarget(const std::string& folder, const std::string& target) {
    const std::vector<std::string> from = Components(folder);
    const std::vector<std::string> to = Components(target);
    std::size_t same = 0;
    while (same < from.size() && same < to.size() && from[same] == to[same])
        ++same;
    std::string relative;
    for (std::size_t i = same; i < from.size(); ++i)
        relative += "../";
    for (std::size_t i = same; i < to.size(); ++i)
        relative += to[i] + "/";
    if (relative.empty())
        return ".";
    relative.pop_back();
    return relative;
}

} // namespace pnp
