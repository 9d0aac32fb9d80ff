// The main window: four lists of devices on four tabs, the buttons, and the program's start and end. The collection of
// forms owns it; it exists once. Its close ends the program.
#pragma once

#include "forms/form.h"

#include <array>
#include <memory>

namespace controls {
class AnimationBar;
class Anchor;
class PanelFx;
class TitelBar;
class cSizeMoveHelper;
class dcButton;
} // namespace controls

namespace forms {
class Label;
class PictureBox;
class TextBox;
class Timer;
} // namespace forms

namespace net {
class Inet;
}

namespace suite {
class AlphaImgCtl;
class ListView;
class TabControl;
class TabControlPage;
} // namespace suite

namespace shell {

constexpr int tabCount = 4;
constexpr int logoCount = 3;

// The window's design size, and the least that it can be made; twips.
constexpr double mainWidth = 11250;
constexpr double mainHeight = 8250;

class FrmMain : public forms::Form {
    Q_OBJECT

  public:
    FrmMain();
    ~FrmMain() override;

    // Every control under the name that the rest of the program knows it by; owned by the window.
    controls::TitelBar* TitelBar1 = nullptr;
    forms::PictureBox* LogoPictureBox = nullptr;
    std::array<suite::AlphaImgCtl*, logoCount> ImageLogo{};
    controls::dcButton* CommandGetHardware = nullptr;
    controls::dcButton* CommandImproveHardware = nullptr;
    controls::dcButton* CommandCheckForUpdates = nullptr;
    controls::dcButton* CommandColors = nullptr;
    suite::TabControl* TabControl1 = nullptr;
    suite::TabControlPage* TabControlPage1 = nullptr;
    suite::TabControlPage* TabControlPage2 = nullptr;
    suite::TabControlPage* TabControlPage3 = nullptr;
    suite::TabControlPage* TabControlPage4 = nullptr;
    suite::ListView* ListViewHardware = nullptr;
    suite::ListView* ListViewNoDrivers = nullptr;
    suite::ListView* ListViewProblems = nullptr;
    suite::ListView* ListViewNoSystemDevices = nullptr;
    controls::PanelFx* PanelProgress = nullptr;
    controls::AnimationBar* DB1 = nullptr;
    controls::dcButton* dcButton1 = nullptr;
    forms::Label* InfoLabel3 = nullptr;
    forms::Label* ImportantLabelUpdateAvailable = nullptr;
    forms::Label* LabelStatus = nullptr;
    forms::Label* LabelDatabaseVersion = nullptr;
    forms::Label* LabelTotalDevices = nullptr;
    forms::Label* LabelResize = nullptr;
    forms::PictureBox* Picture1 = nullptr;
    forms::TextBox* TextChars = nullptr;
    forms::TextBox* TextQuoteChar = nullptr;
    controls::Anchor* Anchor1 = nullptr;
    forms::Timer* Timer1 = nullptr;
    forms::Timer* TimerStartup = nullptr;
    forms::Timer* TimerCountDatabase = nullptr;
    net::Inet* Inet2 = nullptr;

    // The lists in the order of the tabs.
    std::array<suite::ListView*, tabCount> Lists() const;
    // The list of the selected tab; null if no tab answers.
    suite::ListView* SelectedList() const;
    // The counts that the tab captions last showed.
    std::array<qint32, tabCount> ShownCount{};
    // Whether a scan runs, below whatever its yields have called.
    bool Scanning = false;

    // The handlers of the window's buttons and timers.
    void CommandGetHardware_Click();
    void CommandImproveHardware_Click();
    void CommandCheckForUpdates_Click();
    void CommandColors_Click();
    void dcButton1_Click();
    void ImageLogo_Click(int index);
    void Timer1_Tick();
    void TimerStartup_Tick();
    void TimerCountDatabase_Tick();
    // Asks the server without a word; only the notice about a newer database shows the answer.
    void CheckForDatabaseUpdateSilent();

  protected:
    void Load() override;
    void Resize() override;
    void Closing() override;

  private:
    void CreateControls();
    void NameLogos();
    void CreateTabs();
    void Connect();
    void ConnectList(suite::ListView* list);
    void OpenLookup(suite::ListView* list);
    void Anchor1_AfterResize();

    void SetUpLists();
    void FitLists();
    void SetUpLogos();
    void SetUpTabs();

    void SetMainButtonsEnabled(bool enabled);
    void BeginProgress();
    void EndProgress();
    // The buttons off, the status and the progress shown; yields.
    void BeginDatabaseWork(const QString& status);
    // Opens the database and shows its version and size; false if the program is closing and nothing is to follow.
    bool OpenDatabase();
    void ClearListsForScan();
    void SetTabCaption(int tab, qint32 count);

    std::unique_ptr<controls::cSizeMoveHelper> m_c;
};

// Tells the collection of forms how the main window is made.
void RegisterMainWindow();

} // namespace shell
