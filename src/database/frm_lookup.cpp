#include "database/frm_lookup.h"

#include "appearance/skin.h"
#include "appearance/window_effects.h"
#include "base/text.h"
#include "base/yield.h"
#include "controls/anchor.h"
#include "controls/animation_bar.h"
#include "controls/dc_button.h"
#include "controls/titel_bar.h"
#include "database/matching.h"
#include "forms/dialogs.h"
#include "forms/forms.h"
#include "forms/label.h"
#include "forms/picture_box.h"
#include "forms/text_box.h"
#include "forms/timer.h"
#include "inventory/column_sizes.h"
#include "inventory/frm_menu.h"
#include "inventory/list_actions.h"
#include "inventory/list_behaviour.h"
#include "suite/list_view.h"
#include "values/program_values.h"
#include "window/form_icon.h"
#include "window/icon_resource.h"
#include "window/placement.h"

namespace database {

namespace {

constexpr double leastHeight = 5340; // twips
constexpr double leastWidth = 8520;
constexpr double columnWidth = 1500;
constexpr int bouncyStyle = 4;
constexpr int descending = 1;
constexpr base::Colour windowKey = base::Colour::FromRgb(0xF8, 0xB8, 0xF7);
constexpr int wholeWindowCover = 32767; // twips

template <typename Control>
Control* Place(Control* control, double left, double top, double width, double height, const char* anchor = "") {
    control->Move(left, top, width, height);
    control->SetTag(QLatin1String(anchor));
    return control;
}

} // namespace

FrmLookup::FrmLookup() : forms::Form(QStringLiteral("FrmLookup"), leastWidth, leastHeight) {
    SetCaption(QStringLiteral("Device Lookup"));
    CreateControls();
    Connect();
}

// The design of the window. Anchor letters: left, top, right, bottom.
void FrmLookup::CreateControls() {
    QWidget* client = Client();
    const auto label = [client](const char* name, const char* caption) {
        return new forms::Label(client, QLatin1String(name), QLatin1String(caption));
    };
    Anchor1 = new controls::Anchor(this, QStringLiteral("Anchor1"));
    TitelBar1 = Place(new controls::TitelBar(client, QStringLiteral("TitelBar1")), 0, 0, leastWidth, 480);
    TitelBar1->InitProperties();
    TitelBar1->SetBackColor(windowKey);
    TitelBar1->SetBackColorCover(wholeWindowCover);
    TitelBar1->SetShowMaximized(true);
    TitelBar1->SetShowMaximizedEnabled(true);
    TitelBar1->SetCaption(QStringLiteral("Device Lookup"));

    ImportantLabelName = Place(label("ImportantLabelName", "Device:"), 150, 570, 8220, 285, "TTTF*/");
    LabelHardwareID = Place(label("LabelHardwareID", "Hardware IDs:"), 150, 870, 8220, 270, "TTTF*/");
    TextID = Place(new forms::TextBox(client, QStringLiteral("TextID")), 150, 1140, 8220, 1080, "TTTF*/");
    CommandSearchGoogleID =
        Place(new controls::dcButton(client, QStringLiteral("CommandSearchGoogleID")), 150, 2310, 5400, 420, "TTFF*/");
    CommandSearchGoogleID->InitProperties();
    CommandSearchGoogleID->SetCaption(QStringLiteral("Search Google For Drivers (By These Hardware IDs)"));
    LabelPossible = Place(label("LabelPossible", "Possible Matches:"), 150, 2820, 8220, 270, "TTTF*/");
    LabelListViewHardware =
        Place(new suite::ListView(client, QStringLiteral("LabelListViewHardware")), 150, 3090, 8220, 1500, "TTTT*/");
    LabelListViewHardware->SetAccessibleLabel(QStringLiteral("Possible Matches"));
    ImportantPictureBestMacthColor = Place(
        new forms::PictureBox(client, QStringLiteral("ImportantPictureBestMacthColor")), 150, 4695, 210, 210, "TFFT*/");
    ImportantPictureBestMacthColor->SetBackColor(base::Colour(0x00FFFF00));
    ImportantLabel2 = Place(label("ImportantLabel2", "- Best Possible Match"), 420, 4665, 3000, 270, "TFFT*/");
    InfoLabel1 = Place(label("InfoLabel1", "*Right Click On List For More Options"), 3600, 4665, 4770, 270, "TFTT*/");
    InfoLabel1->SetAlignment(forms::Label::AlignRight);
    LabelStatus = Place(label("LabelStatus", "Status:"), 150, 4980, 4800, 270, "TFTT*/");
    DB1 = Place(new controls::AnimationBar(client, QStringLiteral("DB1")), 5100, 5010, 3000, 210, "FFTT*/");
    LabelResize = Place(label("LabelResize", "o"), leastWidth - 270, leastHeight - 270, 270, 270, "FFTT*/");
    LabelResize->SetGrip(true);
    TimerStart = new forms::Timer(this, QStringLiteral("TimerStart"), 100, false);
    TimerStatus = new forms::Timer(this, QStringLiteral("TimerStatus"), 250, false);
}

void FrmLookup::Connect() {
    connect(TimerStart, &forms::Timer::Tick, this, &FrmLookup::TimerStart_Tick);
    connect(TimerStatus, &forms::Timer::Tick, this, &FrmLookup::TimerStatus_Tick);
    connect(CommandSearchGoogleID, &controls::dcButton::Click, this, &FrmLookup::CommandSearchGoogleID_Click);
    connect(LabelListViewHardware, &suite::ListView::ColumnClick, this,
            [this](int column) { inventory::ClickColumn(*LabelListViewHardware, column); });
    connect(LabelListViewHardware, &suite::ListView::KeyDown, this,
            [this](int keyCode) { inventory::DeleteKey(*LabelListViewHardware, keyCode); });
    connect(LabelListViewHardware, &suite::ListView::MouseUp, this, &FrmLookup::List_MouseUp);
    connect(Anchor1, &controls::Anchor::AfterResize, this, [this] { window::DrawFrame(*this); });
    window::ConnectGrip(*this, *LabelResize);
}

void FrmLookup::Load() {
    if (values::ProgramClosing()) {
        Unload();
        return;
    }
    Anchor1->SetMinHeight(int(leastHeight));
    Anchor1->SetMinWidth(int(leastWidth));
    SetHeight(leastHeight);
    SetWidth(leastWidth);
    window::CentreOnScreen(*this);
    window::PlaceGrip(*this, *LabelResize);
    window::SetFormIcon(*this, QStringLiteral("AAA"), true);
    const int size = window::TitleIconSize();
    TitelBar1->SetPicture(window::LoadIconFromRes(QStringLiteral("AAA"), size, size, 0, false));
    TitelBar1->SetWidth(Width());
    appearance::ApplyColorsToForm(this);
    suite::ListItems& items = LabelListViewHardware->ListItems();
    items.AddColumn(QStringLiteral("Name"), QStringLiteral("Name"), columnWidth);
    items.AddColumn(QStringLiteral("Manufacturer"), QStringLiteral("Manufacturer"), columnWidth);
    items.AddColumn(QStringLiteral("HardwareIDs"), QStringLiteral("Hardware IDs"), columnWidth);
    items.AddColumn(QStringLiteral("L"), QStringLiteral("L"), 0);
    LabelListViewHardware->SetSortKey(LengthColumn);
    LabelListViewHardware->SetSortOrder(descending);
    LabelListViewHardware->SetSorted(true);
    appearance::MakeWindowColorKeyed(this, TitelBar1->BackColor());
}

void FrmLookup::TimerStart_Tick() {
    TimerStart->SetEnabled(false);
    TimerStatus->SetEnabled(false);
    LabelStatus->SetCaption(QStringLiteral("Status: Searching..."));
    base::Yield();
    suite::ListItems& rows = LabelListViewHardware->ListItems();
    DB1->SetStyle(bouncyStyle);
    DB1->BeginDisplay();
    LabelListViewHardware->SetVisible(false);
    rows.Clear();
    base::Yield();
    FindMatches(MatchQuery(TextID->Text()), rows);
    if (values::ProgramClosing())
        return;
    const base::Colour best = ImportantPictureBestMacthColor->BackColor();
    MarkBestMatches(rows, [best](suite::ListItem& row) {
        row.SetForeColor(best);
        row.SetSubItemForeColor(ManufacturerColumn, best);
        row.SetSubItemForeColor(HardwareIdColumn, best);
    });
    inventory::AutoSizeColumnsButLast(*LabelListViewHardware);
    base::Yield();
    LabelListViewHardware->SetSorted(false);
    LabelListViewHardware->SetSortKey(LengthColumn);
    LabelListViewHardware->SetSortOrder(descending);
    LabelListViewHardware->SetSorted(true);
    if (!IsUnloaded())
        TimerStatus->SetEnabled(true);
    LabelListViewHardware->SetVisible(true);
    DB1->EndDisplay();
    base::Yield();
}

void FrmLookup::TimerStatus_Tick() { LabelStatus->SetCaption(ResultsText(LabelListViewHardware->ListItems().Count())); }

void FrmLookup::CommandSearchGoogleID_Click() {
    const QString ids = TextID->Text();
    const QString first = base::Split(ids, QStringLiteral("\r\n")).value(0);
    inventory::SearchFor(this, first.isEmpty() ? ids : first);
}

void FrmLookup::List_MouseUp(int button) {
    if (button != forms::RightButton)
        return;
    if (LabelListViewHardware->ListItems().Count() != 0) {
        inventory::SetActiveListForm(this);
        inventory::PopupListMenu(QStringLiteral("MenuLookup"));
    } else {
        forms::MsgBox(QStringLiteral("The List Is Empty."));
    }
}

void FrmLookup::Resize() {
    TitelBar1->SetWidth(Width());
    LabelResize->SetVisible(!TitelBar1->Maximised());
}

void RegisterLookupForm() {
    forms::Forms::Instance().RegisterMaker(QStringLiteral("FrmLookup"), [] { return std::make_unique<FrmLookup>(); });
}

} // namespace database
