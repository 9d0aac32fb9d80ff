#include "shell/close_programs.h"

#include "base/yield.h"
#include "forms/form.h"
#include "forms/forms.h"
#include "forms/timer.h"

namespace shell {

namespace {

constexpr int mostForms = 100;

void StopTimers(const forms::Form& form) {
    // A copy: the yields below may end controls, which leave the form's own list then.
    const QList<QObject*> controls = form.Controls(); // NOLINT(performance-unnecessary-copy-initialization)
    for (QObject* control : controls) {
        auto* timer = qobject_cast<forms::Timer*>(control);
        if (timer == nullptr || !timer->Name().toLower().startsWith(QLatin1String("timer")))
            continue;
        timer->SetEnabled(false);
        base::Yield();
    }
}

} // namespace

void ClosePrograms() {
    forms::Forms& all = forms::Forms::Instance();
    if (forms::Form* colours = all.Find(QStringLiteral("FrmColors")))
        colours->Unload(true);
    base::Yield();
    if (const forms::Form* main = all.Find(QStringLiteral("FrmMain")))
        StopTimers(*main);
    for (int counter = 0; counter < mostForms; ++counter) {
        const QList<forms::Form*> loaded = all.Loaded();
        // The main window is on its way out already while it closes everything else.
        forms::Form* next = nullptr;
        for (forms::Form* form : loaded)
            if (!form->IsUnloading())
                next = form;
        if (next == nullptr)
            return;
        next->Unload(true);
        base::Yield();
    }
}

} // namespace shell
