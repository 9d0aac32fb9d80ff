// What an archive says it holds, read from the engine's technical listing, and the rules by which its entries are let
// in. Pure functions over hostile text: every name that comes through is a relative path of ordinary components.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <optional>

namespace net {

struct ArchiveEntry {
    QString path; // with "/" between the components
    qint64 size = 0;
    bool isFolder = false;
    bool isPlain = true;        // neither link, device, alternate stream nor a mark that deletes
    std::optional<quint32> crc; // missing for empty files
};

// The entries in the order of the listing, which is the order of the engine's stream. Nothing where a line or a number
// is not as it should be, or where there are more entries than an archive may have.
std::optional<QList<ArchiveEntry>> ParseListing(const QByteArray& listing);

// Whether the archive as a whole may be unpacked into the program's folder: databases, texts (.txt, .md) and colour
// presets (.ini below color_presets), each of a size that its kind may have, no two names that differ in nothing but
// case, no name that leads out. False for an archive without files.
bool AreEntriesAllowed(const QList<ArchiveEntry>& entries);

// The sum of the sizes; nothing where it would not fit 63 bits.
std::optional<qint64> TotalSize(const QList<ArchiveEntry>& entries);

} // namespace net
