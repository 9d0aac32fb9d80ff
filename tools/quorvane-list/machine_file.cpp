#include "machine_file.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <algorithm>
#include <archive.h>
#include <archive_entry.h>
#include <cerrno>
#include <cstring>
#include <memory>

namespace list_tool {

namespace {

constexpr char FactsName[] = "machine.txt";
constexpr char TreeName[] = "sys";

// Many times what the largest server needs.
constexpr qint64 LargestFile = 16LL * 1024 * 1024;
constexpr la_int64_t LargestContents = 64LL * 1024 * 1024;
constexpr la_int64_t LargestFacts = 4LL * 1024 * 1024;
constexpr la_int64_t LargestAttribute = 64LL * 1024;
constexpr std::size_t MostEntries = 200000;

using Archive = std::unique_ptr<archive, int (*)(archive*)>;
using Entry = std::unique_ptr<archive_entry, void (*)(archive_entry*)>;

// --- Writing

la_ssize_t Append(archive*, void* bytes, const void* block, size_t size) {
    static_cast<std::string*>(bytes)->append(static_cast<const char*>(block), size);
    return la_ssize_t(size);
}

bool WriteEntry(archive* packed, const std::string& name, const pnp::SavedTree::Entry& entry) {
    using Kind = pnp::SavedTree::Kind;
    const Entry head(archive_entry_new(), archive_entry_free);
    archive_entry_copy_pathname(head.get(), name.c_str());
    // The file says nothing about who saved it, nor when.
    archive_entry_set_mtime(head.get(), 0, 0);
    const bool file = entry.kind == Kind::File;
    archive_entry_set_filetype(head.get(), file ? AE_IFREG : entry.kind == Kind::Link ? AE_IFLNK : AE_IFDIR);
    archive_entry_set_perm(head.get(), entry.kind == Kind::Folder ? 0755 : 0644);
    archive_entry_set_size(head.get(), file ? la_int64_t(entry.bytes.size()) : 0);
    if (entry.kind == Kind::Link)
        archive_entry_copy_symlink(head.get(), entry.bytes.c_str());
    return archive_write_header(packed, head.get()) == ARCHIVE_OK &&
           (!file ||
            archive_write_data(packed, entry.bytes.data(), entry.bytes.size()) == la_ssize_t(entry.bytes.size()));
}

// Empty if the archive could not be made.
std::string PackMachine(const pnp::SavedMachine& machine) {
    std::string bytes;
    const Archive packed(archive_write_new(), archive_write_free);
    archive_write_set_bytes_in_last_block(packed.get(), 1);
    // Long names as bytes, whatever the locale.
    bool good = archive_write_add_filter_xz(packed.get()) == ARCHIVE_OK &&
                archive_write_set_format_gnutar(packed.get()) == ARCHIVE_OK &&
                archive_write_open(packed.get(), &bytes, nullptr, Append, nullptr) == ARCHIVE_OK;
    pnp::SavedTree::Entry facts;
    facts.kind = pnp::SavedTree::Kind::File;
    facts.bytes = FactsText(machine.facts);
    good = good && WriteEntry(packed.get(), FactsName, facts) && WriteEntry(packed.get(), TreeName, {});
    machine.tree->ForEach([&](const std::string& path, const pnp::SavedTree::Entry& entry) {
        good = good && WriteEntry(packed.get(), TreeName + path, entry);
    });
    good = good && archive_write_close(packed.get()) == ARCHIVE_OK;
    return good ? bytes : std::string();
}

// --- Reading

// Reads one archive into one tree, entry by entry, and stops at the first that a saved machine cannot have.
class Unpacking {
  public:
    explicit Unpacking(archive* packed) : packed_(packed) {}

    std::string Run(pnp::SavedMachine& machine) {
        const auto tree = std::make_shared<pnp::SavedTree>();
        archive_entry* entry = nullptr;
        int status = ARCHIVE_OK;
        while (complaint_.empty() && (status = archive_read_next_header(packed_, &entry)) != ARCHIVE_EOF) {
            if (status != ARCHIVE_OK)
                return "it is cut short or damaged";
            if (++entries_ > MostEntries || archive_filter_bytes(packed_, 0) > LargestContents)
                return "it holds far more than a machine has";
            Take(entry, *tree, machine.facts);
        }
        machine.tree = tree;
        return !complaint_.empty() ? complaint_ : entries_ == 0 ? "it is no saved machine" : std::string();
    }

