#include "net/engine_process.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <array>
#include <csignal>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace net {

namespace {

constexpr std::array<const char*, 4> systemFolders = {"/usr/bin", "/usr/local/bin", "/usr/lib/p7zip", "/usr/lib/7zip"};
constexpr std::array<const char*, 3> engineNames = {"7za", "7zz", "7z"};
constexpr qsizetype pieceSize = 256 * 1024; // bytes
constexpr int waitTurn = 50;                // milliseconds; a stop is noticed at the latest then
constexpr int killWait = 5'000;             // milliseconds
// An archive decides how much memory its unpacking wants; beyond this the engine fails instead of the machine.
constexpr rlim_t memoryLimit = rlim_t(512) << 20; // bytes of addresses

QStringList& Folders() {
    static QStringList folders;
    return folders;
}

// Runs in the child between fork and exec: system calls only. The signal comes at the end of the thread that forked.
void PrepareChild(pid_t parent) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) {
        _exit(127);
    }
    const rlimit limit{memoryLimit, memoryLimit};
    setrlimit(RLIMIT_AS, &limit);
}

void Prepare(QProcess& process, const QString& engine, const QStringList& arguments) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // Names in the listing come as UTF-8 whatever the user's locale is.
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    process.setProcessEnvironment(environment);
    process.setProgram(engine);
    process.setArguments(arguments);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    const pid_t parent = getpid();
    process.setChildProcessModifier([parent] { PrepareChild(parent); });
}

} // namespace

QString FindEngine() {
    QStringList folders = Folders();
    if (folders.isEmpty()) {
        for (const char* folder : systemFolders) {
            folders.append(QString::fromLatin1(folder));
        }
    }
    for (const char* name : engineNames) {
        for (const QString& folder : std::as_const(folders)) {
            const QFileInfo file(folder + QChar(u'/') + QString::fromLatin1(name));
            if (file.isFile() && file.isExecutable()) {
                return file.filePath();
            }
        }
    }
    return {};
}

void SetEngineFolders(const QStringList& folders) { Folders() = folders; }

bool EngineProcess::Run(const QStringList& arguments, const Sink& sink, const std::atomic<bool>& stop) {
    QProcess process;
    Prepare(process, engine_, arguments);
    process.start(QIODevice::ReadOnly);
    bool good = process.waitForStarted();
    QByteArray piece(pieceSize, Qt::Uninitialized);
    QElapsedTimer sinceProgress;
    sinceProgress.start();
    while (good) {
        const bool ended = process.state() == QProcess::NotRunning;
        qint64 size = 0;
        while (good && (size = process.read(piece.data(), piece.size())) > 0) {
            good = sink(piece.constData(), size) && !stop;
            sinceProgress.restart();
        }
        if (ended) {
            break;
        }
        process.waitForReadyRead(waitTurn);
        good = good && !stop && !sinceProgress.hasExpired(stallLimit_);
    }
    if (process.state() != QProcess::NotRunning) {
        process.kill();
        process.waitForFinished(killWait);
    }
    return good && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

} // namespace net
