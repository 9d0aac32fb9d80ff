// From the start of a process to what its user waits for, what it then holds of the memory, and what it does while
// nobody touches it. The program under test starts itself again in two roles, the whole program and an empty window of
// the toolkit; each child prints its figures. A peer with windows is watched from outside.
#include "base/paths.h"
#include "forms/forms.h"
#include "shell/frm_main.h"
#include "support/child_process.h"
#include "support/large_database.h"
#include "support/program_windows.h"
#include "support/settings.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>
#include <QWidget>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <xcb/xcb.h>

namespace {

constexpr int settleMilliseconds = 300; // until the last paint is through
constexpr int leastWindowWidth = 300;   // anything smaller is not the window that a user waits for

struct Figures {
    double milliseconds = 0;
    double kib = 0;
    double wakeUps = 0; // a second
    double load = 0;    // of a core, percent
};

// Children. Each prints the microseconds since its parent asked for it, its resident memory in KiB when all is painted,
// and the wake-ups and processor time, in microseconds, of the milliseconds for which it then was idle.

void Report(qint64 microseconds, int idleMilliseconds) {
    QTimer::singleShot(settleMilliseconds, qApp, [microseconds, idleMilliseconds] {
        const double kib = bench::ResidentKib();
        const qint64 sleeps = bench::SleepCount();
        const qint64 busy = bench::ProcessorMicroseconds();
        QTimer::singleShot(idleMilliseconds, Qt::PreciseTimer, qApp, [=] {
            // The timer that ends the idle time is one wake-up of the measurement's own.
            std::printf("%lld %.0f %lld %lld\n", static_cast<long long>(microseconds), kib,
                        static_cast<long long>(bench::SleepCount() - sleeps - 1),
                        static_cast<long long>(bench::ProcessorMicroseconds() - busy));
            std::fflush(stdout);
            std::_Exit(EXIT_SUCCESS);
        });
    });
}

class EmptyWindow : public QWidget {
  public:
    EmptyWindow(qint64 asked, int idleMilliseconds) : asked_(asked), idleMilliseconds_(idleMilliseconds) {
        resize(750, 550);
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        if (asked_ != 0)
            Report(bench::NowMicroseconds() - asked_, idleMilliseconds_);
        asked_ = 0;
    }

  private:
    qint64 asked_;
    int idleMilliseconds_;
};

int RunEmpty(const QApplication&, qint64 asked, int idleMilliseconds) {
    EmptyWindow window(asked, idleMilliseconds);
    window.show();
    return QApplication::exec();
}

int RunProgram(const QApplication& application, qint64 asked, int idleMilliseconds, const QString& folder) {
    base::SetProgramFolder(folder);
    bench::PrepareProgram(application);
    const shell::FrmMain* window = bench::ShowMainWindow();
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        if (bench::IsDone(*window)) {
            watch.stop();
            Report(bench::NowMicroseconds() - asked, idleMilliseconds);
        }
    });
    watch.start(1);
    return QApplication::exec();
}

// The parent's side.

bool StartChild(benchmark::State& state, const QString& role, const QString& folder, int idleMilliseconds,
                Figures& figures) {
    const std::optional<QByteArray> output =
        bench::OutputOf(QCoreApplication::applicationFilePath(),
                        {role, QString::number(bench::NowMicroseconds()), QString::number(idleMilliseconds), folder});
    const QList<QByteArray> parts = output.value_or(QByteArray()).trimmed().split(' ');
    if (parts.size() != 4) {
        state.SkipWithError("the child failed");
        return false;
    }
    figures.milliseconds = parts[0].toDouble() / 1000;
    figures.kib = parts[1].toDouble();
    figures.wakeUps = parts[2].toDouble() * 1000 / idleMilliseconds;
    figures.load = parts[3].toDouble() / 10 / idleMilliseconds;
    return true;
}

void MeasureChild(benchmark::State& state, const QString& role, const QString& folder, int idleMilliseconds = 1) {
    for (auto _ : state) {
        Figures figures;
        if (!StartChild(state, role, folder, idleMilliseconds, figures))
            return;
        state.SetIterationTime(figures.milliseconds / 1000);
        state.counters["resident_MiB"] = figures.kib / 1024;
        if (idleMilliseconds > 1) {
            state.counters["wake_ups_per_s"] = figures.wakeUps;
            state.counters["percent_of_a_core"] = figures.load;
        }
    }
}

// The default database, built once for the process.
const QString& DefaultDatabaseFolder() {
    static const QTemporaryDir folder;
    static const QString path = [] {
        if (!bench::SecondsOf(
                bench::BuiltProgram(QStringLiteral("quorvane-db")),
                {QStringLiteral("build"), QStringLiteral("--output"), folder.filePath(QStringLiteral("hwids.mdb"))})) {
            std::fprintf(stderr, "No default database could be built\n");
            std::exit(EXIT_FAILURE);
        }
        return folder.path();
    }();
    return path;
}

void EmptyWindowToFirstPaint(benchmark::State& state) { MeasureChild(state, QStringLiteral("--empty"), {}); }

void ProgramToDone(benchmark::State& state) {
    MeasureChild(state, QStringLiteral("--program"), DefaultDatabaseFolder());
}

void ProgramToDoneWithLargeDatabase(benchmark::State& state) {
    MeasureChild(state, QStringLiteral("--program"), bench::LargeDatabaseFolder());
}

void ProgramIdle(benchmark::State& state) {
    MeasureChild(state, QStringLiteral("--program"), DefaultDatabaseFolder(), bench::Size(3000, 500));
}

