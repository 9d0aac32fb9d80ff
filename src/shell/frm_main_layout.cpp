// The design of the main window: every control, its place in twips and its anchor, in one readable block. At 96 dots
// per inch 15 twips are a pixel, and the window is 750 by 550 pixels.
#include "base/text.h"
#include "controls/anchor.h"
#include "controls/dc_button.h"
#include "controls/titel_bar.h"
#include "forms/label.h"
#include "forms/picture_box.h"
#include "forms/text_box.h"
#include "forms/timer.h"
#include "inventory/device_lists.h"
#include "inventory/list_behaviour.h"
#include "net/inet.h"
#include "shell/frm_main.h"
#include "suite/alpha_image.h"
#include "suite/list_view.h"
#include "suite/tab_control.h"
#include "values/addresses.h"
#include "values/program_values.h"
#include "window/design.h"
#include "window/placement.h"

namespace shell {

namespace {

using window::MakeButton;
using window::MakeLabel;
using window::Place;

// The bytes of the Windows-1252 characters that names of contributed devices may hold.
QString AllowedCharacters() {
    return base::FromAnsi(QByteArrayLiteral("\x84\x91\x92\x93\x94\x95\"\x99\xAE\xA9\x96\xA1\xB2"
                                            "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz1234567890 "
                                            "~`!@#$%^&*()_+-=[]{}\\|;:',<.>/?"));
}

} // namespace

void FrmMain::CreateControls() {
    QWidget* client = Client();
    Anchor1 = new controls::Anchor(this, QStringLiteral("Anchor1"));

    TitelBar1 = window::MakeTitelBar(client, mainWidth);

    CommandGetHardware = Place(MakeButton(client, "CommandGetHardware", "Refresh Hardware Lists"), 150, 615, 2700, 480);
    CommandImproveHardware =
        Place(MakeButton(client, "CommandImproveHardware", "Improve Database"), 2970, 615, 2100, 480);
    CommandCheckForUpdates = Place(MakeButton(client, "CommandCheckForUpdates", "Update"), 5190, 615, 1350, 480);
    CommandColors = Place(MakeButton(client, "CommandColors", "Program Colors"), 6660, 615, 1950, 480);

    LogoPictureBox =
        Place(new forms::PictureBox(client, QStringLiteral("LogoPictureBox")), 9285, 600, 1815, 510, window::TopRight);
    for (int i = 0; i < logoCount; ++i) {
        ImageLogo[size_t(i)] =
            Place(new suite::AlphaImgCtl(LogoPictureBox, QStringLiteral("ImageLogo")), 60 + 570 * i, 15, 540, 480);
    }
    NameLogos();

    CreateTabs();

    dcButton1 =
        Place(MakeButton(client, "dcButton1", "Lookup Selected Device"), 150, 7020, 2700, 450, window::BottomLeft);
    InfoLabel3 = Place(MakeLabel(client, "InfoLabel3", "*Right Click On List For More Options"), 3000, 7110, 4200, 270,
                       window::BottomWide);
    ImportantLabelUpdateAvailable =
        Place(MakeLabel(client, "ImportantLabelUpdateAvailable", "Database Update Available!"), 7350, 7110, 3750, 270,
              window::BottomRight);
    ImportantLabelUpdateAvailable->SetAlignment(forms::Label::AlignRight);
    ImportantLabelUpdateAvailable->SetVisible(false);
    LabelStatus = Place(MakeLabel(client, "LabelStatus", "Status:"), 150, 7590, 10950, 270, window::BottomWide);
    LabelDatabaseVersion =
        Place(MakeLabel(client, "LabelDatabaseVersion", "Database Version:"), 150, 7890, 4200, 270, window::BottomLeft);
    LabelTotalDevices = Place(MakeLabel(client, "LabelTotalDevices", "Devices In Database:"), 4500, 7890, 5700, 270,
                              window::BottomWide);
    LabelResize = window::MakeGrip(client, mainWidth, mainHeight);

    Picture1 = Place(new forms::PictureBox(client, QStringLiteral("Picture1")), 0, 0, 15, 15);
    Picture1->SetVisible(false);
    TextChars = Place(new forms::TextBox(client, QStringLiteral("TextChars")), 0, 0, 15, 15);
    TextChars->SetVisible(false);
    TextChars->SetText(AllowedCharacters());
    TextQuoteChar = Place(new forms::TextBox(client, QStringLiteral("TextQuoteChar")), 0, 0, 15, 15);
    TextQuoteChar->SetVisible(false);
    TextQuoteChar->SetText(QStringLiteral("\""));

    Timer1 = new forms::Timer(this, QStringLiteral("Timer1"), 250, true);
    TimerStartup = new forms::Timer(this, QStringLiteral("TimerStartup"), 100, false);
    TimerCountDatabase = new forms::Timer(this, QStringLiteral("TimerCountDatabase"), 100, false);
    Inet2 = new net::Inet(this);
    Inet2->setObjectName(QStringLiteral("Inet2"));
}

void FrmMain::NameLogos() {
    const values::Addresses& addresses = values::ServerAddresses();
    const std::array<std::pair<QString, QString>, logoCount> pages = {{
        {QStringLiteral("Brindlex Web Site"), addresses.WebSite},
        {QStringLiteral("Brindlex Social Page 1"), addresses.SocialPage1},
        {QStringLiteral("Brindlex Social Page 2"), addresses.SocialPage2},
    }};
    LogoPictureBox->setAccessibleName(QStringLiteral("Brindlex Pages"));
    for (size_t i = 0; i < pages.size(); ++i) {
        ImageLogo[i]->SetClickable(true);
        ImageLogo[i]->setAccessibleName(pages[i].first);
        ImageLogo[i]->SetToolTipText(pages[i].first + QStringLiteral("\n") + pages[i].second);
    }
}

void FrmMain::CreateTabs() {
    TabControl1 =
        Place(new suite::TabControl(Client(), QStringLiteral("TabControl1")), 150, 1230, 10950, 5670, window::Stretch);
    TabControlPage1 = new suite::TabControlPage(TabControl1, QStringLiteral("TabControlPage1"));
    TabControlPage2 = new suite::TabControlPage(TabControl1, QStringLiteral("TabControlPage2"));
    TabControlPage3 = new suite::TabControlPage(TabControl1, QStringLiteral("TabControlPage3"));
    TabControlPage4 = new suite::TabControlPage(TabControl1, QStringLiteral("TabControlPage4"));
    ListViewHardware = new suite::ListView(TabControlPage1, QStringLiteral("ListViewHardware"));
    ListViewNoDrivers = new suite::ListView(TabControlPage2, QStringLiteral("ListViewNoDrivers"));
    ListViewProblems = new suite::ListView(TabControlPage3, QStringLiteral("ListViewProblems"));
    ListViewNoSystemDevices = new suite::ListView(TabControlPage4, QStringLiteral("ListViewNoSystemDevices"));

    const std::array<suite::TabControlPage*, tabCount> pages = {TabControlPage1, TabControlPage2, TabControlPage3,
                                                                TabControlPage4};
    for (size_t i = 0; i < pages.size(); ++i) {
        const QString title = inventory::DeviceListTitle(inventory::DeviceList(i));
        suite::TabItem* item = TabControl1->AddItem(title, pages[i]);
        item->SetTag(title);
        item->SetCaption(inventory::DeviceListCaption(title, 0));
        Lists()[i]->SetAccessibleLabel(title);
        Lists()[i]->SetTag(QLatin1String(window::Stretch));
    }

    // Stands on the tab control and not on a page, so that it shows over whichever list is selected.
    PanelProgress = window::MakeProgressPanel(TabControl1, DB1);
}

void FrmMain::Connect() {
    const auto onClick = [this](controls::dcButton* button, void (FrmMain::*handler)()) {
        connect(button, &controls::dcButton::Click, this, handler);
    };
    onClick(CommandGetHardware, &FrmMain::CommandGetHardware_Click);
    onClick(CommandImproveHardware, &FrmMain::CommandImproveHardware_Click);
    onClick(CommandCheckForUpdates, &FrmMain::CommandCheckForUpdates_Click);
    onClick(CommandColors, &FrmMain::CommandColors_Click);
    onClick(dcButton1, &FrmMain::dcButton1_Click);
    for (int i = 0; i < logoCount; ++i)
        connect(ImageLogo[size_t(i)], &suite::AlphaImgCtl::Click, this, [this, i] { ImageLogo_Click(i); });
    connect(Timer1, &forms::Timer::Tick, this, &FrmMain::Timer1_Tick);
    connect(TimerStartup, &forms::Timer::Tick, this, &FrmMain::TimerStartup_Tick);
    connect(TimerCountDatabase, &forms::Timer::Tick, this, &FrmMain::TimerCountDatabase_Tick);
    connect(Anchor1, &controls::Anchor::AfterResize, this, &FrmMain::Anchor1_AfterResize);
    for (suite::ListView* list : Lists())
        ConnectList(list);
    window::ConnectGrip(*this, *LabelResize);
    // A server that does not answer must not keep the closed program alive.
    Inet2->SetStop([] { return values::ProgramClosing(); });
}

void FrmMain::ConnectList(suite::ListView* list) {
    inventory::ConnectList(*list, QStringLiteral("MenuMain"));
    connect(list, &suite::ListView::DblClick, this, [this, list] { OpenLookup(list); });
}

} // namespace shell
