// quorvane-db pack: turns a database file into the three files that an update server hands out. The version files hold
// the bare version without a line end, since clients take the whole answer as the version.
#include "command.h"
#include "database_file.h"
#include "net/engine_process.h"
#include "options.h"
#include "values/program_values.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QSaveFile>
#include <QTemporaryDir>
#include <cstdio>

namespace tool {

namespace {

// Longer ones are taken for an error page by the clients.
constexpr qsizetype databaseVersionLimit = 14;
constexpr qsizetype programVersionLimit = 9;

constexpr char16_t archiveName[] = u"hwids.7z";

bool IsVersion(const QString& version, qsizetype limit) {
    return !version.isEmpty() && version.size() <= limit && version == version.trimmed();
}

bool WriteFile(const QString& path, const QString& text) {
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(text.toUtf8()) == text.size() && file.commit();
}

// The archive holds the file under the name that the program reads, whatever it is called here: a copy in the work
// folder bears it. (What comes from the engine's standard input can be marked as a pipe, which clients refuse.)
bool MakeArchive(const QString& databaseFile, const QString& workFolder, const QString& archive) {
    const QString named = workFolder + QStringLiteral("/hwids.mdb");
    if (!QFile::copy(databaseFile, named)) {
        return false;
    }
    QFile::setPermissions(named, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther);
    QProcess engine;
    engine.setStandardInputFile(QProcess::nullDevice());
    engine.setStandardOutputFile(QProcess::nullDevice());
    engine.start(net::FindEngine(), {QStringLiteral("a"), QStringLiteral("-t7z"), QStringLiteral("-mx=9"),
                                     QStringLiteral("-bd"), QStringLiteral("--"), archive, named});
    return engine.waitForFinished(-1) && engine.exitStatus() == QProcess::NormalExit && engine.exitCode() == 0;
}

// Writes the three files; the version of the database comes last, so that a client that sees it finds the new archive.
// Nothing is replaced where the archive cannot be made. Empty, or what went wrong.
QString Publish(const QString& databaseFile, const QString& folder, const QString& version,
                const QString& programVersion) {
    // On the file system of the target, so that the archive moves there in one step.
    QDir().mkpath(folder);
    const QTemporaryDir work(folder + QStringLiteral("/.pack-XXXXXX"));
    const QString packed = work.filePath(QString::fromUtf16(archiveName));
    const QString archive = folder + QChar(u'/') + QString::fromUtf16(archiveName);
    if (!work.isValid() || !MakeArchive(databaseFile, work.path(), packed)) {
        return QStringLiteral("the archive could not be made in %1").arg(folder);
    }
    if (std::rename(QFile::encodeName(packed).constData(), QFile::encodeName(archive).constData()) != 0 ||
        !WriteFile(folder + QStringLiteral("/update.htm"), programVersion) ||
        !WriteFile(folder + QStringLiteral("/database_v1.htm"), version)) {
        return QStringLiteral("%1 cannot be written").arg(folder);
    }
    return {};
}

} // namespace

int Pack(const QStringList& arguments) {
    Options options({QStringLiteral("output"), QStringLiteral("program-version")}, {});
    const QString wrong = options.Read(arguments);
    if (!wrong.isEmpty() || options.Arguments().size() != 1 || !options.Has(QStringLiteral("output"))) {
        return RefuseUsage(wrong.isEmpty() ? QStringLiteral("pack needs one FILE and --output DIR") : wrong);
    }
    const QString path = options.Arguments().first();
    QString error;
    data::ConnectionPtr connection = OpenDatabase(path, error);
    if (!connection) {
        return Fail(error);
    }
    const QString version = ReadVersion(connection);
    connection.reset();
    if (!IsVersion(version, databaseVersionLimit)) {
        return Fail(QStringLiteral("%1 has no usable version: \"%2\"").arg(path, Legible(version)));
    }
    if (QFileInfo::exists(path + QStringLiteral("-journal"))) {
        return Fail(QStringLiteral("%1 is being written; close what uses it first").arg(path));
    }
    const QString programVersion = options.Value(QStringLiteral("program-version"), values::BuiltVersion());
    if (!IsVersion(programVersion, programVersionLimit)) {
        return Fail(QStringLiteral("no usable program version: \"%1\"").arg(Legible(programVersion)));
    }
    if (net::FindEngine().isEmpty()) {
        return Fail(QStringLiteral("7-Zip is not installed"));
    }
    error = Publish(path, options.Value(QStringLiteral("output")), version, programVersion);
    return error.isEmpty() ? int(Done) : Fail(error);
}

} // namespace tool
