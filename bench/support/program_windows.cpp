#include "support/program_windows.h"

#include "appearance/frm_colors.h"
#include "base/yield.h"
#include "contribution/frm_improve.h"
#include "database/frm_lookup.h"
#include "draw/system_colours.h"
#include "forms/desktop.h"
#include "forms/dialogs.h"
#include "forms/forms.h"
#include "forms/label.h"
#include "inventory/frm_menu.h"
#include "shell/frm_main.h"
#include "updating/frm_update.h"

#include <QElapsedTimer>
#include <QStyleFactory>

namespace bench {

void PrepareProgram(const QApplication& application) {
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    draw::SetSysColors(application.palette());
    forms::SetMsgBoxRecorder([](const QString&, forms::MessageIcon) {});
    forms::SetBrowserRecorder([](const QString&) {});
    shell::RegisterMainWindow();
    appearance::RegisterForms();
    inventory::RegisterMenuForm();
    database::RegisterLookupForm();
    contribution::RegisterImproveForm();
    updating::RegisterUpdateForm();
}

shell::FrmMain* ShowMainWindow() {
    auto* window = static_cast<shell::FrmMain*>(forms::Forms::Instance().Shared(QStringLiteral("FrmMain")));
    window->Show();
    return window;
}

bool IsDone(const shell::FrmMain& window) { return window.LabelStatus->Caption() == QLatin1String("Status: Done"); }

bool WaitForFirstScan(const shell::FrmMain& window) {
    QElapsedTimer waited;
    for (waited.start(); !IsDone(window); base::YieldBlocking(5)) {
        if (waited.hasExpired(10'000))
            return false;
    }
    return true;
}

} // namespace bench
