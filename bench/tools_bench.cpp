// Whole processes of the command-line tools beside the system's own: the device list beside what others print of the
// same devices, and the building of the default database from the ID files.
#include "support/child_process.h"
#include "support/settings.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace {

void Measure(benchmark::State& state, const QString& program, const QStringList& arguments) {
    for (auto _ : state) {
        const std::optional<double> seconds = bench::SecondsOf(program, arguments);
        if (!seconds) {
            state.SkipWithError("not installed, or it failed");
            return;
        }
        state.SetIterationTime(*seconds);
    }
}

void QuorvaneList(benchmark::State& state) { Measure(state, bench::BuiltProgram(QStringLiteral("quorvane-list")), {}); }

void LshwShort(benchmark::State& state) { Measure(state, QStringLiteral("lshw"), {QStringLiteral("-short")}); }

void HwinfoShort(benchmark::State& state) { Measure(state, QStringLiteral("hwinfo"), {QStringLiteral("--short")}); }

void Lspci(benchmark::State& state) { Measure(state, QStringLiteral("lspci"), {QStringLiteral("-nn")}); }

void BuildDatabase(benchmark::State& state) {
    const QTemporaryDir folder;
    Measure(state, bench::BuiltProgram(QStringLiteral("quorvane-db")),
            {QStringLiteral("build"), QStringLiteral("--output"), folder.filePath(QStringLiteral("hwids.mdb"))});
}

BENCHMARK(QuorvaneList)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(LshwShort)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(HwinfoShort)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(Lspci)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BuildDatabase)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
