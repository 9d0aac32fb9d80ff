// The update window: shows what the two checks found and, at the user's request, replaces the device database by the
// server's newest. It exists once. While a download is between start and end it refuses to be closed, except by its own
// cancel button and by the program's end.
#pragma once

#include "forms/form.h"
#include "updating/update_check.h"

namespace controls {
class BrindlexPB;
class PanelFx;
class TitelBar;
class dcButton;
} // namespace controls

namespace forms {
class Label;
class Timer;
} // namespace forms

namespace net {
class Inet;
} // namespace net

namespace suite {
class CheckBox;
}

namespace updating {

class DownLoadControl;

class FrmUpdate : public forms::Form {
    Q_OBJECT

  public:
    FrmUpdate();

    controls::TitelBar* TitelBar1 = nullptr;
    controls::PanelFx* PanelProgram = nullptr;
    forms::Label* Label1 = nullptr;
    forms::Label* Label2 = nullptr;
    controls::dcButton* CommmandOpenBrindlex = nullptr;
    controls::PanelFx* PanelDatabase = nullptr;
    forms::Label* Label4 = nullptr;
    forms::Label* Label3 = nullptr;
    controls::dcButton* CommandDownloadDatabase = nullptr;
    controls::PanelFx* PanelDownloading = nullptr;
    forms::Label* lblStatus = nullptr;
    forms::Label* lblerr = nullptr;
    forms::Label* lblCBytes = nullptr;
    forms::Label* lblTotalBytes = nullptr;
    forms::Label* InfoLabelpercent = nullptr;
    forms::Label* InfolabelRate = nullptr;
    forms::Label* lblTime = nullptr;
    forms::Label* ImportantLabelUnzip = nullptr;
    controls::BrindlexPB* PB1 = nullptr;
    controls::dcButton* CommandCancel = nullptr;
    suite::CheckBox* CheckForUpdates = nullptr;
    forms::Timer* Timer1 = nullptr;
    forms::Timer* TimerCheckForUpdates = nullptr;
    // Waits for a submission that is still writing to the database; the download begins at its end.
    forms::Timer* TimerWaitForSubmission = nullptr;
    net::Inet* Inet1 = nullptr;
    net::Inet* Inet2 = nullptr;
    DownLoadControl* DL1 = nullptr;

    void CheckForUpdate();
    void CheckForDatabaseUpdate();

  protected:
    void Load() override;
    void Resize() override;
    bool QueryUnload() override;

  private:
    void CreateControls();
    void CreateVersionPanels();
    void CreateDownloadPanel();
    void Connect();
    void ConnectDownload();

    void TimerCheckForUpdates_Tick();
    void Timer1_Tick();
    void TimerWaitForSubmission_Tick();
    void CommmandOpenBrindlex_Click();
    void CommandDownloadDatabase_Click();
    void CommandCancel_Click();
    void CheckForUpdates_MouseUp();

    void BeginDownload();
    void DL1_RecievedBytes(qint32 total);
    void DL1_DLECode(qint32 code);
    void DL1_DLComplete();
    void zip_Progress(double current, double total);

    // Steps of the unpacking.
    void UnpackDatabase(const QString& archive);
    void ReportUnpackFailure(const QString& text);
    void HandOverToMainWindow();

    CheckView ViewOf(forms::Label* online, forms::Label* available, controls::dcButton* button);
    bool Stopped() const;
};

// Tells the collection of forms how the update window is made.
void RegisterUpdateForm();

} // namespace updating
