#include "net/archive_listing.h"

#include <QSet>
#include <QStringDecoder>
#include <QStringList>
#include <algorithm>
#include <array>
#include <limits>

namespace net {

namespace {

constexpr qsizetype entryLimit = 64;
constexpr qsizetype depthLimit = 4; // components of a path
// The bytes that a file system takes in one component, with room for a suffix.
constexpr qsizetype componentLimit = 200;

struct Kind {
    const char16_t* Ending;
    qint64 Largest; // bytes
};
constexpr std::array<Kind, 4> kinds = {
    {{u".mdb", qint64(48) << 20}, {u".txt", 1 << 20}, {u".md", 1 << 20}, {u".ini", 64 << 10}}};
constexpr qint64 largestTotal = qint64(56) << 20; // bytes
constexpr char16_t presetsFolder[] = u"color_presets/";

// A block of "Key = value" lines, as far as they matter here.
struct Block {
    std::optional<QString> path;
    std::optional<QString> size;
    QString attributes;
    QString crc;
    bool isFolder = false;
    bool isSpecial = false;
};

bool ReadLine(const QString& line, Block& block) {
    const qsizetype equals = line.indexOf(QStringLiteral(" ="));
    if (equals < 1) {
        return false;
    }
    const QString key = line.first(equals);
    const QString value = line.sliced(std::min(equals + 3, line.size()));
    if (key == QStringLiteral("Path")) {
        // A second path in one block is a name that tries to forge the listing.
        const bool first = !block.path;
        block.path = value;
        return first;
    }
    if (key == QStringLiteral("Size")) {
        const bool first = !block.size;
        block.size = value;
        return first;
    }
    if (key == QStringLiteral("Attributes")) {
        block.attributes = value;
    } else if (key == QStringLiteral("CRC")) {
        block.crc = value;
    } else if (key == QStringLiteral("Folder")) {
        block.isFolder = block.isFolder || value == QStringLiteral("+");
    } else if (key == QStringLiteral("Symbolic Link") || key == QStringLiteral("Hard Link") ||
               key == QStringLiteral("Alternate Stream") || key == QStringLiteral("Anti")) {
        block.isSpecial = block.isSpecial || (!value.isEmpty() && value != QStringLiteral("-"));
    }
    return true;
}

// Attributes read "A -rw-r--r--" or "D drwxr-xr-x": the platform's letters, then the other platform's mode.
bool IsPlain(const QString& attributes) {
    const QStringList parts = attributes.split(QChar(u' '), Qt::SkipEmptyParts);
    if (parts.isEmpty()) {
        return true;
    }
    const bool reparsePoint = parts.first().contains(QChar(u'L'));
    const QChar type = parts.size() > 1 ? parts.at(1).at(0) : QChar(u'-');
    return !reparsePoint && (type == QChar(u'-') || type == QChar(u'd'));
}

std::optional<ArchiveEntry> MakeEntry(const Block& block) {
    ArchiveEntry entry;
    if (!block.path || block.path->isEmpty()) {
        return std::nullopt;
    }
    entry.path = *block.path;
    const QString mode = block.attributes.section(QChar(u' '), 0, 0, QString::SectionSkipEmpty);
    entry.isFolder = block.isFolder || mode.contains(QChar(u'D'));
    entry.isPlain = !block.isSpecial && IsPlain(block.attributes);
    if (!entry.isFolder || (block.size && !block.size->isEmpty())) {
        bool isNumber = false;
        entry.size = block.size.value_or(QString()).toLongLong(&isNumber);
        if (!isNumber || entry.size < 0 || (entry.isFolder && entry.size != 0)) {
            return std::nullopt;
        }
    }
    if (!block.crc.isEmpty()) {
        bool isNumber = false;
        entry.crc = block.crc.toUInt(&isNumber, 16);
        if (!isNumber) {
            return std::nullopt;
        }
    }
    return entry;
}

bool IsComponent(const QString& component) {
    const bool clean = std::none_of(component.cbegin(), component.cend(), [](QChar c) {
        return c < QChar(u' ') || c == QChar(0x7F) || c == QChar(u'\\') || c == QChar(u':') ||
               c == QChar::ReplacementCharacter;
    });
    return clean && !component.isEmpty() && component != QStringLiteral(".") && component != QStringLiteral("..") &&
           component.toUtf8().size() <= componentLimit;
}

bool IsWanted(const QString& foldedPath, qint64 size) {
    const auto* kind = std::find_if(kinds.begin(), kinds.end(), [&foldedPath](const Kind& candidate) {
        const QString ending = QString::fromUtf16(candidate.Ending);
        return foldedPath.endsWith(ending) && foldedPath.size() > ending.size();
    });
    if (kind == kinds.end() || size > kind->Largest) {
        return false;
    }
    return !foldedPath.endsWith(QStringLiteral(".ini")) ||
           (foldedPath.startsWith(presetsFolder) && !foldedPath.endsWith(QStringLiteral("/settings.ini")));
}

QString Folded(const QString& path) { return path.normalized(QString::NormalizationForm_C).toCaseFolded(); }

} // namespace

std::optional<QList<ArchiveEntry>> ParseListing(const QByteArray& listing) {
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder(listing);
    if (decoder.hasError()) {
        return std::nullopt;
    }
    QList<ArchiveEntry> entries;
    Block block;
    bool open = false;
    for (const QString& line : (text + QStringLiteral("\n\n")).split(QChar(u'\n'))) {
        if (!line.isEmpty()) {
            open = true;
            if (!ReadLine(line, block)) {
                return std::nullopt;
            }
            continue;
        }
        if (!open) {
            continue;
        }
        const std::optional<ArchiveEntry> entry = MakeEntry(block);
        if (!entry || entries.size() >= entryLimit) {
            return std::nullopt;
        }
        entries.append(*entry);
        block = Block();
        open = false;
    }
    return entries;
}

bool AreEntriesAllowed(const QList<ArchiveEntry>& entries) {
    QSet<QString> files;
    QSet<QString> folders;
    for (const ArchiveEntry& entry : entries) {
        const QStringList components = entry.path.split(QChar(u'/'));
        if (!entry.isPlain || components.size() > depthLimit ||
            !std::all_of(components.cbegin(), components.cend(), IsComponent)) {
            return false;
        }
        // Only now, as the time that folding takes grows with the square of a run of accents.
        const QString folded = Folded(entry.path);
        if (entry.isFolder) {
            folders.insert(folded);
            continue;
        }
        if (!IsWanted(folded, entry.size) || files.contains(folded) || (entry.size > 0 && !entry.crc)) {
            return false;
        }
        files.insert(folded);
        for (qsizetype slash = folded.indexOf(QChar(u'/')); slash > 0; slash = folded.indexOf(QChar(u'/'), slash + 1)) {
            folders.insert(folded.first(slash));
        }
    }
    // A name cannot be a file and a folder at once.
    const std::optional<qint64> total = TotalSize(entries);
    return !files.isEmpty() && !files.intersects(folders) && total && *total <= largestTotal;
}

std::optional<qint64> TotalSize(const QList<ArchiveEntry>& entries) {
    qint64 total = 0;
    for (const ArchiveEntry& entry : entries) {
        if (entry.size > std::numeric_limits<qint64>::max() - total) {
            return std::nullopt;
        }
        total += entry.size;
    }
    return total;
}

} // namespace net
