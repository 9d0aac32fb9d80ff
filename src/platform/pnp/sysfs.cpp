#include "pnp/sysfs.h"

#include <QFile>
#include <QStringDecoder>
#include <algorithm>
#include <charconv>

namespace pnp {

namespace {

constexpr std::size_t LongestText = 1000;
constexpr std::size_t LongestUevent = 8192;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Runs of digits compare as numbers, so that 1-10 follows 1-2.
bool NaturalLess(const std::string& a, const std::string& b) {
    std::size_t i = 0;
    std::size_t j = 0;
    while (i < a.size() && j < b.size()) {
        if (!IsDigit(a[i]) || !IsDigit(b[j])) {
            if (a[i] != b[j])
                return a[i] < b[j];
            ++i;
            ++j;
            continue;
        }
        std::size_t endA = i;
        std::size_t endB = j;
        while (endA < a.size() && IsDigit(a[endA]))
            ++endA;
        while (endB < b.size() && IsDigit(b[endB]))
            ++endB;
        std::size_t startA = i;
        std::size_t startB = j;
        while (startA + 1 < endA && a[startA] == '0')
            ++startA;
        while (startB + 1 < endB && b[startB] == '0')
            ++startB;
        if (endA - startA != endB - startB)
            return endA - startA < endB - startB;
        const int order = a.compare(startA, endA - startA, b, startB, endB - startB);
        if (order != 0)
            return order < 0;
        i = endA;
        j = endB;
    }
    if (a.size() - i != b.size() - j)
        return a.size() - i < b.size() - j;
    return a < b;
}

// `target` seen from `folder`, without "." and ".."; empty if it climbs above the root.
std::string Normalised(const std::string& folder, const std::string& target) {
    std::vector<std::string> parts = Components(folder);
    for (const std::string& part : Components(target)) {
        if (part == ".")
            continue;
        if (part != "..") {
            parts.push_back(part);
            continue;
        }
        if (parts.empty())
            return {};
        parts.pop_back();
    }
    std::string path;
    for (const std::string& part : parts)
        path += "/" + part;
    return path;
}

// A path below the root, as a name in the root's folder.
std::string Inside(const std::string& path) { return path.empty() ? "." : path.substr(1); }

std::vector<std::string> Sorted(std::vector<std::string> names) {
    std::sort(names.begin(), names.end(), NaturalLess);
    return names;
}

// What turns the text behind it round, so that a list shows other than what it holds.
bool IsDirectionMark(char16_t c) {
    return c == 0x200E || c == 0x200F || (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
}

} // namespace

Sysfs::Sysfs(const QString& root, std::shared_ptr<const TreeFolder> tree)
    : root_(QFile::encodeName(root).toStdString()), tree_(std::move(tree)) {
    while (root_.size() > 1 && root_.back() == '/')
        root_.pop_back();
    if (tree_ == nullptr)
        tree_ = OpenFolder(root_);
}

std::string Sysfs::Below(const std::string& folder, const std::string& target) const {
    if (target.empty() || target.front() != '/')
        return target.empty() ? std::string() : Normalised(folder, target);
    return target.starts_with(root_ + "/") ? Normalised({}, target.substr(root_.size())) : std::string();
}

std::string Sysfs::Link(const std::string& path) const {
    return tree_ == nullptr ? std::string() : Below(ParentPath(path), tree_->ReadLink(Inside(path)));
}

std::vector<std::string> Sysfs::List(const std::string& path) const {
    return tree_ == nullptr ? std::vector<std::string>() : Sorted(tree_->List(Inside(path)));
}

bool Sysfs::Has(const std::string& path) const { return tree_ != nullptr && tree_->Has(Inside(path)); }

std::string Sysfs::Resolve(const std::string& path) const {
    std::string target = Link(path);
    if (!target.empty())
        return target;
    return tree_ != nullptr && tree_->IsFolder(Inside(path)) ? path : std::string();
}

std::shared_ptr<const TreeFolder> Sysfs::Open(const std::string& path) const {
    return tree_ == nullptr ? nullptr : tree_->Open(Inside(path));
}

struct Node::Opened {
    bool tried = false;
    std::shared_ptr<const TreeFolder> folder;
    bool ueventRead = false;
    std::string uevent;
};

Node::Node(const Sysfs& sysfs, std::string path)
    : sysfs_(&sysfs), path_(std::move(path)), opened_(std::make_shared<Opened>()) {}

const TreeFolder* Node::Folder() const {
    if (!opened_->tried) {
        opened_->tried = true;
        opened_->folder = sysfs_->Open(path_);
    }
    return opened_->folder.get();
}

std::optional<std::string> Node::Read(const std::string& name, std::size_t limit) const {
    return Folder() == nullptr ? std::nullopt : Folder()->Read(name, limit);
}

std::string Node::Name() const { return LastComponent(path_); }

// Asked of the open folder: by its name, the folder above could be that of a device which took the place meanwhile.
Node Node::Parent() const {
    Node parent(*sysfs_, ParentPath(path_));
    parent.opened_->tried = true;
    if (Folder() != nullptr && !parent.path_.empty())
        parent.opened_->folder = Folder()->Open("..");
    return parent;
}

Node Node::Ancestor(const std::string& path) const {
    Node node = *this;
    while (node.path_.size() > path.size())
        node = node.Parent();
    return node.path_ == path ? node : Node(*sysfs_, path);
}

Node Node::Child(const std::string& name) const {
    Node child(*sysfs_, path_ + "/" + name);
    child.opened_->tried = true;
    if (Folder() != nullptr)
        child.opened_->folder = Folder()->Open(name);
    return child;
}

std::string Node::LinkName(const std::string& name) const {
    std::string target = Folder() == nullptr ? std::string() : Folder()->ReadLink(name);
    while (!target.empty() && target.back() == '/')
        target.pop_back();
    return LastComponent(target);
}

std::string Node::Link(const std::string& name) const {
    return Folder() == nullptr ? std::string() : sysfs_->Below(path_, Folder()->ReadLink(name));
}

bool Node::Has(const std::string& name) const { return Folder() != nullptr && Folder()->Has(name); }

// Trees packed by tar have their attributes padded with NULs to a page, so the text ends at the first before any limit.
std::string Node::TextBytes(const std::string& name) const {
    std::string bytes = Read(name, LongestText + 1).value_or(std::string());
    bytes.resize(std::min(bytes.find('\0'), bytes.size()));
    return bytes.size() <= LongestText ? bytes : std::string();
}

QString Node::Text(const std::string& name) const { return CleanAttribute(TextBytes(name)); }

QString Node::Field(const std::string& name) const {
    const std::string bytes = TextBytes(name);
    const QString text = CleanAttribute(bytes);
    return text.isEmpty() ? text : QString(qsizetype(bytes.find_first_not_of(' ')), QLatin1Char(' ')) + text;
}

std::string Node::Word(const std::string& name) const {
    const std::string text = Text(name).toStdString();
    const bool printable = std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
    return printable ? text : std::string();
}

std::optional<quint32> Node::Hex(const std::string& name) const { return ParseHex(Word(name)); }

std::optional<quint32> Node::Decimal(const std::string& name) const { return ParseDecimal(Word(name)); }

std::string Node::Bytes(const std::string& name, std::size_t limit) const {
    return Read(name, limit).value_or(std::string());
}

std::string Node::Uevent(const std::string& key) const {
    std::string& uevent = opened_->uevent;
    if (!opened_->ueventRead) {
        opened_->ueventRead = true;
        uevent.assign(1, '\n');
        uevent += Bytes("uevent", LongestUevent);
    }
    const std::string start = "\n" + key + "=";
    const std::size_t found = uevent.find(start);
    if (found == std::string::npos)
        return {};
    const std::size_t begin = found + start.size();
    const std::string value = uevent.substr(begin, uevent.find('\n', begin) - begin);
    return CleanAttribute(value).toStdString();
}

std::string Node::Modalias() const {
    const std::string alias = Word("modalias");
    return alias.empty() ? Uevent("MODALIAS") : alias;
}

std::vector<std::string> Node::List(const std::string& name) const {
    return Folder() == nullptr ? std::vector<std::string>() : Sorted(Folder()->List(name.empty() ? "." : name));
}

std::string LastComponent(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string ParentPath(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

std::vector<std::string> Components(const std::string& path) {
    std::vector<std::string> parts;
    std::size_t begin = 0;
    while (begin < path.size()) {
        const std::size_t end = std::min(path.find('/', begin), path.size());
        if (end > begin)
            parts.push_back(path.substr(begin, end - begin));
        begin = end + 1;
    }
    return parts;
}

QString CleanAttribute(const std::string& bytes) {
    const std::size_t end = std::min(bytes.find('\0'), bytes.size());
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder.decode(QByteArrayView(bytes.data(), qsizetype(end)));
    if (decoder.hasError())
        return {};
    for (QChar& c : text) {
        if ((c.category() == QChar::Other_Control && c != u'\t') || IsDirectionMark(c.unicode()))
            c = u' ';
    }
    return text.trimmed();
}

bool AllDigits(std::string_view text) { return !text.empty() && std::all_of(text.begin(), text.end(), IsDigit); }

std::optional<quint32> ParseHex(const std::string& text) {
    const std::size_t begin = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X') ? 2 : 0;
    quint32 value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data() + begin, end, value, 16);
    return error == std::errc() && stop == end ? std::optional(value) : std::nullopt;
}

std::optional<quint32> ParseDecimal(const std::string& text) {
    quint32 value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value, 10);
    return error == std::errc() && stop == end ? std::optional(value) : std::nullopt;
}

} // namespace pnp
