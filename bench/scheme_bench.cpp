// A scheme change with the main window and five lookup windows open: one colour picked, all windows coloured and
// repainted, the 28 values saved.
#include "appearance/colour_table.h"
#include "appearance/frm_colors.h"
#include "appearance/skin.h"
#include "base/paths.h"
#include "database/frm_lookup.h"
#include "forms/form.h"
#include "forms/forms.h"
#include "forms/timer.h"
#include "inventory/frm_menu.h"
#include "shell/frm_main.h"

#include <QApplication>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace {

constexpr int lookupWindows = 5;

void StopTimers(const forms::Form& form) {
    for (QObject* control : form.Controls())
        if (auto* timer = qobject_cast<forms::Timer*>(control))
            timer->SetEnabled(false);
}

void SchemeChange(benchmark::State& state) {
    forms::Forms& all = forms::Forms::Instance();
    shell::RegisterMainWindow();
    appearance::RegisterForms();
    inventory::RegisterMenuForm();
    database::RegisterLookupForm();
    forms::Form* main = all.Shared(QStringLiteral("FrmMain"));
    main->Show();
    // At once, before a further window yields: the start-up work would ask for a database.
    StopTimers(*main);
    for (int i = 0; i < lookupWindows; ++i)
        all.New(QStringLiteral("FrmLookup"))->Show();
    for (forms::Form* form : all.Loaded())
        StopTimers(*form);
    quint32 shade = 0;
    for (auto _ : state) {
        shade = (shade + 1) % 0x80;
        appearance::SetColor(0, base::Colour(0x404040 + shade));
        appearance::ApplyColorsToAllForms();
        for (forms::Form* form : all.Loaded())
            form->repaint();
    }
    all.Clear();
}
BENCHMARK(SchemeChange)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", qEnvironmentVariable("QT_QPA_PLATFORM", "offscreen").toUtf8());
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const QTemporaryDir folder;
    base::SetProgramFolder(folder.path());
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
