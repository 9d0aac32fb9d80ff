#include "contribution/frm_improve.h"

#include "appearance/skin.h"
#include "appearance/window_effects.h"
#include "base/paths.h"
#include "base/plain_file.h"
#include "base/text.h"
#include "base/yield.h"
#include "contribution/improve_filters.h"
#include "contribution/improve_scan.h"
#include "contribution/submission_file.h"
#include "contribution/upload_file.h"
#include "controls/anchor.h"
#include "controls/animation_bar.h"
#include "controls/dc_button.h"
#include "controls/panel_fx.h"
#include "controls/titel_bar.h"
#include "database/additions.h"
#include "database/contribution_line.h"
#include "database/submission_scope.h"
#include "forms/forms.h"
#include "forms/label.h"
#include "forms/text_box.h"
#include "forms/timer.h"
#include "inventory/column_sizes.h"
#include "inventory/list_behaviour.h"
#include "suite/list_box.h"
#include "suite/list_view.h"
#include "values/addresses.h"
#include "values/program_values.h"
#include "window/design.h"
#include "window/form_icon.h"
#include "window/placement.h"

#include <QTimer>
#include <utility>

namespace contribution {

namespace {

constexpr double columnWidth = 1500;            // twips
constexpr qint64 mostKeywords = 1024 * 1024;    // bytes; every row is searched for each of them
constexpr int otherSubmissionMilliseconds = 50; // between two looks whether it is over

QString KeywordPath() { return values::ProgramFolder() + QStringLiteral("\\improve_database_keywords_to_skip.txt"); }

QString UploadUrl() {
    return values::ServerAddresses().UploadHost + QStringLiteral("/files/hardware_ids/upload_hardware_id_v1.php");
}

QString LineOf(const suite::ListItem& row) {
    return database::ContributionLine(base::Trim(row.CellText(HardwareIdColumn)), base::Trim(row.Text()),
                                      base::Trim(row.CellText(ManufacturerColumn)));
}

// The row that stood at `index` before the yields: others may have gone meanwhile.
void RemoveRow(suite::ListItems& rows, int index, const QString& key) {
    if (const suite::ListItem* there = rows.Item(index); there != nullptr && there->Key() == key)
        rows.Remove(index);
    else if (const suite::ListItem* moved = rows.ItemByKey(key))
        rows.Remove(moved->Index());
}

} // namespace

FrmImprove::FrmImprove() : forms::Form(QStringLiteral("FrmImprove"), LeastWidth, LeastHeight) {
    SetCaption(QStringLiteral("Improve Database"));
    CreateControls();
    Connect();
}

void FrmImprove::Connect() {
    connect(CommandGetHardware, &controls::dcButton::Click, this, &FrmImprove::CommandGetHardware_Click);
    connect(CommandSaveSubmit, &controls::dcButton::Click, this, &FrmImprove::CommandSaveSubmit_Click);
    connect(Timer1, &forms::Timer::Tick, this, &FrmImprove::Timer1_Tick);
    connect(TimerStatus, &forms::Timer::Tick, this, &FrmImprove::TimerStatus_Tick);
    inventory::ConnectList(*ListViewHardware, QStringLiteral("MenuImprove"), this);
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
    window::OpenAtLeastSize(*this, *Anchor1, *LabelResize, LeastWidth, LeastHeight);
    appearance::ApplyColorsToForm(this);
    window::SetFormIcon(*this, QStringLiteral("AAA"), true);
    window::SetUpTitle(*this, *TitelBar1);
    window::CentreOver(*PanelProgress, *ListViewHardware);
    suite::ListItems& items = ListViewHardware->ListItems();
    items.AddColumn(QStringLiteral("Name"), QStringLiteral("Name"), columnWidth);
    items.AddColumn(QStringLiteral("Manufacturer"), QStringLiteral("Manufacturer"), columnWidth);
    items.AddColumn(QStringLiteral("HardwareIDs"), QStringLiteral("Hardware IDs"), columnWidth);
    ListViewHardware->SetSortKey(0);
    ListViewHardware->SetSortOrder(int(suite::SortOrder::Ascending));
    ListViewHardware->SetSorted(true);
    ReadKeywords();
    appearance::MakeWindowColorKeyed(this, TitelBar1->BackColor());
}

void FrmImprove::ReadKeywords() {
    const QByteArray file = base::ReadPlainFile(base::NativePath(KeywordPath()), mostKeywords).value_or(QByteArray());
    for (const QString& keyword : KeywordsOf(file))
        List1->AddItem(keyword);
}

// False if the button was clicked a second time before it could be disabled: that click has done the work.
bool FrmImprove::BeginWork(controls::dcButton* button) {
    window::CentreOver(*PanelProgress, *ListViewHardware);
    if (!button->Enabled())
        return false;
    button->SetEnabled(false);
    LabelStatus->SetCaption(QStringLiteral("Status:"));
    PanelProgress->SetVisible(true);
    DB1->SetStyle(controls::AnimationBar::Bouncy);
    DB1->BeginDisplay();
    ListViewHardware->SetVisible(false);
    return true;
}

void FrmImprove::EndWork() {
    StatusText = QStringLiteral("Done.");
    ListViewHardware->SetVisible(true);
    PanelProgress->SetVisible(false);
    DB1->EndDisplay();
    base::Yield();
}

void FrmImprove::CommandGetHardware_Click() {
    if (!BeginWork(CommandGetHardware))
        return;
    ListViewHardware->ListItems().Clear();
    base::Yield();
    ImproveScan(ListViewHardware->ListItems(), [this](const QString& caption) { LabelStatus->SetCaption(caption); });
    StatusText = QStringLiteral("Searching...");
    if (!IsUnloaded())
        TimerStatus->SetEnabled(true);
    base::Yield();
    RemoveKnownRows();
    OfferUnsentRows();
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
        const QString key = row->Key();
        const QString line =
            database::ContributionLine(row->CellText(HardwareIdColumn), row->Text(), row->CellText(ManufacturerColumn));
        base::Yield();
        base::Yield();
        if (ListHasKeyword(line, *List1) || database::IsDeviceInDatabase(line))
            RemoveRow(rows, index, key);
        base::Yield();
        if (values::ProgramClosing())
            return;
    }
}

