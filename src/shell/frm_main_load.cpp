// The load of the main window, step by step; the order is what the windows and settings rely on.
#include "appearance/frm_colors.h"
#include "appearance/skin.h"
#include "appearance/window_effects.h"
#include "base/yield.h"
#include "controls/anchor.h"
#include "controls/panel_fx.h"
#include "controls/size_move_helper.h"
#include "controls/titel_bar.h"
#include "forms/desktop_watch.h"
#include "forms/forms.h"
#include "forms/label.h"
#include "forms/screen.h"
#include "forms/timer.h"
#include "inventory/column_sizes.h"
#include "inventory/device_lists.h"
#include "shell/close_programs.h"
#include "shell/frm_main.h"
#include "shell/logo_badges.h"
#include "suite/alpha_image.h"
#include "suite/list_view.h"
#include "suite/tab_control.h"
#include "values/program_values.h"
#include "values/settings.h"
#include "window/design.h"
#include "window/form_icon.h"
#include "window/measure_dpi.h"
#include "window/placement.h"

namespace shell {

namespace {

constexpr int pixelScale = 3;      // a scale mode
constexpr int systemFolderId = 37; // CSIDL_SYSTEM
constexpr int logoOpacity = 99;    // per cent
constexpr double tabMetric = 16;   // pixels at a display scale of 1

QString WithBackslash(QString folder) {
    if (!folder.endsWith(u'\\'))
        folder.append(u'\\');
    return folder;
}

} // namespace

void FrmMain::Load() {
    if (values::ProgramClosing()) {
        ClosePrograms();
        return;
    }
    values::ProgramValues& program = values::Program();
    window::SetFormIcon(*this, QStringLiteral("AAA"), true);
    base::Yield();
    window::MeasureDpi();
    Anchor1->SetMinHeight(int(mainHeight));
    Anchor1->SetMinWidth(int(mainWidth));
    SetHeight(mainHeight);
    SetWidth(mainWidth);
    base::Yield();
    program.ShadowDisabled = values::ReadFlag(QStringLiteral("main"), QStringLiteral("CheckDisableShadow"));
    program.ShadowEnabled = !program.ShadowDisabled;
    base::Yield();
    appearance::InitShadow();
    connect(&forms::SharedDesktopWatch(), &forms::DesktopWatch::CompositingChanged, this, &appearance::RenewShadows);
    window::PlaceGrip(*this, *LabelResize);
    SetCaption(QStringLiteral("Brindlex - Quorvane v") + values::BuiltVersion());
    base::Yield();
    if (forms::Form* colours = forms::Forms::Instance().Shared(QStringLiteral("FrmColors")))
        colours->Hide();
    base::Yield();
    window::CentreOnScreen(*this);
    program.ProgramVersion = values::BuiltVersion();
    window::SetUpTitle(*this, *TitelBar1);
    base::Yield();
    SetAutoRedraw(true);
    SetScaleMode(pixelScale);
    appearance::MakeWindowColorKeyed(this, TitelBar1->BackColor());
    m_c = std::make_unique<controls::cSizeMoveHelper>();
    m_c->SetNoFullDrag(true);
    m_c->Attach(this);
    base::Yield();
    appearance::ApplyColorsToForm(this);
    program.CheckForUpdatesAtStart = values::ReadFlag(QStringLiteral("main"), QStringLiteral("CheckForUpdates"));
    program.SystemFolder = WithBackslash(appearance::GetSpecialFolder(systemFolderId));
    base::Yield();
    SetUpLists();
    window::CentreOver(*PanelProgress, *ListViewHardware);
    SetUpLogos();
    SetUpTabs();
    Show();
    base::Yield();
    // Closed in one of the yields: what the steps behind it have made must go too, or the process would stay.
    if (values::ProgramClosing()) {
        ClosePrograms();
        return;
    }
    TimerStartup->SetEnabled(true);
}

void FrmMain::SetUpLists() {
    FitLists();
    const int iconSize = forms::GetSystemMetrics(forms::SmallIconWidth);
    for (suite::ListView* list : Lists()) {
        list->SetIconSize(iconSize);
        inventory::AddDeviceColumns(list->ListItems());
        base::Yield();
    }
    for (suite::ListView* list : Lists()) {
        inventory::SortByName(list->ListItems());
        base::Yield();
    }
    inventory::AutoSizeColumns(*ListViewHardware);
}

// The room on the pages depends on the font and the metrics of the tab strip; later the anchor keeps the lists in step.
void FrmMain::FitLists() {
    for (suite::ListView* list : Lists())
        list->setGeometry(QRect(QPoint(0, 0), TabControl1->PaneRect().size()));
}

void FrmMain::SetUpLogos() {
    const auto* colours = forms::Forms::Instance().Find(QStringLiteral("FrmColors"));
    const auto* holder =
        colours == nullptr ? nullptr : colours->Find<suite::AlphaImgCtl>(QStringLiteral("aicAlphaImage1"));
    if (holder == nullptr)
        return;
    for (size_t i = 0; i < ImageLogo.size(); ++i) {
        ImageLogo[i]->SetPicture(WithBadge(holder->Picture(), int(i)));
        ImageLogo[i]->SetOpacity(logoOpacity);
    }
    base::Yield();
}

void FrmMain::SetUpTabs() {
    const double metric = tabMetric * double(values::Program().DpiScale);
    TabControl1->PaintManager()->SetEnlarged(true);
    TabControl1->PaintManager()->SetFont(TabControl1->font());
    TabControl1->PaintManager()->SetItemMetrics(int(metric), int(metric));
    TabControl1->Item(0)->SetSelected(true);
    FitLists();
    window::CentreOver(*PanelProgress, *ListViewHardware);
    base::Yield();
}

} // namespace shell
