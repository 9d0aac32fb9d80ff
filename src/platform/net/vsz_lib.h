// The archive library under the names that the update flow calls: opens a .7z archive and unpacks it whole into a
// folder. The work is done by the system's 7-Zip as a child process; this side checks names, sizes and checksums, and
// nothing in the target folder changes before the whole archive has proved good. Owned by whoever unpacks, one archive
// at a time.
#pragma once

#include "net/archive_listing.h"
#include "net/unpacked_files.h"

#include <QObject>
#include <QString>
#include <functional>
#include <memory>

namespace net {

class StagingFolder;

class VszLib : public QObject {
    Q_OBJECT

  public:
    explicit VszLib(QObject* parent = nullptr);

    // `path` names the engine as the program knows it; the file that runs is the system's own, never one beside the
    // program. `loaded` tells whether there is one.
    void LoadEngine(const QString& path, bool& loaded);

    // Reads the list of contents. False where the file is missing, no 7z archive, damaged or encrypted with its names.
    bool OpenArchive(const QString& path);

    // Unpacks everything into `folder`, dispatching events meanwhile. False leaves the folder as it was: an entry that
    // is refused, a wrong checksum, too little space, an engine that failed, a wait that was stopped.
    bool ExtractAll(const QString& folder);

    // Asked while the engine works; true kills it.
    void SetStop(std::function<bool()> stop) { stop_ = std::move(stop); }
    // Tells whether the unpacked files may come into the folder, before the first is put in place; what it takes off
    // the list stays out. Without one all may.
    void SetJudge(std::function<bool(QList<UnpackedFile>& files)> judge) { judge_ = std::move(judge); }
    // For entries that end in ".mdb", in the place of a rename; called aside, from a thread of the library's own.
    void SetDatabaseReplacer(Replacer replacer) { replacer_ = std::move(replacer); }
    // Milliseconds without output after which the engine is given up; 60,000 by default.
    void SetStallLimit(int milliseconds) { stallLimit_ = milliseconds; }

  Q_SIGNALS:
    // The file being unpacked, counted from 0; the bytes so far and in all. `Cancel` set to true ends the unpacking.
    void Progress(int FileIdx, double Current, double Total, bool& Cancel);

  private:
    bool Stopped() const { return stop_ && stop_(); }
    // Unpacks into a folder made below `target`; false where that fails or was stopped.
    bool Stage(const QList<ArchiveEntry>& files, qint64 total, const QString& target,
               std::unique_ptr<StagingFolder>& staging);

    QString engine_;
    QString archive_;
    QList<ArchiveEntry> entries_;
    std::function<bool()> stop_;
    std::function<bool(QList<UnpackedFile>&)> judge_;
    Replacer replacer_;
    int stallLimit_ = 60'000;
};

} // namespace net
