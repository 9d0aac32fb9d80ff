// The update's two long jobs beside the plain tools doing the same in the same run: 256 MiB from loopback with the
// update window's labels live (bound: half of curl's rate, 16 MiB more memory), and the unpacking of a database of 200
// MiB (bound: 1.3 times the engine alone). Both also tell the longest time that an event had to wait (bound: 50 ms).
#include "base/paths.h"
#include "forms/dialogs.h"
#include "forms/forms.h"
#include "net/engine_process.h"
#include "net/vsz_lib.h"
#include "support/child_process.h"
#include "support/scripted_server.h"
#include "support/settings.h"
#include "updating/download.h"
#include "updating/frm_update.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>
#include <algorithm>
#include <benchmark/benchmark.h>

namespace {

qint64 DownloadSize() { return qint64(bench::Size(256, 4)) << 20; }
qint64 DatabaseSize() { return qint64(bench::Size(200, 4)) << 20; }

// The longest gap between two ticks of a timer of 5 ms while this lives.
class Heartbeat {
  public:
    Heartbeat() {
        QObject::connect(&timer_, &QTimer::timeout, [this] { worst_ = std::max(worst_, since_.restart()); });
        since_.start();
        timer_.start(5);
    }
    double WorstGap() const { return double(std::max(worst_, since_.elapsed())); }

  private:
    QTimer timer_;
    QElapsedTimer since_;
    qint64 worst_ = 0;
};

void DownloadWithLiveLabels(benchmark::State& state) {
    const QTemporaryDir folder;
    base::SetProgramFolder(folder.path());
    support::ScriptedServer server;
    server.SetAnswer("/file", support::Promise(200, DownloadSize()).Repeat(QByteArray(1 << 20, 'x'), DownloadSize()));
    forms::SetMsgBoxRecorder([](const QString&, forms::MessageIcon) {});
    updating::RegisterUpdateForm();
    double curl = 0;
    double own = 0;
    double gap = 0;
    double memory = 0;
    const qint64 size = DownloadSize();
    for (auto _ : state) {
        curl = bench::SecondsOf(QStringLiteral("curl"),
                                {QStringLiteral("-s"), QStringLiteral("-o"), folder.filePath(QStringLiteral("curl")),
                                 server.Url(QStringLiteral("/file"))})
                   .value_or(0);
        auto* window = static_cast<updating::FrmUpdate*>(forms::Forms::Instance().Shared(QStringLiteral("FrmUpdate")));
        window->Show();
        QElapsedTimer shown;
        for (shown.start(); !shown.hasExpired(300);) {
            QApplication::processEvents();
            QThread::msleep(5);
        }
        const double before = bench::ResidentKib();
        QElapsedTimer timer;
        const Heartbeat heartbeat;
        // At the last byte: what follows is the unpacking.
        QObject::connect(window->DL1, &updating::DownLoadControl::RecievedBytes, window, [&](qint32 total) {
            if (total == size && own == 0) {
                own = double(timer.nsecsElapsed()) / 1e9;
                gap = heartbeat.WorstGap();
                memory = bench::ResidentKib() - before;
            }
        });
        window->DL1->SetURL(server.Url(QStringLiteral("/file")));
        window->DL1->SetSaveLocation(folder.path() + QStringLiteral("\\own"));
        window->DL1->GetFileInformation();
        timer.start();
        window->DL1->DownLoad();
        state.SetIterationTime(own);
    }
    state.counters["curl_ms"] = curl * 1000;
    state.counters["MB_per_s"] = double(DownloadSize()) / own / 1e6;
    state.counters["worst_gap_ms"] = gap;
    state.counters["more_MiB"] = memory / 1024;
    forms::Forms::Instance().Clear();
}
BENCHMARK(DownloadWithLiveLabels)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);

// Compresses about as well as a database of IDs and names.
bool WriteDatabase(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        return false;
    }
    QRandomGenerator random(7);
    QByteArray block;
    while (file.size() < DatabaseSize()) {
        block.clear();
        while (block.size() < 1 << 20) {
            block += "PCI\\VEN_" + QByteArray::number(random.bounded(65536), 16) + "&DEV_" +
                     QByteArray::number(random.bounded(65536), 16) + "Some Device Name " +
                     QByteArray::number(random.bounded(40000)) + '\0';
        }
        file.write(block);
    }
    return true;
}

// The archive of it, made once for the process; empty if that fails.
const QString& Archive() {
    static const QTemporaryDir folder;
    static const QString path = [] {
        const QString database = folder.filePath(QStringLiteral("hwids.mdb"));
        const QString archive = folder.filePath(QStringLiteral("hwids.7z"));
        return WriteDatabase(database) &&
                       bench::SecondsOf(net::FindEngine(),
                                        {QStringLiteral("a"), QStringLiteral("-mx=1"), archive, database})
                   ? archive
                   : QString();
    }();
    return path;
}

void UnpackDatabase(benchmark::State& state) {
    const QTemporaryDir folder;
    const QString archive = Archive();
    const QString engine = net::FindEngine();
    if (archive.isEmpty()) {
        state.SkipWithError("no archive");
        return;
    }
    double alone = 0;
    double own = 0;
    double gap = 0;
    for (auto _ : state) {
        alone = bench::SecondsOf(engine, {QStringLiteral("x"), QStringLiteral("-y"), QStringLiteral("-bso0"),
                                          QStringLiteral("-bsp0"),
                                          QStringLiteral("-o") + folder.filePath(QStringLiteral("alone")), archive})
                    .value_or(0);
        net::VszLib zip;
        bool loaded = false;
        zip.LoadEngine({}, loaded);
        const Heartbeat heartbeat;
        QElapsedTimer timer;
        timer.start();
        if (!zip.OpenArchive(archive) || !zip.ExtractAll(folder.path())) {
            state.SkipWithError("not unpacked");
            return;
        }
        own = double(timer.nsecsElapsed()) / 1e9;
        gap = heartbeat.WorstGap();
        state.SetIterationTime(own);
    }
    state.counters["engine_ms"] = alone * 1000;
    state.counters["worst_gap_ms"] = gap;
}
BENCHMARK(UnpackDatabase)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    forms::Forms::Instance().SetAllGone([] {});
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
