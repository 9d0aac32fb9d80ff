#include "updating/frm_update.h"

#include "appearance/colour_table.h"
#include "appearance/skin.h"
#include "appearance/window_effects.h"
#include "base/yield.h"
#include "controls/brindlex_pb.h"
#include "controls/dc_button.h"
#include "controls/panel_fx.h"
#include "controls/titel_bar.h"
#include "data/replace_file.h"
#include "database/store.h"
#include "database/submission_scope.h"
#include "forms/desktop.h"
#include "forms/dialogs.h"
#include "forms/forms.h"
#include "forms/label.h"
#include "forms/timer.h"
#include "net/inet.h"
#include "net/vsz_lib.h"
#include "suite/check_box.h"
#include "updating/archive_judge.h"
#include "updating/download.h"
#include "updating/download_formats.h"
#include "updating/version_compare.h"
#include "values/addresses.h"
#include "values/delete_file.h"
#include "values/format_byte_size.h"
#include "values/program_values.h"
#include "values/settings.h"
#include "window/design.h"
#include "window/form_icon.h"
#include "window/placement.h"

#include <algorithm>
#include <array>
#include <memory>

namespace updating {

namespace {

const QString formName = QStringLiteral("FrmUpdate");
constexpr double windowWidth = 6240; // twips
constexpr double windowHeight = 3600;
constexpr int pixelScale = 3; // the scale mode of pixels

struct ErrorText {
    qint32 Code;
    const char* Text;
};
// Code 6 comes from the downloader with another meaning; no download of this window raises it.
constexpr std::array<ErrorText, 8> errorTexts = {{
    {1, "Error Code - [1] Uknown Error!"},
    {2, "Error Code - [2] File Doesn't Exist!"},
    {3, "Error Code - [3] Server Timed Out!"},
    {4, "Error Code - [4] Download Was Cancelled By User!"},
    {5, "Error Code - [5] No Connection Present!"},
    {6, "Error Code - [6] Internal Server Error!"},
    {401, "Error Code - [401] Unauthorized Access!"},
    {403, "Error Code - [403] Access Denied!"},
}};

template <typename T> T* OnMainForm(const char* name) {
    forms::Form* main = forms::Forms::Instance().Find(QStringLiteral("FrmMain"));
    return main != nullptr ? main->Find<T>(QLatin1String(name)) : nullptr;
}

// The local version, as the checks and the panel's title take it.
QString ShownVersionCaption() {
    const auto* label = OnMainForm<forms::Label>("LabelDatabaseVersion");
    return label != nullptr ? label->Caption() : QString();
}

const QString& ShownValue(const QString& text) { return text; }
QString ShownValue(qint32 number) { return QString::number(number); }

QString ArchivePath() { return values::ProgramFolder() + QStringLiteral("\\hwids.7z"); }

bool ReplaceDatabase(const QString& from, const QString& to) { return data::ReplaceDatabaseFile(from, to); }

} // namespace

FrmUpdate::FrmUpdate() : forms::Form(formName, windowWidth, windowHeight) {
    SetCaption(QStringLiteral("Updates"));
    CreateControls();
    Connect();
}

bool FrmUpdate::Stopped() const { return values::ProgramClosing() || IsUnloaded(); }

void FrmUpdate::Connect() {
    const auto stop = [this] { return Stopped(); };
    Inet1->SetStop(stop);
    Inet2->SetStop(stop);
    DL1->SetStop(stop);
    connect(TimerCheckForUpdates, &forms::Timer::Tick, this, &FrmUpdate::TimerCheckForUpdates_Tick);
    connect(Timer1, &forms::Timer::Tick, this, &FrmUpdate::Timer1_Tick);
    connect(TimerWaitForSubmission, &forms::Timer::Tick, this, &FrmUpdate::TimerWaitForSubmission_Tick);
    connect(CommmandOpenBrindlex, &controls::dcButton::Click, this, &FrmUpdate::CommmandOpenBrindlex_Click);
    connect(CommandDownloadDatabase, &controls::dcButton::Click, this, &FrmUpdate::CommandDownloadDatabase_Click);
    connect(CommandCancel, &controls::dcButton::Click, this, &FrmUpdate::CommandCancel_Click);
    connect(CheckForUpdates, &suite::CheckBox::MouseUp, this, &FrmUpdate::CheckForUpdates_MouseUp);
    ConnectDownload();
}

// Each handler ends with a yield, which is what keeps the window alive during the transfer.
void FrmUpdate::ConnectDownload() {
    const auto show = [this](auto raised, forms::Label* label, const QString& prefix) {
        connect(DL1, raised, this, [label, prefix](const auto& value) {
            label->SetCaption(prefix, ShownValue(value));
            base::Yield();
        });
    };
    show(&DownLoadControl::Percent, InfoLabelpercent, QStringLiteral("Percent Complete - "));
    show(&DownLoadControl::StatusChange, lblStatus, QStringLiteral("Status - "));
    show(&DownLoadControl::Rate, InfolabelRate, QStringLiteral("Transfer Rate - "));
    show(&DownLoadControl::TimeLeft, lblTime, QStringLiteral("Time Remaining - "));
    connect(DL1, &DownLoadControl::RecievedBytes, this, &FrmUpdate::DL1_RecievedBytes);
    connect(DL1, &DownLoadControl::DLECode, this, &FrmUpdate::DL1_DLECode);
    connect(DL1, &DownLoadControl::DLComplete, this, &FrmUpdate::DL1_DLComplete);
    connect(DL1, &DownLoadControl::DLError, this, [] { base::Yield(); });
    connect(DL1, &DownLoadControl::ConnectionState, this, [] { base::Yield(); });
}

void FrmUpdate::Load() {
    if (values::ProgramClosing()) {
        Unload(true);
        return;
    }
    window::SetFormIcon(*this, QStringLiteral("AAA"), true);
    SetHeight(windowHeight);
    SetWidth(windowWidth);
    SetSizeLimits(WindowRect().size(), WindowRect().size());
    window::CentreOnScreen(*this);
    PanelProgram->SetTitleCaption(QStringLiteral("Current Program Version: ") + values::Program().ProgramVersion);
    PanelDatabase->SetTitleCaption(QStringLiteral("Device Database Version: ") +
                                   VersionInCaption(ShownVersionCaption()));
    SetAutoRedraw(true);
    SetScaleMode(pixelScale);
    appearance::ApplyColorsToForm(this);
    window::SetUpTitle(*this, *TitelBar1);
    CheckForUpdates->SetValue(values::Program().CheckForUpdatesAtStart ? 1 : 0);
    // Also what a cancelled or failed download left; the next one starts from byte 0.
    values::DeleteFileNow(ArchivePath());
    appearance::MakeWindowColorKeyed(this, TitelBar1->BackColor());
}

void FrmUpdate::Resize() {
    TitelBar1->SetWidth(Width());
    window::DrawFrame(*this);
}

bool FrmUpdate::QueryUnload() { return values::ProgramClosing() || PB1->Value() == 0 || PB1->Value() == PB1->Max(); }

CheckView FrmUpdate::ViewOf(forms::Label* online, forms::Label* available, controls::dcButton* button) {
    return {
        [online](const QString& caption) { online->SetCaption(caption); },
        [available](const QString& caption, int tableColour) {
            available->SetCaption(caption);
            available->SetForeColor(appearance::ColorOf(tableColour));
        },
        [button](bool enabled) { button->SetEnabled(enabled); },
    };
}

void FrmUpdate::CheckForUpdate() { updating::CheckForUpdate(*Inet1, ViewOf(Label1, Label2, CommmandOpenBrindlex)); }

void FrmUpdate::CheckForDatabaseUpdate() {
    updating::CheckForDatabaseUpdate(*Inet2, ShownVersionCaption(), ViewOf(Label4, Label3, CommandDownloadDatabase));
}

void FrmUpdate::TimerCheckForUpdates_Tick() {
    TimerCheckForUpdates->SetEnabled(false);
    base::Yield();
    CheckForUpdate();
    base::Yield();
    CheckForDatabaseUpdate();
    base::Yield();
}

void FrmUpdate::CommmandOpenBrindlex_Click() { forms::ShellExecuteA(this, values::ServerAddresses().WebSite); }

void FrmUpdate::CheckForUpdates_MouseUp() {
    QString path = values::SettingsPath();
    values::WriteSetting(QStringLiteral("main"), QStringLiteral("CheckForUpdates"),
                         QString::number(CheckForUpdates->Value()), path);
    values::Program().CheckForUpdatesAtStart = CheckForUpdates->Value() != 0;
}

// A submission adds to the database in steps between which this click can come. It runs below this handler, so it
// cannot be waited for here.
void FrmUpdate::CommandDownloadDatabase_Click() {
    if (database::SubmissionRunning()) {
        CommandDownloadDatabase->SetEnabled(false);
        TimerWaitForSubmission->SetEnabled(true);
        return;
    }
    BeginDownload();
}

void FrmUpdate::TimerWaitForSubmission_Tick() {
    if (!database::SubmissionRunning()) {
        TimerWaitForSubmission->SetEnabled(false);
        BeginDownload();
    }
}

void FrmUpdate::BeginDownload() {
    database::CloseDeviceDatabase();
    ImportantLabelUnzip->SetVisible(false);
    PanelDownloading->SetTitleCaption(QStringLiteral("Downloading Database..."));
    PanelDatabase->SetVisible(false);
    PanelProgram->SetVisible(false);
    PanelDownloading->SetVisible(true);
    base::Yield();
    Timer1->SetEnabled(true);
}

void FrmUpdate::Timer1_Tick() {
    Timer1->SetEnabled(false);
    DL1->SetURL(DatabaseArchiveUrl());
    DL1->SetSaveLocation(ArchivePath());
    DL1->GetFileInformation();
    if (DL1->FileSize() < 1) {
        PB1->SetValue(0);
        return;
    }
    PB1->SetMax(DL1->FileSize());
    PB1->SetValue(0);
    lblTotalBytes->SetCaption(QStringLiteral("Total Bytes - ") + FormatTransferSize(DL1->FileSize()));
    DL1->DownLoad();
}

void FrmUpdate::DL1_RecievedBytes(qint32 total) {
    PB1->SetValue(total);
    lblCBytes->SetCaption(QStringLiteral("Current Bytes Read - "), FormatTransferSize(total));
    base::Yield();
}

void FrmUpdate::DL1_DLECode(qint32 code) {
    const auto* text = std::find_if(errorTexts.begin(), errorTexts.end(),
                                    [code](const ErrorText& candidate) { return candidate.Code == code; });
    if (text != errorTexts.end()) {
        lblerr->SetCaption(QLatin1String(text->Text));
    }
    base::Yield();
}

void FrmUpdate::DL1_DLComplete() {
    ImportantLabelUnzip->SetVisible(true);
    PanelDownloading->SetTitleCaption(QStringLiteral("Decompressing Database..."));
    base::Yield();
    UnpackDatabase(ArchivePath());
    base::Yield();
    HandOverToMainWindow();
}

void FrmUpdate::UnpackDatabase(const QString& archive) {
    net::VszLib zip;
    zip.SetStop([this] { return Stopped(); });
    zip.SetJudge([this](QList<net::UnpackedFile>& files) {
        return IsArchiveGood(files, values::ServerAddresses().UpdateKeys, values::ProgramFolder(),
                             [this] { return Stopped(); });
    });
    zip.SetDatabaseReplacer(&ReplaceDatabase);
    connect(&zip, &net::VszLib::Progress, this,
            [this](int, double current, double total) { zip_Progress(current, total); });
    // Without an engine the archive does not open, which is told below.
    bool loaded = false;
    zip.LoadEngine(values::ProgramFolder() + QStringLiteral("\\7za.dll"), loaded);
    if (!zip.OpenArchive(archive)) {
        ReportUnpackFailure(QStringLiteral("Failed to open the download database file!"));
        return;
    }
    base::Yield();
    if (!zip.ExtractAll(values::ProgramFolder())) {
        ReportUnpackFailure(QStringLiteral("Failed to decompress the download database file!"));
        return;
    }
    PanelDownloading->SetTitleCaption(QStringLiteral("Decompressed Successfully"));
    ImportantLabelUnzip->SetCaption(QStringLiteral("Decompressed Successfully"));
    base::Yield();
}

void FrmUpdate::zip_Progress(double current, double total) {
    ImportantLabelUnzip->SetCaption(QStringLiteral("Decompressing Database... Progress: ") +
                                    values::FormatByteSize(current) + QStringLiteral(" of ") +
                                    values::FormatByteSize(total));
    base::Yield();
}

// An unpacking that was given up with the window or the program has not failed.
void FrmUpdate::ReportUnpackFailure(const QString& text) {
    ImportantLabelUnzip->SetCaption(text);
    base::Yield();
    if (!Stopped()) {
        forms::MsgBox(text, forms::MessageIcon::Critical);
    }
}

void FrmUpdate::HandOverToMainWindow() {
    if (values::ProgramClosing()) {
        return;
    }
    if (auto* timer = OnMainForm<forms::Timer>("TimerCountDatabase")) {
        timer->SetEnabled(true);
    }
    if (auto* label = OnMainForm<forms::Label>("ImportantLabelUpdateAvailable")) {
        label->SetVisible(false);
    }
    Unload(true);
}

void FrmUpdate::CommandCancel_Click() {
    DL1->Cancel();
    PB1->SetValue(0);
    base::Yield();
    Unload();
}

void RegisterUpdateForm() {
    forms::Forms::Instance().RegisterMaker(formName, [] { return std::make_unique<FrmUpdate>(); });
}

} // namespace updating
