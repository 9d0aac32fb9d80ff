// The engine's listing of an archive and the rules that let its entries in. Whatever the listing says, no name that
// comes through leads out of the folder or to a file that is not data.
#include "net/archive_listing.h"
#include "fuzz_support.h"

#include <QDir>
#include <QSet>
#include <QStringList>

namespace {

void CheckAllowed(const QList<net::ArchiveEntry>& entries) {
    const QString folder = QStringLiteral("/target");
    QSet<QString> names;
    bool anyFile = false;
    for (const net::ArchiveEntry& entry : entries) {
        const QString path = folder + QLatin1Char('/') + entry.path;
        fuzz::Require(QDir::cleanPath(path) == path && path.startsWith(folder + QLatin1Char('/')),
                      "a name stays below");
        fuzz::Require(entry.isPlain && !entry.path.contains(u'\\') && !entry.path.contains(u'\0'), "a name is plain");
        if (entry.isFolder)
            continue;
        anyFile = true;
        const QString lower = entry.path.toLower();
        const bool preset =
            lower.startsWith(QStringLiteral("color_presets/")) && lower.endsWith(QStringLiteral(".ini"));
        fuzz::Require(preset || lower.endsWith(QStringLiteral(".mdb")) || lower.endsWith(QStringLiteral(".txt")) ||
                          lower.endsWith(QStringLiteral(".md")),
                      "a file is data");
        fuzz::Require(!lower.endsWith(QStringLiteral("/settings.ini")) && lower != QStringLiteral("settings.ini"),
                      "settings stay");
        fuzz::Require(!names.contains(lower), "no two names are one but for case");
        names.insert(lower);
        fuzz::Require(entry.size == 0 || entry.crc.has_value(), "each file can be checked");
    }
    fuzz::Require(anyFile, "an archive holds a file");
}

void CheckListing(const QByteArray& listing) {
    const std::optional<QList<net::ArchiveEntry>> entries = net::ParseListing(listing);
    if (!entries)
        return;
    fuzz::Require(entries->size() <= 64, "some dozens of entries");
    for (const net::ArchiveEntry& entry : *entries)
        fuzz::Require(entry.size >= 0 && !entry.path.isEmpty(), "an entry has a name and a size");
    if (const std::optional<qint64> total = net::TotalSize(*entries))
        fuzz::Require(*total >= 0, "the sum stays in range");
    if (net::AreEntriesAllowed(*entries))
        CheckAllowed(*entries);
}

// A listing as the engine prints it, of names out of the input.
void CheckMade(fuzz::Reader reader) {
    QByteArray listing;
    QStringList paths;
    while (!reader.AtEnd() && paths.size() < 8) {
        QByteArray path = reader.Piece();
        path.replace('\n', '_');
        constexpr const char* endings[] = {"", ".mdb", ".txt", ".ini", "/x.md"};
        path += endings[reader.Number(0, 4)];
        const int size = reader.Byte();
        listing += "Path = " + path + "\nSize = " + QByteArray::number(size) +
                   "\nAttributes = A -rw-r--r--\nCRC = " + QByteArray::number(reader.Long(), 16) + "\n\n";
        paths.append(QString::fromUtf8(path));
    }
    CheckListing(listing);
    if (const auto entries = net::ParseListing(listing)) {
        fuzz::Require(entries->size() == paths.size(), "as many entries as were listed");
        for (qsizetype i = 0; i < paths.size(); ++i)
            fuzz::Require(entries->at(i).path == paths.at(i), "names come out as they went in");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    CheckListing(QByteArray(reinterpret_cast<const char*>(data), qsizetype(size)));
    CheckMade(fuzz::Reader(data, size));
    return 0;
}
