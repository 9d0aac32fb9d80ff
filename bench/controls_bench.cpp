// The drawn controls' painting helpers beside what does the same work otherwise: the toolkit's own operations, or the
// plain routine. Each pair runs in one process; what counts is the ratio.
#include "controls/dib_pixels.h"
#include "controls/dib_section.h"
#include "controls/gradient.h"
#include "controls/titel_bar.h"

#include <QApplication>
#include <QLinearGradient>
#include <QPainter>
#include <QRandomGenerator>
#include <QWidget>
#include <benchmark/benchmark.h>
#include <vector>

namespace {

constexpr int screenWidth = 1920;
constexpr int screenHeight = 1080;

enum Content { Noise = 0, Photo = 1 };

// Noise is the worst case for anything that remembers; the other is smooth, with soft grain, as photographs are.
std::vector<quint8> Pixels(int width, int height, int content) {
    QRandomGenerator random(1);
    std::vector<quint8> bytes(size_t(width) * size_t(height) * 4);
    size_t at = 0;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (int channel = 0; channel < 4; ++channel) {
                const int smooth = (x * (channel + 1) / 16 + y * (3 - channel) / 12) % 240 + int(random.generate() % 8);
                bytes[at++] = content == Noise ? quint8(random.generate()) : quint8(smooth);
            }
    return bytes;
}

QImage Image(int width, int height, int content) {
    const std::vector<quint8> bytes = Pixels(width, height, content);
    return QImage(bytes.data(), width, height, QImage::Format_RGB32).copy();
}

void Gradient(benchmark::State& state) {
    draw::Surface surface(screenWidth, screenHeight);
    controls::clsGradient gradient;
    gradient.SetAngle(double(state.range(0)));
    for (auto _ : state) {
        gradient.Draw(surface);
        benchmark::DoNotOptimize(surface.Image().constBits());
    }
}
BENCHMARK(Gradient)->Arg(315)->Arg(270)->Arg(0)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();

void GradientOfTheToolkit(benchmark::State& state) {
    QImage image(screenWidth, screenHeight, QImage::Format_RGB32);
    const QPointF end = state.range(0) == 315   ? QPointF(screenWidth, screenHeight)
                        : state.range(0) == 270 ? QPointF(0, screenHeight)
                                                : QPointF(screenWidth, 0);
    QLinearGradient gradient(QPointF(0, 0), end);
    gradient.setColorAt(0, QColor(0xD0, 0xFF, 0xFF));
    gradient.setColorAt(1, QColor(0, 0, 0x40));
    for (auto _ : state) {
        QPainter(&image).fillRect(image.rect(), gradient);
        benchmark::DoNotOptimize(image.constBits());
    }
}
BENCHMARK(GradientOfTheToolkit)
    ->Arg(315)
    ->Arg(270)
    ->Arg(0)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();

// Each round starts from the same pixels, as the picture would otherwise fade to grey.
template <typename Scale> void ScalePixels(benchmark::State& state, const controls::HlsFactors& factors, Scale scale) {
    const std::vector<quint8> original = Pixels(screenWidth, screenHeight, int(state.range(0)));
    std::vector<quint8> pixels = original;
    for (auto _ : state) {
        scale(pixels.data(), qsizetype(pixels.size() / 4), factors);
        benchmark::DoNotOptimize(pixels.data());
        state.PauseTiming();
        pixels = original;
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * int64_t(pixels.size() / 4));
}
constexpr controls::HlsFactors modify{1.2, 1.1, 0.8};
constexpr controls::HlsFactors lighten{1, 1.3, 1};

void ModifyHls(benchmark::State& state) { ScalePixels(state, modify, controls::ScaleHls); }
void ModifyHlsPlain(benchmark::State& state) { ScalePixels(state, modify, controls::ScaleHlsPlain); }
void Lighten(benchmark::State& state) { ScalePixels(state, lighten, controls::ScaleHls); }
void LightenPlain(benchmark::State& state) { ScalePixels(state, lighten, controls::ScaleHlsPlain); }
BENCHMARK(ModifyHls)->Arg(Noise)->Arg(Photo)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();
BENCHMARK(ModifyHlsPlain)
    ->Arg(Noise)
    ->Arg(Photo)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(Lighten)->Arg(Noise)->Arg(Photo)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();
BENCHMARK(LightenPlain)->Arg(Noise)->Arg(Photo)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();

void CodeAlphaBlend(benchmark::State& state) {
    controls::pcDibSection source;
    controls::pcDibSection target;
    source.CreateFromHBitmap(Image(screenWidth, screenHeight, Noise));
    target.CreateFromHBitmap(Image(screenWidth, screenHeight, Photo));
    for (auto _ : state) {
        controls::pcDibSection::CodeAlphaBlend(source, target, -1, -1, 0, 0, 0, 0, 100);
        benchmark::DoNotOptimize(target.DIBSectionBitsPtr());
    }
}
BENCHMARK(CodeAlphaBlend)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();

void ConstantAlphaOfTheToolkit(benchmark::State& state) {
    const QImage source = Image(screenWidth, screenHeight, Noise);
    QImage target = Image(screenWidth, screenHeight, Photo);
    for (auto _ : state) {
        QPainter painter(&target);
        painter.setOpacity(100 / 255.0);
        painter.drawImage(0, 0, source);
        painter.end();
        benchmark::DoNotOptimize(target.constBits());
    }
}
BENCHMARK(ConstantAlphaOfTheToolkit)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();

// To twice, half and a tenth of the size in percent.
void Resample(benchmark::State& state) {
    controls::pcDibSection bitmap;
    bitmap.CreateFromHBitmap(Image(960, 540, Photo));
    const int percent = int(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(bitmap.Resample(540 * percent / 100, 960 * percent / 100));
}
BENCHMARK(Resample)
    ->Arg(200)
    ->Arg(130)
    ->Arg(50)
    ->Arg(10)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();

void SmoothScalingOfTheToolkit(benchmark::State& state) {
    const QImage image = Image(960, 540, Photo);
    const int percent = int(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(
            image.scaled(960 * percent / 100, 540 * percent / 100, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
}
BENCHMARK(SmoothScalingOfTheToolkit)
    ->Arg(200)
    ->Arg(130)
    ->Arg(50)
    ->Arg(10)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();

void TitelBarRefresh(benchmark::State& state) {
    QWidget container;
    controls::TitelBar bar(&container, QStringLiteral("TitelBar1"));
    bar.InitProperties();
    bar.resize(screenWidth, 32);
    bar.SetCaption(QStringLiteral("Quorvane"));
    for (auto _ : state) {
        bar.Refresh();
        benchmark::DoNotOptimize(bar.UpToDateSurface().Image().constBits());
    }
}
BENCHMARK(TitelBarRefresh)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
