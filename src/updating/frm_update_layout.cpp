// The design of the update window: every control and its place, in pixels at 96 dots per inch. Places inside a panel
// count from the panel's corner. The window is 416 by 240 pixels.
#include "controls/brindlex_pb.h"
#include "controls/dc_button.h"
#include "controls/panel_fx.h"
#include "controls/titel_bar.h"
#include "forms/label.h"
#include "forms/timer.h"
#include "net/inet.h"
#include "suite/check_box.h"
#include "updating/download.h"
#include "updating/frm_update.h"
#include "window/design.h"

#include <QRect>

namespace updating {

namespace {

constexpr int twipsPerDesignPixel = 15;
constexpr int titleHeight = 20; // pixels

template <typename Control> Control* Place(Control* control, const QRect& pixels) {
    return window::Place(control, pixels.x() * twipsPerDesignPixel, pixels.y() * twipsPerDesignPixel,
                         pixels.width() * twipsPerDesignPixel, pixels.height() * twipsPerDesignPixel);
}

forms::Label* Label(QWidget* container, const char* name, const char* caption, const QRect& pixels) {
    return Place(window::MakeLabel(container, name, caption), pixels);
}

controls::dcButton* Button(QWidget* container, const char* name, const char* caption, const QRect& pixels) {
    return Place(window::MakeButton(container, name, caption), pixels);
}

controls::PanelFx* Panel(QWidget* container, const char* name, const char* title, const QRect& pixels) {
    auto* panel = Place(new controls::PanelFx(container, QLatin1String(name)), pixels);
    panel->InitProperties();
    panel->SetTitleCaption(QLatin1String(title));
    panel->SetBackGroundStyle(controls::PanelFx::Gradient);
    panel->SetTileHeight(qRound(titleHeight * twipsPerDesignPixel / controls::TitelBar::TwipsPerPixelX()));
    return panel;
}

} // namespace

void FrmUpdate::CreateControls() {
    TitelBar1 = window::MakeTitelBar(Client(), 416 * twipsPerDesignPixel, false);
    TitelBar1->SetCaption(Caption());
    CreateVersionPanels();
    CreateDownloadPanel();
    CheckForUpdates = Place(new suite::CheckBox(Client(), QStringLiteral("CheckForUpdates"),
                                                QStringLiteral("Check For Updates At Program Startup")),
                            {10, 212, 396, 20});
    Timer1 = new forms::Timer(this, QStringLiteral("Timer1"), 250, false);
    TimerCheckForUpdates = new forms::Timer(this, QStringLiteral("TimerCheckForUpdates"), 250, false);
    TimerWaitForSubmission = new forms::Timer(this, QStringLiteral("TimerWaitForSubmission"), 250, false);
    Inet1 = new net::Inet(this);
    Inet1->setObjectName(QStringLiteral("Inet1"));
    Inet2 = new net::Inet(this);
    Inet2->setObjectName(QStringLiteral("Inet2"));
    DL1 = new DownLoadControl(this);
    DL1->setObjectName(QStringLiteral("DL1"));
}

void FrmUpdate::CreateVersionPanels() {
    PanelProgram = Panel(Client(), "PanelProgram", "Current Program Version:", {8, 40, 400, 80});
    Label1 = Label(PanelProgram, "Label1", "Online Version:", {10, 28, 220, 18});
    Label2 = Label(PanelProgram, "Label2", "Update Available:", {10, 52, 220, 18});
    CommmandOpenBrindlex = Button(PanelProgram, "CommmandOpenBrindlex", "Open Brindlex", {238, 34, 152, 30});
    CommmandOpenBrindlex->SetEnabled(false);
    PanelDatabase = Panel(Client(), "PanelDatabase", "Device Database Version:", {8, 126, 400, 80});
    Label4 = Label(PanelDatabase, "Label4", "Online Version:", {10, 28, 220, 18});
    Label3 = Label(PanelDatabase, "Label3", "Update Available:", {10, 52, 220, 18});
    CommandDownloadDatabase = Button(PanelDatabase, "CommandDownloadDatabase", "Download Database", {238, 34, 152, 30});
    CommandDownloadDatabase->SetEnabled(false);
}

void FrmUpdate::CreateDownloadPanel() {
    PanelDownloading = Panel(Client(), "PanelDownloading", "Downloading Database...", {8, 40, 400, 166});
    PanelDownloading->SetVisible(false);
    lblStatus = Label(PanelDownloading, "lblStatus", "Status - ", {10, 24, 380, 16});
    lblerr = Label(PanelDownloading, "lblerr", "Error Code - ", {10, 41, 380, 16});
    lblCBytes = Label(PanelDownloading, "lblCBytes", "Bytes Read - ", {10, 58, 195, 16});
    lblTotalBytes = Label(PanelDownloading, "lblTotalBytes", "Total Bytes - ", {210, 58, 180, 16});
    InfoLabelpercent = Label(PanelDownloading, "InfoLabelpercent", "Percent Downloaded - ", {10, 75, 195, 16});
    InfolabelRate = Label(PanelDownloading, "InfolabelRate", "Transfer Rate - ", {210, 75, 180, 16});
    lblTime = Label(PanelDownloading, "lblTime", "Time Remaining - ", {10, 93, 270, 16});
    CommandCancel = Button(PanelDownloading, "CommandCancel", "Cancel", {290, 93, 100, 22});
    PB1 = Place(new controls::BrindlexPB(PanelDownloading, QStringLiteral("PB1")), {10, 119, 380, 20});
    PB1->setAccessibleName(QStringLiteral("Download"));
    ImportantLabelUnzip =
        Label(PanelDownloading, "ImportantLabelUnzip", "Decompressing Database...", {10, 144, 380, 16});
    ImportantLabelUnzip->SetVisible(false);
}

} // namespace updating
