#include "database/frm_lookup.h"

#include "appearance/colour_table.h"
#include "appearance/skin.h"
#include "appearance/window_effects.h"
#include "base/text.h"
#include "base/yield.h"
#include "controls/anchor.h"
#include "controls/animation_bar.h"
#include "controls/dc_button.h"
#include "controls/titel_bar.h"
#include "database/matching.h"
#include "forms/forms.h"
#include "forms/label.h"
#include "forms/picture_box.h"
#include "forms/text_box.h"
#include "forms/timer.h"
#include "inventory/column_sizes.h"
#include "inventory/list_actions.h"
#include "inventory/list_behaviour.h"
#include "suite/list_view.h"
#include "values/program_values.h"
#include "window/design.h"
#include "window/form_icon.h"
#include "window/placement.h"

namespace database {

namespace {

using window::MakeLabel;
using window::Place;

// Twips.
constexpr double leastHeight = 5340;
constexpr double leastWidth = 8520;
constexpr double columnWidth = 1500;

} // namespace

FrmLookup::FrmLookup() : forms::Form(QStringLiteral("FrmLookup"), leastWidth, leastHeight) {
    SetCaption(QStringLiteral("Device Lookup"));
    CreateControls();
    Connect();
}

void FrmLookup::CreateControls() {
    QWidget* client = Client();
    Anchor1 = new controls::Anchor(this, QStringLiteral("Anchor1"));
    TitelBar1 = window::MakeTitelBar(client, leastWidth);
    ImportantLabelName =
        Place(MakeLabel(client, "ImportantLabelName", "Device:"), 150, 570, 8220, 285, window::FollowWidth);
    LabelHardwareID =
        Place(MakeLabel(client, "LabelHardwareID", "Hardware IDs:"), 150, 870, 8220, 270, window::FollowWidth);
    TextID = Place(new forms::TextBox(client, QStringLiteral("TextID")), 150, 1140, 8220, 1155, window::FollowWidth);
    TextID->SetAccessibleLabel(QStringLiteral("Hardware IDs"));
    CommandSearchGoogleID =
        Place(window::MakeButton(client, "CommandSearchGoogleID", "Search Google For Drivers (By These Hardware IDs)"),
              150, 2370, 5400, 420);
    LabelPossible =
        Place(MakeLabel(client, "LabelPossible", "Possible Matches:"), 150, 2850, 8220, 270, window::FollowWidth);
    LabelListViewHardware = Place(new suite::ListView(client, QStringLiteral("LabelListViewHardware")), 150, 3120, 8220,
                                  1470, window::Stretch);
    LabelListViewHardware->SetAccessibleLabel(QStringLiteral("Possible Matches"));
    ImportantPictureBestMacthColor =
        Place(new forms::PictureBox(client, QStringLiteral("ImportantPictureBestMacthColor")), 150, 4695, 210, 210,
              window::BottomLeft);
    ImportantPictureBestMacthColor->SetBackColor(base::Colour(0x00FFFF00));
    ImportantPictureBestMacthColor->setAccessibleName(QStringLiteral("Color Of The Best Possible Match"));
    ImportantLabel2 =
        Place(MakeLabel(client, "ImportantLabel2", "- Best Possible Match"), 420, 4665, 3000, 270, window::BottomLeft);
    InfoLabel1 = Place(MakeLabel(client, "InfoLabel1", "*Right Click On List For More Options"), 3600, 4665, 4770, 270,
                       window::BottomWide);
    InfoLabel1->SetAlignment(forms::Label::AlignRight);
    LabelStatus = Place(MakeLabel(client, "LabelStatus", "Status:"), 150, 4980, 4800, 270, window::BottomWide);
    DB1 = Place(new controls::AnimationBar(client, QStringLiteral("DB1")), 5100, 5010, 3000, 210, window::BottomRight);
    LabelResize = window::MakeGrip(client, leastWidth, leastHeight);
    TimerStart = new forms::Timer(this, QStringLiteral("TimerStart"), 100, false);
    TimerStatus = new forms::Timer(this, QStringLiteral("TimerStatus"), 250, false);
}

void FrmLookup::Connect() {
    connect(TimerStart, &forms::Timer::Tick, this, &FrmLookup::TimerStart_Tick);
    connect(TimerStatus, &forms::Timer::Tick, this, &FrmLookup::TimerStatus_Tick);
    connect(CommandSearchGoogleID, &controls::dcButton::Click, this, &FrmLookup::CommandSearchGoogleID_Click);
    connect(ImportantPictureBestMacthColor, &forms::PictureBox::BackColorChanged, this, &FrmLookup::SampleChanged);
    inventory::ConnectList(*LabelListViewHardware, QStringLiteral("MenuLookup"), this);
    connect(Anchor1, &controls::Anchor::AfterResize, this, [this] { window::DrawFrame(*this); });
    window::ConnectGrip(*this, *LabelResize);
}

void FrmLookup::Load() {
    if (values::ProgramClosing()) {
        Unload();
        return;
    }
    window::OpenAtLeastSize(*this, *Anchor1, *LabelResize, leastWidth, leastHeight);
    appearance::ApplyColorsToForm(this);
    window::SetFormIcon(*this, QStringLiteral("AAA"), true);
    window::SetUpTitle(*this, *TitelBar1);
    suite::ListItems& items = LabelListViewHardware->ListItems();
    items.AddColumn(QStringLiteral("Name"), QStringLiteral("Name"), columnWidth);
    items.AddColumn(QStringLiteral("Manufacturer"), QStringLiteral("Manufacturer"), columnWidth);
    items.AddColumn(QStringLiteral("HardwareIDs"), QStringLiteral("Hardware IDs"), columnWidth);
    items.AddColumn(QStringLiteral("L"), QStringLiteral("L"), 0);
    SortByLength();
    appearance::MakeWindowColorKeyed(this, TitelBar1->BackColor());
}

// The longest ID, which names the closest relative, on top.
void FrmLookup::SortByLength() {
    LabelListViewHardware->SetSorted(false);
    LabelListViewHardware->SetSortKey(LengthColumn);
    LabelListViewHardware->SetSortOrder(int(suite::SortOrder::Descending));
    LabelListViewHardware->SetSorted(true);
}

// The search. A window that was closed meanwhile stays in being until this has ended, so nothing here asks for it.
void FrmLookup::TimerStart_Tick() {
    TimerStart->SetEnabled(false);
    TimerStatus->SetEnabled(false);
    LabelStatus->SetCaption(QStringLiteral("Status: Searching..."));
    base::Yield();
    suite::ListItems& rows = LabelListViewHardware->ListItems();
    DB1->SetStyle(controls::AnimationBar::Bouncy);
    DB1->BeginDisplay();
    LabelListViewHardware->SetVisible(false);
    rows.Clear();
    base::Yield();
    FindMatches(MatchQuery(TextID->Text()), rows);
    if (values::ProgramClosing())
        return;
    MarkBestMatches(rows, [this](suite::ListItem& row) { Mark(row); });
    inventory::AutoSizeColumnsButLast(*LabelListViewHardware);
    base::Yield();
    SortByLength();
    if (!IsUnloaded())
        TimerStatus->SetEnabled(true);
    LabelListViewHardware->SetVisible(true);
    DB1->EndDisplay();
    base::Yield();
}

void FrmLookup::Mark(suite::ListItem& row) {
    const base::Colour best = ImportantPictureBestMacthColor->BackColor();
    row.SetForeColor(best);
    row.SetSubItemForeColor(ManufacturerColumn, best);
    row.SetSubItemForeColor(HardwareIdColumn, best);
}

// The best matches follow a change of the scheme. On its way to its colour the sample has the window's for a moment.
void FrmLookup::SampleChanged() {
    if (ImportantPictureBestMacthColor->BackColor() != appearance::ColorOf(appearance::ImportantText))
        return;
    suite::ListItems& rows = LabelListViewHardware->ListItems();
    for (int i = 1; i <= rows.Count(); ++i)
        if (rows.Item(i)->CellForeColor(0))
            Mark(*rows.Item(i));
}

void FrmLookup::TimerStatus_Tick() { LabelStatus->SetCaption(ResultsText(LabelListViewHardware->ListItems().Count())); }

void FrmLookup::CommandSearchGoogleID_Click() {
    const QString ids = TextID->Text();
    const QString first = base::Split(ids, QStringLiteral("\r\n")).value(0);
    inventory::SearchFor(this, first.isEmpty() ? ids : first);
}

void FrmLookup::Resize() { window::FollowResize(*this, *TitelBar1, *LabelResize); }

void RegisterLookupForm() {
    forms::Forms::Instance().RegisterMaker(QStringLiteral("FrmLookup"), [] { return std::make_unique<FrmLookup>(); });
}

} // namespace database
