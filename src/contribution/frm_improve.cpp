#include "contribution/frm_improve.h"

#include "appearance/skin.h"
#include "appearance/window_effects.h"
#include "base/paths.h"
#include "base/text.h"
#include "base/yield.h"
#include "contribution/improve_filters.h"
#include "contribution/improve_scan.h"
#include "contribution/upload_file.h"
#include "controls/anchor.h"
#include "controls/animation_bar.h"
#include "controls/dc_button.h"
#include "controls/panel_fx.h"
#include "controls/titel_bar.h"
#include "database/additions.h"
#include "database/submission_scope.h"
#include "forms/dialogs.h"
#include "forms/forms.h"
#include "forms/label.h"
#include "forms/text_box.h"
#include "forms/timer.h"
#include "inventory/column_sizes.h"
#include "inventory/frm_menu.h"
#include "inventory/list_behaviour.h"
#include "suite/list_box.h"
#include "suite/list_view.h"
#include "values/addresses.h"
#include "values/program_values.h"
#include "window/form_icon.h"
#include "window/icon_resource.h"
#include "window/placement.h"

#include <QFile>

namespace contribution {

namespace {

constexpr double leastHeight = 8715; // twips
constexpr double leastWidth = 8520;
constexpr double columnWidth = 1500;
constexpr int bouncyStyle = 4;
constexpr int ascending = 0;
constexpr qint64 longestKeywordFile = 1024 * 1024; // bytes

QString SubmissionPath() { return values::ProgramFolder() + QStringLiteral("\\new_hardware.txt"); }

QString KeywordPath() { return values::ProgramFolder() + QStringLiteral("\\improve_database_keywords_to_skip.txt"); }

QString UploadUrl() {
    return values::ServerAddresses().UploadHost + QStringLiteral("/files/hardware_ids/upload_hardware_id_v1.php");
}

QString LineOf(const suite::ListItem& row) {
    return ContributionLine(base::Trim(row.CellText(HardwareIdColumn)), base::Trim(row.Text()),
                            base::Trim(row.CellText(ManufacturerColumn)));
}

} // namespace

FrmImprove::FrmImprove() : forms::Form(QStringLiteral("FrmImprove"), leastWidth, leastHeight) {
    SetCaption(QStringLiteral("Improve Database"));
    CreateControls();
    Connect();
}

void FrmImprove::Connect() {
    connect(CommandGetHardware, &controls::dcButton::Click, this, &FrmImprove::CommandGetHardware_Click);
    connect(CommandSaveSubmit, &controls::dcButton::Click, this, &FrmImprove::CommandSaveSubmit_Click);
    connect(Timer1, &forms::Timer::Tick, this, &FrmImprove::Timer1_Tick);
    connect(TimerStatus, &forms::Timer::Tick, this, &FrmImprove::TimerStatus_Tick);
    connect(ListViewHardware, &suite::ListView::ColumnClick, this,
            [this](int column) { inventory::ClickColumn(*ListViewHardware, column); });
    connect(ListViewHardware, &suite::ListView::KeyDown, this,
            [this](int keyCode) { inventory::DeleteKey(*ListViewHardware, keyCode); });
    connect(ListViewHardware, &suite::ListView::MouseUp, this, &FrmImprove::List_MouseUp);
    connect(Anchor1, &controls::Anchor::AfterResize, this, [this] {
        window::CentreOver(*PanelProgress, *ListViewHardware);
        window::DrawFrame(*this);
    });
    window::ConnectGrip(*this, *LabelResize);
}

void FrmImprove::Load() {
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
    TitelBar1->SetCaption(Caption());
    TitelBar1->SetWidth(Width());
    appearance::ApplyColorsToForm(this);
    window::CentreOver(*PanelProgress, *ListViewHardware);
    suite::ListItems& items = ListViewHardware->ListItems();
    items.AddColumn(QStringLiteral("Name"), QStringLiteral("Name"), columnWidth);
    items.AddColumn(QStringLiteral("Manufacturer"), QStringLiteral("Manufacturer"), columnWidth);
    items.AddColumn(QStringLiteral("HardwareIDs"), QStringLiteral("Hardware IDs"), columnWidth);
    ListViewHardware->SetSortKey(0);
    ListViewHardware->SetSortOrder(ascending);
    ListViewHardware->SetSorted(true);
    ReadKeywords();
    appearance::MakeWindowColorKeyed(this, TitelBar1->BackColor());
}

// A line of blanks is a keyword like any other; an empty one is none.
void FrmImprove::ReadKeywords() {
    QFile file(base::NativePath(KeywordPath()));
    if (!file.open(QIODevice::ReadOnly))
        return;
    const QString text = base::FromAnsi(file.read(longestKeywordFile));
    for (QString line : base::Split(text, QStringLiteral("\n"))) {
        if (line.endsWith(u'\r'))
            line.chop(1);
        if (!line.isEmpty())
            List1->AddItem(line);
    }
}

void FrmImprove::BeginWork(controls::dcButton* button) {
    window::CentreOver(*PanelProgress, *ListViewHardware);
    button->SetEnabled(false);
    LabelStatus->SetCaption(QStringLiteral("Status:"));
    PanelProgress->SetVisible(true);
    DB1->SetStyle(bouncyStyle);
    DB1->BeginDisplay();
    ListViewHardware->SetVisible(false);
}

void FrmImprove::EndWork() {
    StatusText = QStringLiteral("Done.");
    ListViewHardware->SetVisible(true);
    PanelProgress->SetVisible(false);
    DB1->EndDisplay();
    base::Yield();
}

void FrmImprove::CommandGetHardware_Click() {
    BeginWork(CommandGetHardware);
    ListViewHardware->ListItems().Clear();
    base::Yield();
    ImproveScan(ListViewHardware->ListItems(), [this](const QString& caption) { LabelStatus->SetCaption(caption); });
    StatusText = QStringLiteral("Searching...");
    if (!IsUnloaded())
        TimerStatus->SetEnabled(true);
    base::Yield();
    RemoveKnownRows();
    inventory::AutoSizeColumns(*ListViewHardware);
    base::Yield();
    if (ListViewHardware->ListItems().Count() != 0)
        CommandSaveSubmit->SetEnabled(true);
    EndWork();
}

void FrmImprove::RemoveKnownRows() {
    suite::ListItems& rows = ListViewHardware->ListItems();
    for (int index = rows.Count(); index >= 1; --index) {
        const suite::ListItem* row = rows.Item(index);
        if (row == nullptr)
            continue;
        StatusText = QStringLiteral("Searching Database... ") + row->Text();
        const QString line =
            ContributionLine(row->CellText(HardwareIdColumn), row->Text(), row->CellText(ManufacturerColumn));
        base::Yield();
        base::Yield();
        if (ListHasKeyword(line, *List1) || database::IsDeviceInDatabase(line))
            rows.Remove(index);
        base::Yield();
        if (values::ProgramClosing())
            return;
    }
}

void FrmImprove::CommandSaveSubmit_Click() {
    const database::SubmissionScope submission;
    BeginWork(CommandSaveSubmit);
    base::Yield();
    StatusText = QStringLiteral("Working...");
    if (!IsUnloaded())
        TimerStatus->SetEnabled(true);
    base::Yield();
    SubmitRows();
    StatusText = QStringLiteral("Uploading new_hardware.txt to Brindlex");
    base::Yield();
    if (UploadFile(UploadUrl(), SubmissionPath()))
        ImportantLabelSubmitStatus->SetCaption(QStringLiteral("Done! - Uploaded to Brindlex: Successful!"));
    else
        ImportantLabelSubmitStatus->SetCaption(
            QStringLiteral("Done! - Uploaded to Brindlex: Failed! Please email 'new_hardware.txt' file to ") +
            values::ServerAddresses().Mail);
    inventory::AutoSizeColumns(*ListViewHardware);
    base::Yield();
    EndWork();
}

// From the last row to the first, so the file holds them in the reverse of the list's order. A file that cannot be
// written does not keep the rows from the database.
void FrmImprove::SubmitRows() {
    QFile file(base::NativePath(SubmissionPath()));
    const bool open = file.open(QIODevice::WriteOnly | QIODevice::Truncate);
    suite::ListItems& rows = ListViewHardware->ListItems();
    for (int index = rows.Count(); index >= 1; --index) {
        const suite::ListItem* row = rows.Item(index);
        if (row == nullptr)
            continue;
        StatusText = QStringLiteral("Adding To Database... ") + row->Text();
        const QString line = LineOf(*row);
        base::Yield();
        base::Yield();
        database::AddDeviceToDatabase(line);
        base::Yield();
        if (open)
            file.write(base::ToAnsi(line) + "\r\n");
        base::Yield();
        rows.Remove(index);
        base::Yield();
    }
    file.close();
    base::Yield();
}

void FrmImprove::Timer1_Tick() {
    InfoLabelListTotal->SetCaption(QStringLiteral("Total Hardware Not In Database: ") +
                                   QString::number(ListViewHardware->ListItems().Count()));
}

void FrmImprove::TimerStatus_Tick() {
    LabelStatus->SetCaption(QStringLiteral("Status: ") + StatusText);
    if (StatusText == QLatin1String("Done."))
        TimerStatus->SetEnabled(false);
}

void FrmImprove::List_MouseUp(int button) {
    if (button != forms::RightButton)
        return;
    if (ListViewHardware->ListItems().Count() != 0) {
        inventory::SetActiveListForm(this);
        inventory::PopupListMenu(QStringLiteral("MenuImprove"));
    } else {
        forms::MsgBox(QStringLiteral("The List Is Empty."));
    }
}

void FrmImprove::Resize() {
    TitelBar1->SetWidth(Width());
    LabelResize->SetVisible(!TitelBar1->Maximised());
}

void RegisterImproveForm() {
    forms::Forms::Instance().RegisterMaker(QStringLiteral("FrmImprove"), [] { return std::make_unique<FrmImprove>(); });
}

} // namespace contribution
