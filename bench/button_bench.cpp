// What one paint of a push button costs, with caption and shadow, in the size of the main window's buttons.
#include "controls/dc_button.h"

#include <QApplication>
#include <QWidget>
#include <benchmark/benchmark.h>

namespace {

void PaintButton(benchmark::State& state) {
    QWidget container;
    controls::dcButton button(&container, QStringLiteral("CommandBench"));
    button.resize(200, 32);
    button.SetCaption(QStringLiteral("Refresh Hardware Lists"));
    button.SetButtonShape(int(state.range(0)));
    for (auto _ : state) {
        button.MarkDirty();
        benchmark::DoNotOptimize(button.UpToDateSurface().Image().constBits());
    }
}
BENCHMARK(PaintButton)->Arg(controls::SquareBoth)->Arg(controls::RoundBoth)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
