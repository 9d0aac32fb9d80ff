// A whole refresh of a title bar as wide as a common screen: layout, strip, icon, caption and border. Bound: 2 ms.
#include "controls/titel_bar.h"

#include <QApplication>
#include <benchmark/benchmark.h>

namespace {

void RefreshTitleBar(benchmark::State& state) {
    QWidget container;
    controls::TitelBar bar(&container, QStringLiteral("TitelBar1"));
    bar.InitProperties();
    QImage icon(24, 24, QImage::Format_ARGB32_Premultiplied);
    icon.fill(Qt::red);
    bar.SetPicture(draw::Picture::IconFromImage(icon));
    bar.SetCaption(QStringLiteral("A caption of the usual length"));
    bar.SetShowMaximized(true);
    bar.SetBackColorCover(int(state.range(0)));
    bar.resize(1920, 32);
    for (auto _ : state) {
        bar.Refresh();
        benchmark::DoNotOptimize(bar.UpToDateSurface().Image().constBits());
    }
}
BENCHMARK(RefreshTitleBar)->ArgName("cover")->Arg(2000)->Arg(0)->Unit(benchmark::kMicrosecond);

// What each of the four button colours of a skin costs.
void RebuildButtonFaces(benchmark::State& state) {
    QWidget container;
    controls::TitelBar bar(&container, QStringLiteral("TitelBar1"));
    for (auto _ : state)
        bar.UpdateTitleBarButtons();
}
BENCHMARK(RebuildButtonFaces)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
