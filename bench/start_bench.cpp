// From the start of a process to what its user waits for: the end of the first scan, beside the first paint of an empty
// window of the toolkit. The program under test starts itself again in the two roles; each child prints how long it
// took since its parent asked for it.
#include "appearance/frm_colors.h"
#include "base/paths.h"
#include "forms/form.h"
#include "forms/forms.h"
#include "forms/label.h"
#include "inventory/frm_menu.h"
#include "shell/frm_main.h"

#include <QApplication>
#include <QProcess>
#include <QTimer>
#include <QWidget>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

namespace {

qint64 NowMicroseconds() {
    return std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

class EmptyWindow : public QWidget {
  public:
    explicit EmptyWindow(qint64 asked) : asked_(asked) { resize(750, 550); }

  protected:
    void paintEvent(QPaintEvent*) override {
        std::printf("%lld\n", static_cast<long long>(NowMicroseconds() - asked_));
        QTimer::singleShot(0, qApp, &QApplication::quit);
    }

  private:
    qint64 asked_;
};

int RunEmpty(QApplication& application, qint64 asked) {
    EmptyWindow window(asked);
    window.show();
    return application.exec();
}

int RunProgram(QApplication& application, qint64 asked, const QString& folder) {
    base::SetProgramFolder(folder);
    shell::RegisterMainWindow();
    appearance::RegisterForms();
    inventory::RegisterMenuForm();
    auto* main = static_cast<shell::FrmMain*>(forms::Forms::Instance().Shared(QStringLiteral("FrmMain")));
    main->Show();
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        if (main->LabelStatus->Caption() != QLatin1String("Status: Done"))
            return;
        watch.stop();
        std::printf("%lld\n", static_cast<long long>(NowMicroseconds() - asked));
        main->Unload();
    });
    watch.start(1);
    return application.exec();
}

// The median of `runs` children in one role, in milliseconds; negative if one failed.
double Median(const QString& self, const QStringList& role, int runs) {
    std::vector<double> times;
    for (int run = 0; run < runs; ++run) {
        QProcess child;
        QStringList arguments = role;
        arguments.insert(1, QString::number(NowMicroseconds()));
        child.start(self, arguments);
        child.waitForFinished(60000);
        bool good = false;
        const double microseconds = child.readAllStandardOutput().trimmed().toDouble(&good);
        if (!good)
            return -1;
        times.push_back(microseconds / 1000);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

} // namespace

int main(int argc, char** argv) {
    if (argc > 2 && (argv[1] == std::string("--empty") || argv[1] == std::string("--program"))) {
        QApplication application(argc, argv);
        QApplication::setQuitOnLastWindowClosed(false);
        const qint64 asked = QByteArray(argv[2]).toLongLong();
        return argv[1] == std::string("--empty") ? RunEmpty(application, asked)
                                                 : RunProgram(application, asked, QString::fromLocal8Bit(argv[3]));
    }
    if (argc < 2) {
        std::fprintf(stderr, "usage: bench_start FOLDER   (a folder with hwids.mdb)\n");
        return 2;
    }
    constexpr int runs = 7;
    const QString self = QString::fromLocal8Bit(argv[0]);
    const double empty = Median(self, {QStringLiteral("--empty")}, runs);
    const double program = Median(self, {QStringLiteral("--program"), QString::fromLocal8Bit(argv[1])}, runs);
    std::printf("empty window to first paint %.0f ms, program to \"Status: Done\" %.0f ms, difference %.0f ms\n", empty,
                program, program - empty);
    return empty < 0 || program < 0 ? 1 : 0;
}
