// Archives with their contents, through the real engine: a good one with bytes turned, its checksums mended now and
// then. All of its files come into the folder, or none, and only those that may.
#include "base/yield.h"
#include "data/file_judge.h"
#include "database/database_builder.h"
#include "database/schema.h"
#include "fuzz_support.h"
#include "net/crc32.h"
#include "net/engine_process.h"
#include "net/vsz_lib.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QProcess>
#include <QtEndian>

namespace {

QByteArray ReadFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// One whose contents and list stand in it as they are, so that turned bytes reach both.
const QByteArray& GoodArchive() {
    static const QByteArray bytes = [] {
        fuzz::NeedApplication();
        const QString folder = fuzz::Folder() + QStringLiteral("/in");
        QDir().mkpath(folder + QStringLiteral("/color_presets"));
        database::DatabaseBuilder builder;
        builder.Add(QStringLiteral("PCI\\X"), QStringLiteral("Name"), QStringLiteral("Maker"));
        QString error;
        fuzz::Require(builder.Write(folder + QStringLiteral("/hwids.mdb"), QStringLiteral("1.0.0"), &error),
                      "a database is made");
        for (const char* name : {"/read.txt", "/color_presets/Night.ini"}) {
            QFile file(folder + QLatin1String(name));
            fuzz::Require(file.open(QIODevice::WriteOnly) && file.write("text") == 4, "a file is written");
        }
        QProcess packer;
        packer.setWorkingDirectory(folder);
        packer.start(net::FindEngine(),
                     {QStringLiteral("a"), QStringLiteral("-bd"), QStringLiteral("-mhc=off"),
                      QStringLiteral("-m0=copy"), QStringLiteral("../good.7z"), QStringLiteral(".")});
        fuzz::Require(packer.waitForFinished() && packer.exitCode() == 0, "an archive is made");
        return ReadFile(fuzz::Folder() + QStringLiteral("/good.7z"));
    }();
    return bytes;
}

// The checksums of the list and of the head, so that what was turned in the list is read.
void Mend(QByteArray& archive) {
    const auto offset = qFromLittleEndian<quint64>(archive.constData() + 12);
    const auto size = qFromLittleEndian<quint64>(archive.constData() + 20);
    const auto whole = quint64(archive.size());
    if (offset < whole && size < whole && 32 + offset + size <= whole)
        qToLittleEndian(net::Crc32(0, archive.constData() + 32 + offset, qsizetype(size)), archive.data() + 28);
    qToLittleEndian(net::Crc32(0, archive.constData() + 12, 20), archive.data() + 8);
}

QStringList FilesIn(const QString& folder) {
    QStringList names;
    for (QDirIterator files(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                            QDirIterator::Subdirectories);
         files.hasNext();)
        names.append(files.next().mid(folder.size() + 1));
    return names;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Reader reader(data, size);
    QByteArray archive = GoodArchive();
    const bool inList = reader.Byte() % 2 == 0;
    const auto list = 32 + qFromLittleEndian<quint64>(archive.constData() + 12);
    while (!reader.AtEnd()) {
        const auto at = qsizetype((inList ? list + reader.Word() % (quint64(archive.size()) - list)
                                          : quint64(reader.Long() % quint32(archive.size()))));
        archive[at] = char(reader.Byte());
    }
    Mend(archive);
    const QString out = fuzz::Folder() + QStringLiteral("/out");
    QDir(out).removeRecursively();
    QDir().mkpath(out);
    const QString path = fuzz::WriteFile(QStringLiteral("hwids.7z"), archive);
    net::VszLib zip;
    bool loaded = false;
    zip.LoadEngine({}, loaded);
    zip.SetStallLimit(5000);
    zip.SetJudge([](QList<net::UnpackedFile>& files) {
        for (const net::UnpackedFile& file : files)
            if (IsDatabase(file) && !data::JudgeDatabaseFile(file.Path, database::Rules()).isEmpty())
                return false;
        return true;
    });
    const bool unpacked = zip.OpenArchive(path) && zip.ExtractAll(out);
    const QStringList files = FilesIn(out);
    fuzz::Require(unpacked != files.isEmpty(), "all or nothing");
    for (const QString& name : files) {
        const QString lower = name.toLower();
        const bool isFolder = QFileInfo(out + u'/' + name).isDir();
        fuzz::Require(isFolder || lower.endsWith(QStringLiteral(".mdb")) || lower.endsWith(QStringLiteral(".txt")) ||
                          lower.endsWith(QStringLiteral(".md")) || lower.startsWith(QStringLiteral("color_presets/")),
                      "only what may come in");
    }
    return 0;
}
