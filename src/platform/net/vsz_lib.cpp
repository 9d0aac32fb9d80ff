#include "net/vsz_lib.h"

#include "base/aside.h"
#include "base/paths.h"
#include "net/crc32.h"
#include "net/engine_process.h"
#include "net/staging_folder.h"

#include <QFileInfo>
#include <algorithm>
#include <atomic>
#include <cstdint>
#include <filesystem>
#include <iterator>
#include <memory>
#include <optional>
#include <system_error>

namespace net {

namespace {

constexpr qsizetype listingLimit = 256 * 1024; // bytes; that of the most entries with the longest names

// Cuts the engine's stream into files by the sizes of the listing, which it follows in order. Where it stands may be
// asked from another thread.
class StreamSplitter {
  public:
    StreamSplitter(const QList<ArchiveEntry>& entries, StagingFolder& staging) : entries_(entries), staging_(staging) {
        failed_ = !Advance();
    }

    bool Take(const char* data, qsizetype size) {
        total_ += size;
        while (size > 0 && !failed_) {
            // More than the listing promised.
            if (index_ >= entries_.size()) {
                failed_ = true;
                break;
            }
            const qsizetype piece = std::min<qint64>(size, entries_.at(index_).size - taken_);
            checksum_ = Crc32(checksum_, data, piece);
            taken_ += piece;
            failed_ = !staging_.Write(data, piece) || (taken_ == entries_.at(index_).size && !Finish());
            data += piece;
            size -= piece;
        }
        return !failed_;
    }

    bool IsWhole() const { return !failed_ && index_ == entries_.size(); }
    int Index() const { return static_cast<int>(std::min<qsizetype>(index_, entries_.size() - 1)); }
    qint64 Total() const { return total_; }

  private:
    // Opens the entry at the index; empty ones are done at once, as no byte of the stream belongs to them.
    bool Advance() {
        for (; index_ < entries_.size(); ++index_) {
            taken_ = 0;
            checksum_ = 0;
            if (!staging_.OpenFile()) {
                return false;
            }
            if (entries_.at(index_).size > 0) {
                return true;
            }
            if (!staging_.CloseFile()) {
                return false;
            }
        }
        return true;
    }

    bool Finish() {
        const bool good = entries_.at(index_).crc == checksum_ && staging_.CloseFile();
        ++index_;
        return good && Advance();
    }

    const QList<ArchiveEntry>& entries_;
    StagingFolder& staging_;
    std::atomic<qsizetype> index_ = 0;
    std::atomic<qint64> total_ = 0;
    qint64 taken_ = 0;
    quint32 checksum_ = 0;
    bool failed_ = false;
};

// A volume that does not tell its free space, or says that it has no blocks at all, is taken to have room: a write that
// fails ends the unpacking all the same.
bool HasRoom(const QString& folder, qint64 size) {
    std::error_code error;
    const std::filesystem::space_info space = std::filesystem::space(QFile::encodeName(folder).toStdString(), error);
    return error || space.capacity == 0 || space.available >= static_cast<std::uintmax_t>(size);
}

QList<ArchiveEntry> FilesOf(const QList<ArchiveEntry>& entries) {
    QList<ArchiveEntry> files;
    std::copy_if(entries.cbegin(), entries.cend(), std::back_inserter(files),
                 [](const ArchiveEntry& entry) { return !entry.isFolder; });
    return files;
}

QList<UnpackedFile> Unpacked(const QList<ArchiveEntry>& files, const StagingFolder& staging) {
    QList<UnpackedFile> unpacked;
    for (const ArchiveEntry& file : files) {
        unpacked.append({file.path, staging.FilePath(unpacked.size())});
    }
    return unpacked;
}

} // namespace

VszLib::VszLib(QObject* parent) : QObject(parent) {}

void VszLib::LoadEngine(const QString&, bool& loaded) {
    engine_ = FindEngine();
    loaded = !engine_.isEmpty();
}

bool VszLib::OpenArchive(const QString& path) {
    entries_.clear();
    archive_ = base::NativePath(path);
    if (engine_.isEmpty() || !QFileInfo(archive_).isFile()) {
        return false;
    }
    QByteArray listing;
    EngineProcess engine(engine_);
    engine.SetStallLimit(stallLimit_);
    const auto keep = [&listing](const char* data, qsizetype size) {
        listing.append(data, size);
        return listing.size() <= listingLimit;
    };
    // An empty password keeps the engine from asking for one.
    const QStringList list = {QStringLiteral("l"),
                              QStringLiteral("-slt"),
                              QStringLiteral("-ba"),
                              QStringLiteral("-t7z"),
                              QStringLiteral("-p"),
                              QStringLiteral("--"),
                              archive_};
    bool listed = false;
    base::RunAside([&](const std::atomic<bool>& stop) { listed = engine.Run(list, keep, stop); },
                   [this] { return Stopped(); });
    const std::optional<QList<ArchiveEntry>> entries = listed ? ParseListing(listing) : std::nullopt;
    entries_ = entries.value_or(QList<ArchiveEntry>());
    return entries.has_value();
}

// Whatever touches the disk is done aside: a busy one holds up even a small file for longer than a click may wait.
bool VszLib::ExtractAll(const QString& folder) {
    const QString target = base::NativePath(folder);
    const QList<ArchiveEntry> files = FilesOf(entries_);
    const std::optional<qint64> total = TotalSize(files);
    if (!AreEntriesAllowed(entries_) || !total) {
        return false;
    }
    std::unique_ptr<StagingFolder> staging;
    bool good = false;
    if (Stage(files, *total, target, staging)) {
        QList<UnpackedFile> unpacked = Unpacked(files, *staging);
        const auto place = [&](const std::atomic<bool>& stop) {
            good = !stop && staging->Sync() && !stop && PutInPlace(unpacked, target, replacer_);
        };
        if (!judge_ || judge_(unpacked)) {
            base::RunAside(place, [this] { return Stopped(); });
        }
    }
    base::RunAside([&staging](const std::atomic<bool>& /*stop*/) { staging.reset(); }, [] { return false; });
    return good;
}

bool VszLib::Stage(const QList<ArchiveEntry>& files, qint64 total, const QString& target,
                   std::unique_ptr<StagingFolder>& staging) {
    std::atomic<StreamSplitter*> current = nullptr;
    std::unique_ptr<StreamSplitter> splitter;
    EngineProcess engine(engine_);
    engine.SetStallLimit(stallLimit_);
    const QStringList extract = {QStringLiteral("x"),
                                 QStringLiteral("-so"),
                                 QStringLiteral("-t7z"),
                                 QStringLiteral("-p"),
                                 QStringLiteral("-bd"),
                                 QStringLiteral("--"),
                                 archive_};
    bool cancelled = false;
    qint64 reported = -1;
    const auto stopped = [&] {
        const StreamSplitter* now = current;
        if (now != nullptr && now->Total() != reported) {
            reported = now->Total();
            Q_EMIT Progress(now->Index(), double(reported), double(total), cancelled);
        }
        return cancelled || Stopped();
    };
    bool streamed = false;
    base::RunAside(
        [&](const std::atomic<bool>& stop) {
            staging = std::make_unique<StagingFolder>(target);
            if (staging->IsReady() && HasRoom(target, total)) {
                splitter = std::make_unique<StreamSplitter>(files, *staging);
                current = splitter.get();
                streamed = engine.Run(
                    extract, [&](const char* data, qsizetype size) { return splitter->Take(data, size); }, stop);
            }
        },
        stopped);
    return streamed && !stopped() && splitter->IsWhole();
}

} // namespace net
