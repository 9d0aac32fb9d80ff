// quorvane-db pack: turns a database file into the three files that an update server hands out. The version files hold
// the bare version without a line end, since clients take the whole answer as the version. Others may write to the
// database and pack into the folder at the same time.
#include "command.h"
#include "data/file_judge.h"
#include "data/replace_file.h"
#include "database/schema.h"
#include "database_file.h"
#include "net/engine_process.h"
#include "options.h"
#include "signing/key_file.h"
#include "values/program_values.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <unistd.h>
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

bool Sync(const QString& path) {
    const int file = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    const bool synced = file >= 0 && ::fsync(file) == 0;
    ::close(file);
    return synced;
}

// On the disk with its new name before the next one follows.
bool Move(const QString& from, const QString& folder, const QString& name) {
    const QString to = folder + QLatin1Char('/') + name;
    return Sync(from) && std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0 &&
           Sync(folder);
}

constexpr char workFolders[] = ".pack-";

// One at a time packs into a folder, from its copy of the database to the last file: otherwise the archive of one could
// come to stand beside the version of another, or an older one behind a newer. What one left that was killed goes.
class FolderLock {
  public:
    explicit FolderLock(const QString& folder)
        : folder_(::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
        if (folder_ < 0 || ::flock(folder_, LOCK_EX) != 0) {
            return;
        }
        held_ = true;
        for (const QString& name : QDir(folder).entryList({QLatin1String(workFolders) + QStringLiteral("??????")},
                                                          QDir::Dirs | QDir::Hidden | QDir::NoSymLinks)) {
            QDir(folder + QLatin1Char('/') + name).removeRecursively();
        }
    }
    ~FolderLock() { ::close(folder_); }
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

    bool IsHeld() const { return held_; }

  private:
    int folder_;
    bool held_ = false;
};

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

// A copy of one state of the database, whole and with a version that clients take. Empty, or what failed.
QString CopyToPublish(const QString& databaseFile, const QString& copy, QString& version) {
    QString error;
    if (!data::CopyDatabaseFile(databaseFile, copy, &error)) {
        return error;
    }
    // By the measure of those who will open it.
    error = data::JudgeDatabaseFile(copy, database::Rules(), nullptr, data::Soundness::Indexes);
    const data::ConnectionPtr connection = error.isEmpty() ? OpenDatabase(copy, error) : nullptr;
    if (!connection) {
        return error.replace(copy, databaseFile);
    }
    version = ReadVersion(connection);
    return IsVersion(version, databaseVersionLimit)
               ? QString()
               : QStringLiteral("%1 has no usable version: \"%2\"").arg(databaseFile, Legible(version));
}

// The archive holds the file under the name that the program reads, whatever it is called here: the copy bears it.
// (What comes from the engine's standard input can be marked as a pipe, which clients refuse.) Empty, or what failed.
// The signature lies beside it. The engine works in their folder: newer ones keep the folders of a relative path.
QString MakeArchive(const QString& named, const QString& signature, const QString& archive) {
    const QFileInfo database(named);
    QFile::setPermissions(named, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther);
    QProcess engine;
    engine.setStandardInputFile(QProcess::nullDevice());
    engine.setStandardOutputFile(QProcess::nullDevice());
    QStringList wanted = {QStringLiteral("a"),   QStringLiteral("-t7z"), QStringLiteral("-mx=9"),
                          QStringLiteral("-bd"), QStringLiteral("--"),   archive,
                          database.fileName()};
    if (!signature.isEmpty()) {
        wanted.append(QFileInfo(signature).fileName());
    }
    engine.setWorkingDirectory(database.path());
    engine.start(net::FindEngine(), wanted);
    const bool made =
        engine.waitForFinished(-1) && engine.exitStatus() == QProcess::NormalExit && engine.exitCode() == 0;
    return made ? QString() : QStringLiteral("7-Zip could not make the archive");
}

using Keys = QList<signing::PrivateKey>;

// Empty, or why the key cannot be used.
QString ReadKeys(const QStringList& paths, Keys& keys) {
    for (const QString& path : paths) {
        QString error;
        const signing::PrivateKey key = signing::PrivateKey::Read(path, error);
        if (!key) {
            return QStringLiteral("%1: %2").arg(path, error);
        }
        keys.append(key);
    }
    return QString();
}

