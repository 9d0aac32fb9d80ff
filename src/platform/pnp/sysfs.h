// Reading of a sysfs tree below a root. Every routine answers "nothing" for what vanished, cannot be read, is too large
// or makes no sense; none blocks, none throws. Paths are bytes relative to the root and begin with "/".
#pragma once

#include "pnp/sources.h"
#include "pnp/tree_folder.h"

#include <QString>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pnp {

class Sysfs {
  public:
    explicit Sysfs(const QString& root, std::shared_ptr<const TreeFolder> tree = nullptr);
    explicit Sysfs(const Sources& sources) : Sysfs(sources.deviceRoot, sources.tree) {}

    // The target of a link as a path below the root, taken textually, since links of captured trees dangle. Empty for
    // what is no link and for targets outside the root.
    std::string Link(const std::string& path) const;
    // The names in a folder, in an order that counts digits as numbers; none where it cannot be listed.
    std::vector<std::string> List(const std::string& path) const;
    // Whether a name is there, dangling links included.
    bool Has(const std::string& path) const;
    // The folder behind an entry of a bus or class folder: the link's target, or the entry itself where it is a folder.
    std::string Resolve(const std::string& path) const;
    // The folder of a path; null where there is none.
    std::shared_ptr<const TreeFolder> Open(const std::string& path) const;
    // A link's target, as it is written there, as a path below the root; empty for one outside.
    std::string Below(const std::string& folder, const std::string& target) const;

  private:
    std::string root_;
    std::shared_ptr<const TreeFolder> tree_;
};

// One device folder, opened at the first question. All answers come from that folder, also when another device takes
// its place in the tree meanwhile, so that no record becomes a mix of two. Copies share what was opened and read.
class Node {
  public:
    Node(const Sysfs& sysfs, std::string path);

    const std::string& Path() const { return path_; }
    std::string Name() const;
    // The folder above, also if another device has taken this one's place in the tree; nothing above the first.
    Node Parent() const;
    // The folder of that path above this one; for a path elsewhere, whatever stands there.
    Node Ancestor(const std::string& path) const;
    Node Child(const std::string& name) const;
    bool Exists() const { return Folder() != nullptr; }

    // A text attribute without the blanks and line ends around it, cut at its first NUL. Nothing where it is missing,
    // empty, longer than 1,000 bytes or no UTF-8. Control characters other than the tab become blanks.
    QString Text(const std::string& name) const;
    // The same, with the blanks in front of it: fields of a fixed width count them.
    QString Field(const std::string& name) const;
    // The same as plain bytes, for numbers and identifiers; other than printable ASCII makes it empty.
    std::string Word(const std::string& name) const;
    // An attribute in hexadecimal, with or without 0x; in decimal.
    std::optional<quint32> Hex(const std::string& name) const;
    std::optional<quint32> Decimal(const std::string& name) const;
    // An attribute's first `limit` bytes as they are; empty where it cannot be opened or read.
    std::string Bytes(const std::string& name, std::size_t limit) const;
    // The value of KEY in "uevent"; empty if there is none.
    std::string Uevent(const std::string& key) const;
    // The "modalias" attribute, else the MODALIAS of "uevent".
    std::string Modalias() const;

    // The last component of a link's target; empty for what is no link.
    std::string LinkName(const std::string& name) const;
    // As those of Sysfs, for a name in this folder.
    std::string Link(const std::string& name) const;
    bool Has(const std::string& name) const;
    std::vector<std::string> List(const std::string& name = {}) const;

  private:
    struct Opened;

    // The open folder; null if there is none.
    const TreeFolder* Folder() const;
    std::optional<std::string> Read(const std::string& name, std::size_t limit) const;
    std::string TextBytes(const std::string& name) const;

    const Sysfs* sysfs_;
    std::string path_;
    std::shared_ptr<Opened> opened_;
};

// The last component of a path.
std::string LastComponent(const std::string& path);
// What stands before the last component.
std::string ParentPath(const std::string& path);
// The components of a path, empty ones left out.
std::vector<std::string> Components(const std::string& path);

// Text that a device claims about itself: trimmed, cut at NUL, empty where it is no UTF-8.
QString CleanAttribute(const std::string& bytes);
// Whether a text is digits and nothing else; an empty one is not.
bool AllDigits(std::string_view text);
// The whole text as a number of 32 bits; in hexadecimal with or without 0x.
std::optional<quint32> ParseHex(const std::string& text);
std::optional<quint32> ParseDecimal(const std::string& text);

} // namespace pnp
