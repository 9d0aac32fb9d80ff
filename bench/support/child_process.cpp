#include "support/child_process.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <chrono>
#include <ctime>
#include <unistd.h>

namespace bench {

namespace {

constexpr int longestMilliseconds = 300'000;

QByteArray Contents(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

std::optional<double> SecondsOf(const QString& program, const QStringList& arguments) {
    QProcess child;
    child.setStandardOutputFile(QProcess::nullDevice());
    child.setStandardErrorFile(QProcess::nullDevice());
    child.setStandardInputFile(QProcess::nullDevice());
    QElapsedTimer timer;
    timer.start();
    child.start(program, arguments);
    if (!child.waitForFinished(longestMilliseconds) || child.exitStatus() != QProcess::NormalExit ||
        child.exitCode() != 0)
        return std::nullopt;
    return double(timer.nsecsElapsed()) / 1e9;
}

std::optional<QByteArray> OutputOf(const QString& program, const QStringList& arguments) {
    QProcess child;
    child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    child.start(program, arguments);
    if (!child.waitForFinished(longestMilliseconds) || child.exitStatus() != QProcess::NormalExit ||
        child.exitCode() != 0)
        return std::nullopt;
    return child.readAllStandardOutput();
}

qint64 NowMicroseconds() {
    return std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

qint64 ProcessorMicroseconds() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return qint64(time.tv_sec) * 1'000'000 + time.tv_nsec / 1000;
}

double ResidentKib() {
    const QByteArray pages = Contents(QStringLiteral("/proc/self/statm")).split(' ').value(1);
    return pages.toDouble() * double(sysconf(_SC_PAGESIZE)) / 1024;
}

qint64 SleepCount() {
    qint64 count = 0;
    const QString tasks = QStringLiteral("/proc/self/task/");
    for (const QString& task : QDir(tasks).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        for (const QByteArray& line : Contents(tasks + task + QStringLiteral("/status")).split('\n')) {
            if (line.startsWith("voluntary_ctxt_switches:"))
                count += line.mid(line.indexOf(':') + 1).trimmed().toLongLong();
        }
    }
    return count;
}

} // namespace bench