// Writes the signature of the copy by each key; `path` is empty where there is none. Empty, or what failed.
QString WriteSignature(const QString& copy, const Keys& keys, QString& path) {
    QList<signing::Signature> signatures;
    for (const signing::PrivateKey& key : keys) {
        signatures.append(key.Sign(signing::MessageOf(copy)));
    }
    const QByteArray text = signing::SignatureText(signatures);
    if (keys.isEmpty()) {
        path.clear();
        return QString();
    }
    // Read as a client will read it.
    if (signing::ReadSignatureText(text).size() != keys.size()) {
        return QStringLiteral("the database could not be signed, or both keys are one");
    }
    return WriteFile(path, QString::fromLatin1(text));
}

// Writes the three files; the version of the database comes last, so that a client that sees it finds the new archive.
// All are whole before the first takes its place. Empty, or what went wrong.
QString Publish(const QString& databaseFile, const QString& folder, const QString& programVersion, const Keys& keys) {
    const NewFolders made(folder);
    if (!made.Error().isEmpty()) {
        return QStringLiteral("%1: %2").arg(folder, made.Error());
    }
    const FolderLock lock(folder);
    // On the file system of the target, so that the files move there in one step.
    const QTemporaryDir work(folder + QLatin1Char('/') + QLatin1String(workFolders) + QStringLiteral("XXXXXX"));
    if (!lock.IsHeld() || !work.isValid()) {
        return QStringLiteral("%1: %2").arg(folder,
                                            work.isValid() ? QStringLiteral("cannot be locked") : work.errorString());
    }
    const QString copy = work.filePath(QStringLiteral("hwids.mdb"));
    QString version;
    QString error = CopyToPublish(databaseFile, copy, version);
    if (!error.isEmpty()) {
        return error;
    }
    const QStringList names = {QString::fromUtf16(archiveName), QStringLiteral("update.htm"),
                               QStringLiteral("database_v1.htm")};
    QString signature = work.filePath(QString::fromUtf16(signing::SignatureName));
    error = WriteSignature(copy, keys, signature);
    error = error.isEmpty() ? MakeArchive(copy, signature, names[0]) : error;
    for (const auto& [name, text] : {std::pair(names[1], programVersion), std::pair(names[2], version)}) {
        error = error.isEmpty() ? WriteFile(work.filePath(name), text) : error;
    }
    if (!error.isEmpty()) {
        return QStringLiteral("%1: %2").arg(folder, error);
    }
    for (const QString& name : names) {
        if (!Move(work.filePath(name), folder, name)) {
            return QStringLiteral("%1/%2: %3").arg(folder, name, QString::fromLocal8Bit(std::strerror(errno)));
        }
    }
    return {};
}

} // namespace

int Pack(const QStringList& arguments) {
    const QString key = QStringLiteral("key");
    const QString oldKey = QStringLiteral("old-key");
    Options options({QStringLiteral("output"), QStringLiteral("program-version"), key, oldKey}, {});
    const QString wrong = options.Read(arguments);
    const QString output = options.Value(QStringLiteral("output"));
    if (!wrong.isEmpty() || options.Arguments().size() != 1 || output.isEmpty()) {
        return RefuseUsage(wrong.isEmpty() ? QStringLiteral("pack needs one DATABASE and --output DIR") : wrong);
    }
    if ((options.Has(key) && options.Value(key).isEmpty()) || (options.Has(oldKey) && !options.Has(key))) {
        return RefuseUsage(QStringLiteral("--key needs a FILE, and --old-key needs --key"));
    }
    Keys keys;
    QString error = options.Has(key) ? ReadKeys({options.Value(key)}, keys) : QString();
    error = error.isEmpty() && options.Has(oldKey) ? ReadKeys({options.Value(oldKey)}, keys) : error;
    if (!error.isEmpty()) {
        return Fail(error);
    }
    const QString path = options.Arguments().first();
    if (!OpenDatabase(path, error)) {
        return Fail(error);
    }
    const QString programVersion = options.Value(QStringLiteral("program-version"), values::BuiltVersion());
    if (!IsVersion(programVersion, programVersionLimit)) {
        return Fail(QStringLiteral("no usable program version: \"%1\"").arg(Legible(programVersion)));
    }
    if (net::FindEngine().isEmpty()) {
        return Fail(QStringLiteral("7-Zip is not installed"));
    }
    error = Publish(path, output, programVersion, keys);
    return error.isEmpty() ? int(Done) : Fail(error);
}

} // namespace tool
