// The archive engine as a child process: found in the system's folders alone, started with closed input, killed with
// its owner, with the program and when it stalls. Its output goes to a sink as it comes; what it writes to standard
// error is passed over.
#pragma once

#include <QByteArray>
#include <QObject>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <functional>

namespace net {

// The engine's full path, or nothing if the system has none. `7za` is tried first, then `7zz` and `7z`.
QString FindEngine();

// The folders that FindEngine looks into; an empty list restores the system's own. For tests.
void SetEngineFolders(const QStringList& folders);

class EngineProcess : public QObject {
  public:
    // The sink takes a piece of output and returns false to end the run. It must not dispatch events.
    using Sink = std::function<bool(const char* data, qsizetype size)>;

    explicit EngineProcess(QString engine) : engine_(std::move(engine)) {}
    ~EngineProcess() override;

    // Runs to the end, dispatching events meanwhile and calling `turn` after each pass; a false `turn` kills the child.
    // True if the engine ended by itself with status 0 and the sink took everything.
    bool Run(const QStringList& arguments, const Sink& sink, const std::function<bool()>& turn);

    // Milliseconds without output after which a child is killed; 60,000 by default.
    void SetStallLimit(int milliseconds) { stallLimit_ = milliseconds; }

  private:
    void Start(const QStringList& arguments);
    void Drain(const Sink& sink);
    void Kill();

    QString engine_;
    QProcess process_;
    QByteArray piece_;
    int stallLimit_ = 60'000;
    bool refused_ = false;
    bool moved_ = false;
};

} // namespace net
