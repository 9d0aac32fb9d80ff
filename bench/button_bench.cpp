// What one paint of a push button costs, with caption and shadow, in the size of the main window's buttons; and how
// many paints setters cause, each of which would be one more.
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

class PaintCounter : public QObject {
  public:
    int Paints = 0;
    bool eventFilter(QObject*, QEvent* event) override {
        Paints += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
};

void Setters(benchmark::State& state) {
    QWidget container;
    controls::dcButton button(&container, QStringLiteral("CommandBench"));
    button.resize(200, 32);
    container.show();
    QApplication::processEvents();
    PaintCounter counter;
    button.installEventFilter(&counter);
    int rounds = 0;
    quint32 shade = 0;
    for (auto _ : state) {
        ++shade;
        button.SetBackColor(base::Colour(shade));
        button.SetForeColor(base::Colour(shade));
        button.SetCaption(QString::number(shade));
        button.SetButtonShape(shade % 2 == 0 ? controls::SquareBoth : controls::RoundBoth);
        button.SetEnabled(shade % 2 == 0);
        ++rounds;
        QApplication::processEvents();
    }
    state.counters["paints_a_round"] = double(counter.Paints) / rounds;
}
BENCHMARK(Setters)->Iterations(100)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