// What was submitted before and has not reached the server. The database knows it by now, so the scan does not find it.
void FrmImprove::OfferUnsentRows() {
    if (values::ProgramClosing())
        return;
    unsent_ = UnsentLines();
    for (const QString& line : std::as_const(unsent_)) {
        const database::Contribution device = database::SplitContribution(line);
        if (!device.HardwareId.isEmpty() && !ListHasKeyword(line, *List1))
            OfferRow(ListViewHardware->ListItems(), device.Name, device.Manufacturer, device.HardwareId);
        base::Yield();
    }
}

void FrmImprove::CommandSaveSubmit_Click() {
    // That of a window closed meanwhile runs below this handler, so it cannot be waited for here.
    if (database::SubmissionRunning()) {
        QTimer::singleShot(otherSubmissionMilliseconds, this, [this] {
            if (!IsUnloaded() && !values::ProgramClosing())
                CommandSaveSubmit_Click();
        });
        return;
    }
    const database::SubmissionScope scope;
    if (!BeginWork(CommandSaveSubmit))
        return;
    base::Yield();
    StatusText = QStringLiteral("Working...");
    if (!IsUnloaded())
        TimerStatus->SetEnabled(true);
    base::Yield();
    SubmissionFile submission;
    while (!submission.TryToLock()) {
        // Closed before it could begin, it has touched nothing.
        if (values::ProgramClosing() || IsUnloaded()) {
            EndWork();
            return;
        }
        base::YieldBlocking(otherSubmissionMilliseconds);
    }
    SubmitRows(submission);
    StatusText = QStringLiteral("Uploading new_hardware.txt to Brindlex");
    base::Yield();
    const bool sent = submission.IsWhole() && UploadFile(UploadUrl(), SubmissionPath());
    if (sent)
        submission.Sent();
    if (sent)
        ImportantLabelSubmitStatus->SetCaption(QStringLiteral("Done! - Uploaded to Brindlex: Successful!"));
    else
        ImportantLabelSubmitStatus->SetCaption(
            QStringLiteral("Done! - Uploaded to Brindlex: Failed! Please email 'new_hardware.txt' file to ") +
            values::ServerAddresses().Mail);
    inventory::AutoSizeColumns(*ListViewHardware);
    base::Yield();
    EndWork();
}

QStringList FrmImprove::LinesOnOffer() const {
    const suite::ListItems& rows = ListViewHardware->ListItems();
    QStringList lines;
    for (int index = rows.Count(); index >= 1; --index)
        lines.append(LineOf(*rows.Item(index)));
    return lines;
}

// From the last row to the first, so the file holds them in the reverse of the list's order. A new_hardware.txt that
// cannot be written does not keep the rows from the database; lines that can be kept nowhere do.
void FrmImprove::SubmitRows(SubmissionFile& submission) {
    if (!submission.Begin(LinesOnOffer(), unsent_))
        return;
    suite::ListItems& rows = ListViewHardware->ListItems();
    for (int index = rows.Count(); index >= 1; --index) {
        const suite::ListItem* row = rows.Item(index);
        if (row == nullptr)
            continue;
        StatusText = QStringLiteral("Adding To Database... ") + row->Text();
        const QString key = row->Key();
        const QString line = LineOf(*row);
        base::Yield();
        base::Yield();
        database::AddDeviceToDatabase(line);
        base::Yield();
        submission.Write(line);
        base::Yield();
        RemoveRow(rows, index, key);
        base::Yield();
    }
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

void FrmImprove::Resize() { window::FollowResize(*this, *TitelBar1, *LabelResize); }

void RegisterImproveForm() {
    forms::Forms::Instance().RegisterMaker(QStringLiteral("FrmImprove"), [] { return std::make_unique<FrmImprove>(); });
}

} // namespace contribution
