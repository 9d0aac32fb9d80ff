#include "shell/frm_main.h"

#include "base/yield.h"
#include "controls/dc_button.h"
#include "controls/panel_fx.h"
#include "controls/size_move_helper.h"
#include "controls/titel_bar.h"
#include "database/store.h"
#include "forms/desktop.h"
#include "forms/dialogs.h"
#include "forms/forms.h"
#include "forms/label.h"
#include "forms/timer.h"
#include "inventory/column_sizes.h"
#include "inventory/device_lists.h"
#include "inventory/device_scan.h"
#include "inventory/open_lookup.h"
#include "shell/close_programs.h"
#include "suite/list_view.h"
#include "suite/tab_control.h"
#include "values/addresses.h"
#include "values/program_values.h"
#include "window/design.h"
#include "window/placement.h"

#include <QScopedValueRollback>

namespace shell {

FrmMain::FrmMain() : forms::Form(QStringLiteral("FrmMain"), mainWidth, mainHeight) {
    CreateControls();
    Connect();
}

FrmMain::~FrmMain() = default;

std::array<suite::ListView*, tabCount> FrmMain::Lists() const {
    return {ListViewHardware, ListViewNoDrivers, ListViewProblems, ListViewNoSystemDevices};
}

suite::ListView* FrmMain::SelectedList() const {
    suite::ListView* selected = nullptr;
    for (int tab = 0; tab < tabCount; ++tab)
        if (TabControl1->Item(tab)->Selected())
            selected = Lists()[size_t(tab)];
    return selected;
}

void FrmMain::SetTabCaption(int tab, qint32 count) {
    suite::TabItem* item = TabControl1->Item(tab);
    item->SetCaption(inventory::DeviceListCaption(item->Tag(), count));
}

void FrmMain::Timer1_Tick() {
    for (int tab = 0; tab < tabCount; ++tab) {
        const qint32 count = Lists()[size_t(tab)]->ListItems().Count();
        qint32& shown = ShownCount[size_t(tab)];
        if (count == shown)
            continue;
        shown = count;
        SetTabCaption(tab, count);
    }
    base::Yield();
}

void FrmMain::ClearListsForScan() {
    for (suite::ListView* list : Lists()) {
        list->SetSorted(false);
        list->SetVisible(false);
        list->ListItems().Clear();
    }
    SetMainButtonsEnabled(false);
    base::Yield();
    for (int tab = 0; tab < tabCount; ++tab) {
        ShownCount[size_t(tab)] = 0;
        SetTabCaption(tab, 0);
    }
    base::Yield();
}

void FrmMain::CommandGetHardware_Click() {
    if (values::ProgramClosing() || Scanning)
        return;
    const QScopedValueRollback scanning(Scanning, true);
    window::CentreOver(*PanelProgress, *ListViewHardware);
    Timer1->SetEnabled(false);
    LabelStatus->SetCaption(QStringLiteral("Status:"));
    BeginProgress();
    ClearListsForScan();
    if (values::ProgramClosing())
        return;
    inventory::DeviceScan(ListViewHardware->ListItems(), ListViewNoDrivers->ListItems(), ListViewProblems->ListItems(),
                          ListViewNoSystemDevices->ListItems(),
                          [this](const QString& caption) { LabelStatus->SetCaption(caption); });
    if (values::ProgramClosing())
        return;
    base::Yield();
    for (suite::ListView* list : Lists())
        list->SetSorted(true);
    base::Yield();
    for (suite::ListView* list : Lists())
        inventory::AutoSizeColumns(*list);
    base::Yield();
    for (suite::ListView* list : Lists())
        list->SetVisible(true);
    SetMainButtonsEnabled(true);
    EndProgress();
    Timer1->SetEnabled(true);
    base::Yield();
}

void FrmMain::CommandImproveHardware_Click() {
    if (forms::Form* improve = forms::Forms::Instance().Shared(QStringLiteral("FrmImprove"))) {
        improve->Show();
        improve->SetFocus();
    }
    base::Yield();
}

void FrmMain::CommandColors_Click() {
    if (forms::Form* colours = forms::Forms::Instance().Shared(QStringLiteral("FrmColors"))) {
        colours->Show();
        colours->SetFocus();
    }
    base::Yield();
}

void FrmMain::CommandCheckForUpdates_Click() {
    if (forms::Form* update = forms::Forms::Instance().Shared(QStringLiteral("FrmUpdate"))) {
        update->Show();
        update->SetFocus();
        if (auto* timer = update->Find<forms::Timer>(QStringLiteral("TimerCheckForUpdates")))
            timer->SetEnabled(true);
    }
    base::Yield();
}

void FrmMain::dcButton1_Click() {
    suite::ListView* list = SelectedList();
    if (list != nullptr && list->ListItems().Count() != 0)
        OpenLookup(list);
}

void FrmMain::ImageLogo_Click(int index) {
    const values::Addresses& addresses = values::ServerAddresses();
    const std::array<QString, logoCount> pages = {addresses.WebSite, addresses.SocialPage1, addresses.SocialPage2};
    if (index >= 0 && index < logoCount)
        forms::ShellExecuteA(this, pages[size_t(index)]);
}

void FrmMain::OpenLookup(suite::ListView* list) {
    if (const suite::ListItem* item = list->SelectedItem())
        inventory::OpenLookup(*item);
}

void FrmMain::Resize() { window::FollowResize(*this, *TitelBar1, *LabelResize); }

void FrmMain::Anchor1_AfterResize() {
    window::CentreOver(*PanelProgress, *ListViewHardware);
    window::DrawFrame(*this);
}

void FrmMain::Closing() {
    if (m_c) {
        m_c->SetNoFullDrag(false);
        m_c->Detach();
    }
    values::Program().ProgramClosing = true;
    // A request from outside comes through a dialog's own loop, and the process cannot end before that does.
    forms::EndDialogs();
    database::CloseDeviceDatabase();
    base::Yield();
    ClosePrograms();
}

void RegisterMainWindow() {
    forms::Forms::Instance().RegisterMaker(QStringLiteral("FrmMain"), [] { return std::make_unique<FrmMain>(); });
}

} // namespace shell
