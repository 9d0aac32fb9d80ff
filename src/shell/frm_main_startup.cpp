// What the main window does by itself: the one-shot start-up work and the re-reading of a replaced database.
#include "base/yield.h"
#include "controls/animation_bar.h"
#include "controls/dc_button.h"
#include "controls/panel_fx.h"
#include "database/store.h"
#include "forms/label.h"
#include "forms/timer.h"
#include "shell/frm_main.h"
#include "updating/update_check.h"
#include "values/program_values.h"

namespace shell {

void FrmMain::SetMainButtonsEnabled(bool enabled) {
    CommandGetHardware->SetEnabled(enabled);
    CommandImproveHardware->SetEnabled(enabled);
    CommandCheckForUpdates->SetEnabled(enabled);
}

void FrmMain::BeginProgress() {
    PanelProgress->SetVisible(true);
    DB1->SetStyle(controls::AnimationBar::Bouncy);
    DB1->BeginDisplay();
}

void FrmMain::EndProgress() {
    PanelProgress->SetVisible(false);
    DB1->EndDisplay();
}

void FrmMain::BeginDatabaseWork(const QString& status) {
    SetMainButtonsEnabled(false);
    LabelStatus->SetCaption(status);
    BeginProgress();
    base::Yield();
}

bool FrmMain::OpenDatabase() {
    database::OpenDeviceDatabase();
    base::Yield();
    database::ReadVersionAndCount();
    if (values::ProgramClosing())
        return false;
    LabelTotalDevices->SetCaption(database::DeviceCountCaption());
    LabelDatabaseVersion->SetCaption(database::DatabaseVersionCaption());
    return true;
}

void FrmMain::CheckForDatabaseUpdateSilent() {
    updating::CheckForDatabaseUpdateSilent(*Inet2, LabelDatabaseVersion->Caption(), [this](bool visible) {
        ImportantLabelUpdateAvailable->SetVisible(visible);
    });
}

void FrmMain::TimerStartup_Tick() {
    TimerStartup->SetEnabled(false);
    BeginDatabaseWork(QStringLiteral("Status: Reading Database Version && Device Count From hwids.mdb"));
    if (values::ProgramClosing() || !OpenDatabase())
        return;
    base::Yield();
    if (values::Program().CheckForUpdatesAtStart)
        CheckForDatabaseUpdateSilent();
    base::Yield();
    if (values::ProgramClosing())
        return;
    EndProgress();
    base::Yield();
    if (!values::ProgramClosing())
        CommandGetHardware_Click();
}

void FrmMain::TimerCountDatabase_Tick() {
    TimerCountDatabase->SetEnabled(false);
    // The text is fixed, the file's other ending included.
    BeginDatabaseWork(QStringLiteral("Status: Reading Database Version && Device Count From hwids.dat"));
    if (values::ProgramClosing())
        return;
    database::CloseDeviceDatabase();
    base::Yield();
    if (!OpenDatabase())
        return;
    // Come in the middle of a scan, it leaves buttons and progress to the scan's end.
    if (!Scanning) {
        EndProgress();
        SetMainButtonsEnabled(true);
    }
    base::Yield();
}

} // namespace shell