void EmptyWindowIdle(benchmark::State& state) {
    MeasureChild(state, QStringLiteral("--empty"), {}, bench::Size(3000, 500));
}

// The screen, watched for new windows.
class Screen {
  public:
    Screen() : connection_(xcb_connect(nullptr, nullptr), &xcb_disconnect) {
        if (!IsThere())
            return;
        root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_.get())).data->root;
        const uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        xcb_change_window_attributes(connection_.get(), root_, XCB_CW_EVENT_MASK, &mask);
        xcb_flush(connection_.get());
    }
    bool IsThere() const { return xcb_connection_has_error(connection_.get()) == 0; }

    // Waits until a window of a fair size is mapped, ten seconds at most.
    bool WaitForWindow() {
        for (QElapsedTimer waited = Started(); !waited.hasExpired(10'000);) {
            const Reply<xcb_generic_event_t> event(xcb_poll_for_event(connection_.get()), &std::free);
            if (!event)
                QThread::usleep(500);
            else if ((event->response_type & 0x7F) == XCB_MAP_NOTIFY &&
                     WidthOf(reinterpret_cast<const xcb_map_notify_event_t*>(event.get())->window) >= leastWindowWidth)
                return true;
        }
        return false;
    }

    // Watches the middle of the screen, where windows open, until it has stood still for half a second, ten seconds at
    // most; the moment of its last change.
    qint64 LastChange() {
        qint64 changed = bench::NowMicroseconds();
        QByteArray before;
        const QElapsedTimer begun = Started();
        for (QElapsedTimer still = Started(); !still.hasExpired(500) && !begun.hasExpired(10'000); QThread::msleep(8)) {
            const QByteArray now = Middle();
            if (now != before) {
                changed = bench::NowMicroseconds();
                before = now;
                still.start();
            }
        }
        return changed;
    }

  private:
    template <typename T> using Reply = std::unique_ptr<T, decltype(&std::free)>;

    static QElapsedTimer Started() {
        QElapsedTimer timer;
        timer.start();
        return timer;
    }

    int WidthOf(xcb_window_t window) {
        const Reply<xcb_get_geometry_reply_t> geometry(
            xcb_get_geometry_reply(connection_.get(), xcb_get_geometry(connection_.get(), window), nullptr),
            &std::free);
        return geometry ? geometry->width : 0;
    }

    QByteArray Middle() {
        const Reply<xcb_get_image_reply_t> image(
            xcb_get_image_reply(
                connection_.get(),
                xcb_get_image(connection_.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, root_, 300, 200, 500, 500, ~0U), nullptr),
            &std::free);
        return image ? QByteArray(reinterpret_cast<const char*>(xcb_get_image_data(image.get())),
                                  xcb_get_image_data_length(image.get()))
                     : QByteArray();
    }

    std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> connection_;
    xcb_window_t root_ = 0;
};

void MeasureWindow(benchmark::State& state, const QString& program, const QStringList& arguments, bool untilFilled) {
    Screen screen;
    if (program.isEmpty() || !screen.IsThere()) {
        state.SkipWithError("needs an X11 display, and the program");
        return;
    }
    for (auto _ : state) {
        QProcess child;
        child.setStandardOutputFile(QProcess::nullDevice());
        child.setStandardErrorFile(QProcess::nullDevice());
        const qint64 asked = bench::NowMicroseconds();
        child.start(program, arguments);
        if (!screen.WaitForWindow())
            state.SkipWithError("no window");
        const qint64 end = untilFilled ? screen.LastChange() : bench::NowMicroseconds();
        state.SetIterationTime(double(end - asked) / 1e6);
        child.kill();
        child.waitForFinished();
    }
}

QString Hardinfo() { return QStandardPaths::findExecutable(QStringLiteral("hardinfo")); }

void HardinfoToWindow(benchmark::State& state) { MeasureWindow(state, Hardinfo(), {}, false); }

void HardinfoToFilledWindow(benchmark::State& state) { MeasureWindow(state, Hardinfo(), {}, true); }

void ProgramToWindow(benchmark::State& state) {
    MeasureWindow(state, QCoreApplication::applicationFilePath(),
                  {QStringLiteral("--program"), QStringLiteral("0"), QStringLiteral("60000"), DefaultDatabaseFolder()},
                  false);
}

BENCHMARK(EmptyWindowToFirstPaint)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(ProgramToDone)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(ProgramToDoneWithLargeDatabase)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(ProgramToWindow)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(HardinfoToWindow)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(HardinfoToFilledWindow)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(ProgramIdle)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(EmptyWindowIdle)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    const std::string role = argc == 5 ? argv[1] : "";
    if (role == "--empty" || role == "--program") {
        const QApplication application(argc, argv);
        const qint64 asked = QByteArray(argv[2]).toLongLong();
        const int idleMilliseconds = QByteArray(argv[3]).toInt();
        return role == "--empty" ? RunEmpty(application, asked, idleMilliseconds)
                                 : RunProgram(application, asked, idleMilliseconds, QString::fromLocal8Bit(argv[4]));
    }
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    // Once for nothing, so that all files are in memory; and the databases outside of what is timed.
    bench::OutputOf(QCoreApplication::applicationFilePath(), {QStringLiteral("--program"), QStringLiteral("0"),
                                                              QStringLiteral("1"), bench::LargeDatabaseFolder()});
    bench::OutputOf(QCoreApplication::applicationFilePath(),
                    {QStringLiteral("--program"), QStringLiteral("0"), QStringLiteral("1"), DefaultDatabaseFolder()});
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
