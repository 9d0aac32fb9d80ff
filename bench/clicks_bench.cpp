// Clicks on the main window's tabs while each of the long jobs runs in the real windows. "p99_ms" is what 99 of 100
// clicks did not wait longer than until their handler was entered. Bound: 50 ms.
#include "base/paths.h"
#include "base/yield.h"
#include "controls/dc_button.h"
#include "database/frm_lookup.h"
#include "forms/forms.h"
#include "forms/label.h"
#include "forms/text_box.h"
#include "forms/timer.h"
#include "net/engine_process.h"
#include "pnp/sources.h"
#include "shell/frm_main.h"
#include "suite/list_view.h"
#include "suite/tab_control.h"
#include "support/child_process.h"
#include "support/clicker.h"
#include "support/large_database.h"
#include "support/made_up_machine.h"
#include "support/program_windows.h"
#include "support/scripted_server.h"
#include "support/settings.h"
#include "updating/download.h"
#include "updating/frm_update.h"

#include <QApplication>
#include <QFile>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <cstdio>

namespace {

constexpr int idsOfSearch = 1000;
constexpr qint64 downloadSize = 256LL << 20;

int ClicksWanted() { return bench::Size(200, 3); }
int Devices() { return bench::Size(10'000, 300); }

const QTemporaryDir& Folder() {
    static const QTemporaryDir folder;
    return folder;
}

forms::Form* Shared(const char* name) { return forms::Forms::Instance().Shared(QLatin1String(name)); }

shell::FrmMain& Main() { return *static_cast<shell::FrmMain*>(Shared("FrmMain")); }

// Repeats the job until enough clicks have come; clicks come only while it runs.
template <typename Job> void ClickDuring(benchmark::State& state, const Job& job) {
    for (auto _ : state) {
        bench::Clicker clicker(*Main().TabControl1);
        int runs = 0;
        for (; clicker.Count() < ClicksWanted() && runs < 1000; ++runs) {
            if (!job(clicker)) {
                state.SkipWithError("the job failed");
                return;
            }
        }
        state.counters["p99_ms"] = clicker.Percentile99();
        state.counters["longest_ms"] = clicker.Longest();
        state.counters["p99_busy_ms"] = clicker.BusyPercentile99();
        state.counters["clicks"] = clicker.Count();
        state.counters["jobs"] = runs;
    }
}

void ClickWhileScanning(benchmark::State& state) {
    ClickDuring(state, [](bench::Clicker& clicker) {
        clicker.Resume();
        Main().CommandGetHardware_Click();
        clicker.Pause();
        return Main().ListViewHardware->ListItems().Count() == Devices();
    });
}

void ClickWhileSearching(benchmark::State& state) {
    QString ids;
    for (int id = 0; id < idsOfSearch; ++id)
        ids += bench::HardwareId(int(qint64(id) * bench::RowCount() / idsOfSearch)) + QStringLiteral("\r\n");
    ClickDuring(state, [&ids](bench::Clicker& clicker) {
        auto* window = static_cast<database::FrmLookup*>(forms::Forms::Instance().New(QStringLiteral("FrmLookup")));
        window->Show();
        window->TextID->SetText(ids);
        clicker.Resume();
        Q_EMIT window->TimerStart->Tick();
        clicker.Pause();
        const bool found = window->LabelListViewHardware->ListItems().Count() == idsOfSearch;
        window->Unload();
        return found;
    });
}

void ClickWhileDownloading(benchmark::State& state) {
    support::ScriptedServer server;
    const qint64 size = bench::Size(downloadSize, 4 << 20);
    server.SetAnswer("/file", support::Promise(200, size).Repeat(QByteArray(1 << 20, 'x'), size));
    ClickDuring(state, [&](bench::Clicker& clicker) {
        auto* window = static_cast<updating::FrmUpdate*>(Shared("FrmUpdate"));
        window->Show();
        window->DL1->SetURL(server.Url(QStringLiteral("/file")));
        window->DL1->SetSaveLocation(Folder().path() + QStringLiteral("\\file"));
        window->DL1->GetFileInformation();
        bool whole = false;
        QObject::connect(window->DL1, &updating::DownLoadControl::RecievedBytes, window, [&](qint32 total) {
            if (total == size) {
                whole = true;
                clicker.Pause();
            }
        });
        clicker.Resume();
        window->DL1->DownLoad();
        return whole;
    });
}

// A downloaded archive of the large database, unpacked into the program's folder.
void ClickWhileUnpacking(benchmark::State& state) {
    const QString archive = Folder().filePath(QStringLiteral("packed.7z"));
    const QString target = Folder().filePath(QStringLiteral("hwids.7z"));
    const bool packed =
        QFile::exists(archive) ||
        bench::SecondsOf(net::FindEngine(), {QStringLiteral("a"), QStringLiteral("-mx=1"), archive,
                                             bench::LargeDatabaseFolder() + QStringLiteral("/hwids.mdb")});
    ClickDuring(state, [&](bench::Clicker& clicker) {
        auto* window = static_cast<updating::FrmUpdate*>(Shared("FrmUpdate"));
        window->Show();
        QFile::copy(archive, target);
        clicker.Resume();
        Q_EMIT window->DL1->DLComplete();
        clicker.Pause();
        Main().TimerCountDatabase->SetEnabled(false);
        return packed && window->ImportantLabelUnzip->Caption() == QLatin1String("Decompressed Successfully");
    });
}

BENCHMARK(ClickWhileScanning)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(ClickWhileSearching)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(ClickWhileDownloading)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(ClickWhileUnpacking)->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM") && !qEnvironmentVariableIsSet("DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    bench::PrepareProgram(application);
    forms::Forms::Instance().SetAllGone([] {});
    if (!QFile::copy(bench::LargeDatabaseFolder() + QStringLiteral("/hwids.mdb"),
                     Folder().filePath(QStringLiteral("hwids.mdb"))))
        return 1;
    base::SetProgramFolder(Folder().path());
    pnp::SetDeviceRoot(bench::MadeUpMachine(Devices()));
    if (!bench::WaitForFirstScan(*bench::ShowMainWindow())) {
        std::fprintf(stderr, "The first scan did not end\n");
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    forms::Forms::Instance().Clear();
    return 0;
}