  private:
    void Take(archive_entry* entry, pnp::SavedTree& tree, pnp::MachineFacts& facts) {
        const char* const pathname = archive_entry_pathname(entry);
        std::string name = pathname == nullptr ? std::string() : pathname;
        while (!name.empty() && name.back() == '/')
            name.pop_back();
        // The facts tell the version of the form, so they stand in front.
        if ((entries_ == 1) != (name == FactsName)) {
            complaint_ = entries_ == 1 ? "it is no saved machine" : "it holds its facts twice";
        } else if (entries_ == 1) {
            std::string text;
            if (archive_entry_filetype(entry) == AE_IFREG && ReadContents(entry, LargestFacts, text))
                ParseFacts(text, facts, complaint_);
            else
                Damaged();
        } else {
            TakePart(entry, name, tree);
        }
    }

    void TakePart(archive_entry* entry, const std::string& name, pnp::SavedTree& tree) {
        const std::string start = std::string(TreeName) + "/";
        const auto kind = archive_entry_filetype(entry);
        if (name == TreeName && kind == AE_IFDIR)
            return;
        const std::string path = name.starts_with(start) ? name.substr(start.size() - 1) : std::string();
        const char* const target = archive_entry_symlink(entry);
        std::string contents;
        bool taken = !path.empty();
        if (kind == AE_IFREG && taken) {
            if (!ReadContents(entry, LargestAttribute, contents))
                return Damaged();
            taken = tree.AddFile(path, contents);
        } else if (kind == AE_IFLNK) {
            taken = taken && target != nullptr && tree.AddLink(path, target);
        } else {
            // A hard link has no kind.
            taken = taken && kind == AE_IFDIR && tree.AddFolder(path);
        }
        if (!taken)
            complaint_ = "it holds what no machine has (entry " + std::to_string(entries_) + ")";
    }

    // False where there is more than `most`, or less than the head says.
    bool ReadContents(archive_entry* entry, la_int64_t most, std::string& contents) {
        if (archive_entry_size_is_set(entry) == 0 || archive_entry_size(entry) > most ||
            archive_entry_sparse_count(entry) > 0)
            return false;
        contents.resize(std::size_t(archive_entry_size(entry)));
        std::size_t used = 0;
        while (used < contents.size()) {
            const la_ssize_t count = archive_read_data(packed_, contents.data() + used, contents.size() - used);
            if (count <= 0)
                return false;
            used += std::size_t(count);
        }
        return true;
    }

    void Damaged() { complaint_ = "it is cut short or damaged"; }

    archive* packed_;
    std::size_t entries_ = 0;
    std::string complaint_;
};

std::string Reason(const QFileDevice& file, int number) {
    return number == 0 ? file.errorString().toStdString() : std::string(std::strerror(number));
}

} // namespace

std::string WriteMachine(const pnp::SavedMachine& machine, const std::string& path) {
    const std::string bytes = PackMachine(machine);
    if (bytes.empty())
        return path + ": the machine cannot be packed";
    // A device or a pipe is written to; only a file is replaced.
    const QString name = QFile::decodeName(path.c_str());
    const QFileInfo info(name);
    QSaveFile saved(name);
    QFile direct(name);
    const bool special = info.exists() && !info.isFile() && !info.isDir();
    QFileDevice& file = special ? static_cast<QFileDevice&>(direct) : saved;
    // Written out first: committing a file whose last bytes found no room would succeed.
    errno = 0;
    const bool written = file.open(QIODevice::WriteOnly) &&
                         file.write(bytes.data(), qint64(bytes.size())) == qint64(bytes.size()) && file.flush();
    const int reason = errno;
    return written && (special || saved.commit()) ? std::string() : path + ": " + Reason(file, written ? 0 : reason);
}

std::string UnpackMachine(const std::string& bytes, pnp::SavedMachine& machine) {
    const Archive packed(archive_read_new(), archive_read_free);
    if (archive_read_support_filter_xz(packed.get()) != ARCHIVE_OK ||
        archive_read_support_format_tar(packed.get()) != ARCHIVE_OK ||
        archive_read_open_memory(packed.get(), bytes.data(), bytes.size()) != ARCHIVE_OK)
        return "it is no saved machine";
    return Unpacking(packed.get()).Run(machine);
}

std::string ReadMachine(const std::string& path, pnp::SavedMachine& machine) {
    QFile file(QFile::decodeName(path.c_str()));
    if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly))
        return path + ": it cannot be read";
    // One byte more than is allowed, so that a file that grows meanwhile is told from one that fits.
    const QByteArray bytes = file.read(LargestFile + 1);
    const std::string complaint = bytes.size() > LargestFile ? "it is too large for a saved machine"
                                                             : UnpackMachine(bytes.toStdString(), machine);
    return complaint.empty() ? complaint : path + ": " + complaint;
}

} // namespace list_tool
