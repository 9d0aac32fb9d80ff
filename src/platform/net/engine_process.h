// The archive engine as a child process: found in the system's folders alone, started with closed input, killed with
// the thread that runs it, with the program and when it stalls. Its output goes to a sink as it comes; what it writes
// to standard error is passed over. It waits without dispatching events: run it aside.
#pragma once

#include <QString>
#include <QStringList>
#include <atomic>
#include <functional>

namespace net {

// The engine's full path, or nothing if the system has none. `7za` is tried first, then `7zz` and `7z`.
QString FindEngine();

// The folders that FindEngine looks into; an empty list restores the system's own. For tests.
void SetEngineFolders(const QStringList& folders);

class EngineProcess {
  public:
    // The sink takes a piece of output and returns false to end the run.
    using Sink = std::function<bool(const char* data, qsizetype size)>;

    explicit EngineProcess(QString engine) : engine_(std::move(engine)) {}

    // Runs to the end; `stop` set to true kills the child soon. True if the engine ended by itself with status 0 and
    // the sink took everything.
    bool Run(const QStringList& arguments, const Sink& sink, const std::atomic<bool>& stop);

    // Milliseconds without output after which a child is killed; 60,000 by default.
    void SetStallLimit(int milliseconds) { stallLimit_ = milliseconds; }

  private:
    QString engine_;
    int stallLimit_ = 60'000;
};

} // namespace net
