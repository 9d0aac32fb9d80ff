#include "net/engine_process.h"

#include "base/yield.h"

#include <QElapsedTimer>
#include <QFileInfo>
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

// Runs in the child between fork and exec: system calls only.
void PrepareChild(pid_t parent) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) {
        _exit(127);
    }
    const rlimit limit{memoryLimit, memoryLimit};
    setrlimit(RLIMIT_AS, &limit);
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

EngineProcess::~EngineProcess() { Kill(); }

void EngineProcess::Start(const QStringList& arguments) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // Names in the listing come as UTF-8 whatever the user's locale is.
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    process_.setProcessEnvironment(environment);
    process_.setProgram(engine_);
    process_.setArguments(arguments);
    process_.setStandardInputFile(QProcess::nullDevice());
    process_.setStandardErrorFile(QProcess::nullDevice());
    const pid_t parent = getpid();
    process_.setChildProcessModifier([parent] { PrepareChild(parent); });
    process_.start(QIODevice::ReadOnly);
}

void EngineProcess::Drain(const Sink& sink) {
    const base::NoYieldScope noYield;
    piece_.resize(pieceSize);
    qint64 size = 0;
    while ((size = process_.read(piece_.data(), piece_.size())) > 0) {
        moved_ = true;
        if (!refused_ && !sink(piece_.constData(), size)) {
            refused_ = true;
            process_.kill();
        }
    }
}

bool EngineProcess::Run(const QStringList& arguments, const Sink& sink, const std::function<bool()>& turn) {
    refused_ = false;
    bool ended = false;
    const auto read = connect(&process_, &QProcess::readyReadStandardOutput, this, [this, &sink] { Drain(sink); });
    const auto finished = connect(&process_, &QProcess::finished, this, [&ended] { ended = true; });
    Start(arguments);
    ended = !process_.waitForStarted();
    const bool started = !ended;
    QElapsedTimer sinceProgress;
    sinceProgress.start();
    while (!ended) {
        base::YieldBlocking(waitTurn);
        if (moved_) {
            moved_ = false;
            sinceProgress.restart();
        }
        if (!turn() || sinceProgress.hasExpired(stallLimit_)) {
            refused_ = true;
            Kill();
            break;
        }
    }
    if (started) {
        Drain(sink);
    }
    disconnect(read);
    disconnect(finished);
    return started && !refused_ && process_.state() == QProcess::NotRunning &&
           process_.exitStatus() == QProcess::NormalExit && process_.exitCode() == 0;
}

void EngineProcess::Kill() {
    if (process_.state() != QProcess::NotRunning) {
        process_.kill();
        process_.waitForFinished(killWait);
    }
}

} // namespace net
