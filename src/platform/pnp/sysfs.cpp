#include "pnp/sysfs.h"

#include <QFile>
#include <QStringDecoder>
#include <algorithm>
#include <cerrno>
#include <charconv>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

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

// The calls below take names from an open folder, or absolute paths with AT_FDCWD.
std::string ReadLink(int folder, const std::string& path) {
    char target[4096];
    const ssize_t length = readlinkat(folder, path.c_str(), target, sizeof target);
    return length > 0 && std::size_t(length) < sizeof target ? std::string(target, std::size_t(length)) : std::string();
}

std::string ReadLinkName(int folder, const std::string& path) {
    std::string target = ReadLink(folder, path);
    while (!target.empty() && target.back() == '/')
        target.pop_back();
    return LastComponent(target);
}

std::optional<std::string> ReadFile(int folder, const std::string& path, std::size_t limit) {
    // Not blocking: a fixture or a captured tree may hold a pipe under any name.
    const int file = openat(folder, path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
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

std::vector<std::string> ListFolder(int folder, const std::string& path) {
    std::vector<std::string> names;
    const int file = openat(folder, path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
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
    std::sort(names.begin(), names.end(), NaturalLess);
    return names;
}

bool IsThere(int folder, const std::string& path) {
    struct stat status {};
    return fstatat(folder, path.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
}

// What turns the text behind it round, so that a list shows other than what it holds.
bool IsDirectionMark(char16_t c) {
    return c == 0x200E || c == 0x200F || (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
}

} // namespace

Sysfs::Sysfs(const QString& root) : root_(QFile::encodeName(root).toStdString()) {
    while (root_.size() > 1 && root_.back() == '/')
        root_.pop_back();
}

bool Sysfs::Readable() const {
    DIR* folder = opendir(root_.c_str());
    if (folder == nullptr)
        return false;
    closedir(folder);
    return true;
}

std::string Sysfs::Below(const std::string& folder, const std::string& target) const {
    if (target.empty() || target.front() != '/')
        return target.empty() ? std::string() : Normalised(folder, target);
    return target.starts_with(root_ + "/") ? Normalised({}, target.substr(root_.size())) : std::string();
}

std::string Sysfs::Link(const std::string& path) const {
    return Below(ParentPath(path), ReadLink(AT_FDCWD, root_ + path));
}

std::vector<std::string> Sysfs::List(const std::string& path) const { return ListFolder(AT_FDCWD, root_ + path); }

bool Sysfs::Has(const std::string& path) const { return IsThere(AT_FDCWD, root_ + path); }

std::string Sysfs::Resolve(const std::string& path) const {
    std::string target = Link(path);
    if (!target.empty())
        return target;
    struct stat status {};
    return lstat((root_ + path).c_str(), &status) == 0 && S_ISDIR(status.st_mode) ? path : std::string();
}

struct Node::Opened {
    ~Opened() {
        if (folder >= 0)
            close(folder);
    }

    bool tried = false;
    int folder = -1;
    bool ueventRead = false;
    std::string uevent;
};

Node::Node(const Sysfs& sysfs, std::string path)
    : sysfs_(&sysfs), path_(std::move(path)), opened_(std::make_shared<Opened>()) {}

int Node::Folder() const {
    if (!opened_->tried) {
        opened_->tried = true;
        opened_->folder = open(sysfs_->Absolute(path_).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    }
    return opened_->folder;
}

std::optional<std::string> Node::Read(const std::string& name, std::size_t limit) const {
    return Folder() < 0 ? std::nullopt : ReadFile(Folder(), name, limit);
}

std::string Node::Name() const { return LastComponent(path_); }

// Asked of the open folder: by its name, the folder above could be that of a device which took the place meanwhile.
Node Node::Parent() const {
    Node parent(*sysfs_, ParentPath(path_));
    parent.opened_->tried = true;
    if (Folder() >= 0 && !parent.path_.empty())
        parent.opened_->folder = openat(Folder(), "..", O_PATH | O_DIRECTORY | O_CLOEXEC);
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
    if (Folder() >= 0)
        child.opened_->folder = openat(Folder(), name.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    return child;
}

std::string Node::LinkName(const std::string& name) const {
    return Folder() < 0 ? std::string() : ReadLinkName(Folder(), name);
}

std::string Node::Link(const std::string& name) const {
    return Folder() < 0 ? std::string() : sysfs_->Below(path_, ReadLink(Folder(), name));
}

bool Node::Has(const std::string& name) const { return Folder() >= 0 && IsThere(Folder(), name); }

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
    return Folder() < 0 ? std::vector<std::string>() : ListFolder(Folder(), name.empty() ? "." : name);
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
