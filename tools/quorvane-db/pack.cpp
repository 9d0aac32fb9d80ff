// quorvane-db pack: turns a database file into the three files that an update server hands out. The version files hold
// the bare version without a line end, since clients take the whole answer as the version.
#include "command.h"
#include "database_file.h"
#include "net/engine_process.h"
#include "options.h"
#include "values/program_values.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <utility>

namespace tool {

namespace {

// Longer ones are taken for an error page by the clients.
constexpr qsizetype databaseVersionLimit = 14;
constexpr qsizetype programVersionLimit = 9;

constexpr char16_t archiveName[] = u"hwids.7z";

bool IsVersion(const QString& version, qsizetype limit) {
    return !version.isEmpty() && version.size() <= limit && version == version.trimmed();
}

// Empty, or what failed.
QString WriteFile(const QString& path, const QString& text) {
    QFile file(path);
    const QByteArray bytes = text.toUtf8();
    const bool written = file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush();
    return written ? QString() : file.errorString();
}

bool Move(const QString& from, const QString& to) {
    return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

// The folders that are made for the output go again if nothing comes to stand in them.
class NewFolders {
  public:
    explicit NewFolders(const QString& folder) {
        for (QFileInfo info(folder); !info.exists(); info = QFileInfo(info.absolutePath())) {
            made_.append(info.absoluteFilePath());
        }
        std::error_code failure;
        std::filesystem::create_directories(QFile::encodeName(folder).toStdString(), failure);
        error_ = failure ? QString::fromLocal8Bit(failure.message()) : QString();
    }
    ~NewFolders() {
        for (const QString& folder : made_) {
            QDir().rmdir(folder);
        }
    }
    NewFolders(const NewFolders&) = delete;
    NewFolders& operator=(const NewFolders&) = delete;

    // Why the folder is not there; empty where it is.
    const QString& Error() const { return error_; }

  private:
    QStringList made_;
    QString error_;
};

// The archive holds the file under the name that the program reads, whatever it is called here: a copy in the work
// folder bears it. (What comes from the engine's standard input can be marked as a pipe, which clients refuse.) Empty,
// or what failed.
QString MakeArchive(const QString& databaseFile, const QString& workFolder, const QString& archive) {
    const QString named = workFolder + QStringLiteral("/hwids.mdb");
    const QString error = CopyFile(databaseFile, named);
    if (!error.isEmpty()) {
        return error;
    }
    QFile::setPermissions(named, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther);
    QProcess engine;
    engine.setStandardInputFile(QProcess::nullDevice());
    engine.setStandardOutputFile(QProcess::nullDevice());
    engine.start(net::FindEngine(), {QStringLiteral("a"), QStringLiteral("-t7z"), QStringLiteral("-mx=9"),
                                     QStringLiteral("-bd"), QStringLiteral("--"), archive, named});
    const bool made =
        engine.waitForFinished(-1) && engine.exitStatus() == QProcess::NormalExit && engine.exitCode() == 0;
    return made ? QString() : QStringLiteral("7-Zip could not make the archive");
}

// Writes the three files; the version of the database comes last, so that a client that sees it finds the new archive.
// All are whole before the first takes its place. Empty, or what went wrong.
QString Publish(const QString& databaseFile, const QString& folder, const QString& version,
                const QString& programVersion) {
    const NewFolders made(folder);
    if (!made.Error().isEmpty()) {
        return QStringLiteral("%1: %2").arg(folder, made.Error());
    }
    // On the file system of the target, so that the files move there in one step.
    const QTemporaryDir work(folder + QStringLiteral("/.pack-XXXXXX"));
    if (!work.isValid()) {
        return QStringLiteral("%1: %2").arg(folder, work.errorString());
    }
    const QStringList names = {QString::fromUtf16(archiveName), QStringLiteral("update.htm"),
                               QStringLiteral("database_v1.htm")};
    QString error = MakeArchive(databaseFile, work.path(), work.filePath(names[0]));
    for (const auto& [name, text] : {std::pair(names[1], programVersion), std::pair(names[2], version)}) {
        error = error.isEmpty() ? WriteFile(work.filePath(name), text) : error;
    }
    if (!error.isEmpty()) {
        return QStringLiteral("%1: %2").arg(folder, error);
    }
    for (const QString& name : names) {
        if (!Move(work.filePath(name), folder + QLatin1Char('/') + name)) {
            return QStringLiteral("%1/%2: %3").arg(folder, name, QString::fromLocal8Bit(std::strerror(errno)));
        }
    }
    return {};
}

} // namespace

int Pack(const QStringList& arguments) {
    Options options({QStringLiteral("output"), QStringLiteral("program-version")}, {});
    const QString wrong = options.Read(arguments);
    const QString output = options.Value(QStringLiteral("output"));
    if (!wrong.isEmpty() || options.Arguments().size() != 1 || output.isEmpty()) {
        return RefuseUsage(wrong.isEmpty() ? QStringLiteral("pack needs one DATABASE and --output DIR") : wrong);
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
    error = Publish(path, output, version, programVersion);
    return error.isEmpty() ? int(Done) : Fail(error);
}

} // namespace tool
