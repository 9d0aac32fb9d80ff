#include "shell/frm_main.h"

#include "controls/dc_button.h"
#include "controls/panel_fx.h"
#include "controls/titel_bar.h"
#include "forms/menu.h"
#include "forms/screen.h"
#include "forms/text_box.h"
#include "suite/color_picker.h"
#include "suite/list_tree.h"
#include "suite/tab_control.h"
#include "support/scripted_server.h"
#include "values/addresses.h"
#include "values/settings.h"
#include "windows_fixture.h"

#include <QElapsedTimer>
#include <QFile>
#include <QPushButton>
#include <functional>
#include <utility>

namespace {

// Two devices that work and one without a driver.
class FrmMainTest : public WindowsFixture {
  protected:
    FrmMainTest()
        : WindowsFixture(UsbDevice(1, "Beta Hub", "Maker") + UsbDevice(2, "Alpha Hub", "Maker") +
                         "/devices/pci0000:00/0000:00:03.0 @ bus/pci\n"
                         "  vendor = 0x1234\n  device = 0x0003\n  class = 0xff0000\n") {
        database::SetFatalHandlers([this](const QString& message) { fatal_ = message; }, [] {});
    }
    ~FrmMainTest() override { database::SetFatalHandlers(nullptr, nullptr); }

    static QStringList Names(suite::ListView* list) {
        QStringList names;
        for (int i = 1; i <= list->ListItems().Count(); ++i)
            names << list->ListItems().Item(i)->Text();
        return names;
    }

    QString fatal_;
};

} // namespace

TEST_F(FrmMainTest, ShowsItsDevicesWithoutAClick) {
    WriteDatabase();
    shell::FrmMain* main = Start();
    EXPECT_TRUE(main->isVisible());
    EXPECT_EQ(main->WindowRect().size(), QSize(750, 550));
    EXPECT_EQ(main->Caption(), "Brindlex - Quorvane v" + values::BuiltVersion());
    EXPECT_EQ(main->TabControl1->Item(0)->Caption(), "All Hardware (0)");
    // What the window shows between the steps, seen from inside its yields.
    QStringList captions;
    bool buttonsOff = true;
    bool panelShown = true;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        const QString caption = main->LabelStatus->Caption();
        if (captions.isEmpty() || captions.last() != caption)
            captions << caption;
        if (!caption.startsWith("Status: Reading") && !caption.startsWith("Status: Getting"))
            return;
        buttonsOff = buttonsOff && !main->CommandGetHardware->Enabled() && !main->CommandImproveHardware->Enabled() &&
                     !main->CommandCheckForUpdates->Enabled() && main->CommandColors->Enabled();
        panelShown = panelShown && (main->PanelProgress->Visible() || caption.startsWith("Status: Reading"));
    });
    watch.start(0);
    ASSERT_TRUE(QTest::qWaitFor([main] { return main->LabelStatus->Caption() == "Status: Done"; }, 20000));
    ASSERT_TRUE(QTest::qWaitFor([main] { return main->TabControl1->Item(0)->Caption() == "All Hardware (3)"; }));
    watch.stop();
    EXPECT_TRUE(captions.contains("Status: Reading Database Version && Device Count From hwids.mdb"));
    EXPECT_TRUE(captions.contains("Status: Getting Beta Hub"));
    EXPECT_TRUE(buttonsOff);
    EXPECT_TRUE(panelShown);
    EXPECT_EQ(main->TabControl1->Item(1)->Caption(), "No Drivers Installed (1)");
    EXPECT_EQ(main->TabControl1->Item(2)->Caption(), "Hardware With Problems (1)");
    EXPECT_EQ(main->LabelDatabaseVersion->Caption(), "Database Version: 2.3.4");
    EXPECT_EQ(main->LabelTotalDevices->Caption(), "Devices In Database: 1");
    EXPECT_TRUE(main->CommandGetHardware->Enabled() && main->CommandImproveHardware->Enabled());
    EXPECT_FALSE(main->PanelProgress->Visible());
    EXPECT_EQ(Names(main->ListViewHardware).mid(0, 2), (QStringList{"Alpha Hub", "Beta Hub"}));
    EXPECT_FALSE(main->ImportantLabelUpdateAvailable->Visible());
    EXPECT_EQ(values::Program().SystemFolder, "C:\\Windows\\System32\\");
}

TEST_F(FrmMainTest, CaptionsStandAtZeroUntilTheNextTickAfterAScan) {
    shell::FrmMain* main = StartAndScan();
    EXPECT_EQ(main->TabControl1->Item(0)->Caption(), "All Hardware (3)");
    main->Timer1->SetInterval(100000);
    // In its middle an update ends, and the button is asked for again: neither begins or ends anything.
    bool asked = false;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        if (asked || !main->LabelStatus->Caption().startsWith("Status: Getting"))
            return;
        asked = true;
        main->TimerCountDatabase_Tick();
        EXPECT_FALSE(main->CommandGetHardware->Enabled());
        EXPECT_TRUE(main->PanelProgress->Visible());
        main->CommandGetHardware_Click();
        EXPECT_NE(main->LabelStatus->Caption(), "Status: Done");
    });
    watch.start(0);
    main->CommandGetHardware_Click();
    watch.stop();
    EXPECT_TRUE(asked);
    EXPECT_EQ(main->TabControl1->Item(0)->Caption(), "All Hardware (0)");
    EXPECT_EQ(main->ListViewHardware->ListItems().Count(), 3);
    EXPECT_TRUE(main->Timer1->Enabled());
    main->Timer1_Tick();
    EXPECT_EQ(main->TabControl1->Item(0)->Caption(), "All Hardware (3)");
}

TEST_F(FrmMainTest, AMissingOrForeignDatabaseIsTheFatalMessage) {
    for (const QByteArray& content : {QByteArray(), QByteArray("This is no database at all.\n")}) {
        fatal_.clear();
        if (!content.isEmpty()) {
            QFile file(folder_.filePath("hwids.mdb"));
            ASSERT_TRUE(file.open(QIODevice::WriteOnly));
            file.write(content);
        }
        shell::FrmMain* main = Start();
        ASSERT_TRUE(QTest::qWaitFor([this] { return !fatal_.isEmpty(); }));
        const QStringList lines = fatal_.split("\r\n");
        ASSERT_EQ(lines.size(), 7);
        EXPECT_TRUE(lines[0].startsWith("ERROR: -"));
        EXPECT_EQ(lines[3], "Looks like the program had trouble opening the database with ADO!");
        EXPECT_TRUE(lines[4].endsWith("/forums/"));
        EXPECT_EQ(lines[6], "The Program Will Now Close.");
        main->Unload();
        values::Program().ProgramClosing = false;
    }
}

TEST_F(FrmMainTest, ColumnClicksSortAndTheDeleteKeyRemoves) {
    shell::FrmMain* main = StartAndScan();
    suite::ListView* list = main->ListViewHardware;
    Q_EMIT list->ColumnClick(1);
    EXPECT_EQ(list->SortOrder(), 1);
    EXPECT_EQ(Names(list).at(1), "Beta Hub");
    Q_EMIT list->ColumnClick(3);
    EXPECT_EQ(list->SortOrder(), 0);
    EXPECT_EQ(list->SortKey(), 2);
    Q_EMIT list->ColumnClick(1);
    EXPECT_EQ(Names(list).first(), "Alpha Hub");
    list->ListItems().SetSelectedItem(list->ListItems().Item(1));
    QTest::keyClick(list->Tree(), Qt::Key_Delete, Qt::ShiftModifier);
    EXPECT_EQ(list->ListItems().Count(), 2);
    ASSERT_NE(list->SelectedItem(), nullptr);
    EXPECT_EQ(list->SelectedItem()->Text(), "Beta Hub");
    EXPECT_EQ(main->ListViewNoSystemDevices->ListItems().Count(), 3); // the other lists keep it
    EXPECT_TRUE(QTest::qWaitFor([main] { return main->TabControl1->Item(0)->Caption() == "All Hardware (2)"; }));
    list->ListItems().SetSelectedItem(nullptr);
    QTest::keyClick(list->Tree(), Qt::Key_Delete);
    EXPECT_EQ(list->ListItems().Count(), 2);
}

TEST_F(FrmMainTest, TheLookupButtonFollowsTheSelectedTab) {
    shell::FrmMain* main = StartAndScan();
    suite::ListView* noDrivers = main->ListViewNoDrivers;
    main->TabControl1->Item(1)->SetSelected(true);
    EXPECT_EQ(main->SelectedList(), noDrivers);
    noDrivers->ListItems().SetSelectedItem(noDrivers->ListItems().Item(1));
    main->dcButton1_Click();
    auto* lookup = all_.Find("FrmLookup");
    ASSERT_NE(lookup, nullptr);
    EXPECT_EQ(lookup->Caption(), noDrivers->SelectedItem()->Text());
    const QString ids = lookup->Find<forms::TextBox>("TextID")->Text();
    EXPECT_TRUE(ids.startsWith("PCI\\VEN_1234&DEV_0003"));
    EXPECT_TRUE(ids.endsWith("\r\n"));
    noDrivers->ListItems().Clear();
    main->dcButton1_Click();
    EXPECT_EQ(all_.Loaded().size(), 3); // the main window, the hidden colours, one lookup
}

TEST_F(FrmMainTest, ARightClickOnAnEmptyListSaysSo) {
    shell::FrmMain* main = StartAndScan();
    main->ListViewProblems->ListItems().Clear();
    Q_EMIT main->ListViewProblems->MouseUp(forms::RightButton, 0, 1, 1);
    Q_EMIT main->ListViewProblems->MouseUp(forms::LeftButton, 0, 1, 1);
    EXPECT_EQ(messages_, QStringList{"The List Is Empty."});
}

TEST_F(FrmMainTest, LaysOutAtAnySizeAndHidesTheGripWhileMaximised) {
    shell::FrmMain* main = StartAndScan();
    main->SetWidth(15000);
    main->SetHeight(12000);
    QTest::qWait(20);
    EXPECT_EQ(main->TitelBar1->Width(), 15000);
    EXPECT_EQ(main->TabControl1->Width(), 15000 - 300);
    EXPECT_EQ(main->ListViewProblems->size(), main->TabControl1->PaneRect().size());
    EXPECT_EQ(main->LabelResize->geometry().bottomRight(), main->Client()->rect().bottomRight());
    main->SetWidth(1000);
    QTest::qWait(20);
    EXPECT_EQ(main->Width(), 11250);
    main->TitelBar1->MaxminizeParent();
    EXPECT_FALSE(main->LabelResize->Visible());
    EXPECT_EQ(main->WindowRect(), forms::WorkArea());
    main->TitelBar1->MaxminizeParent();
    EXPECT_TRUE(main->LabelResize->Visible());
}

TEST_F(FrmMainTest, ClosingEndsEverythingAlsoInTheMiddleOfAScan) {
    WriteDatabase();
    shell::FrmMain* main = Start();
    bool closed = false;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        if (!closed && main->LabelStatus->Caption().startsWith("Status: Getting")) {
            closed = true;
            EXPECT_TRUE(main->Unload());
        }
    });
    watch.start(0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return closed; }, 20000));
    watch.stop();
    EXPECT_TRUE(values::ProgramClosing());
    EXPECT_TRUE(all_.Loaded().isEmpty());
    EXPECT_EQ(database::DatabaseConnection(), nullptr);
    EXPECT_TRUE(QTest::qWaitFor([this] { return allGone_ > 0; })) << "the process would stay";
}

TEST_F(FrmMainTest, ClosingEndsEveryDialog) {
    WriteDatabase();
    forms::SetMsgBoxRecorder(nullptr);
    const std::pair<const char*, std::function<void()>> dialogs[] = {
        {"message", [] { forms::MsgBox("x"); }},
        {"input", [] { EXPECT_FALSE(forms::InputBox("x", "x", "x")); }},
        {"colour",
         [this] {
             auto* picker = all_.Shared("FrmColors")->findChild<suite::ColorPicker*>();
             ASSERT_NE(picker, nullptr);
             picker->findChild<QPushButton*>()->click();
         }},
        {"menu",
         [this] {
             auto* menu = all_.Shared("FrmMenu")->findChild<forms::Menu*>();
             ASSERT_NE(menu, nullptr);
             menu->PopupMenu({10, 10}, 0);
         }},
    };
    for (const auto& [name, open] : dialogs) {
        SCOPED_TRACE(name);
        values::Program() = values::ProgramValues();
        shell::FrmMain* main = Start();
        QTimer::singleShot(200, main, [main] { main->Unload(); });
        // What would wait for ever waits for this.
        bool late = false;
        QTimer last;
        QObject::connect(&last, &QTimer::timeout, [&] {
            late = true;
            forms::EndDialogs();
        });
        last.start(5000);
        open();
        EXPECT_FALSE(late);
        EXPECT_TRUE(all_.Loaded().isEmpty());
        all_.Bury();
    }
}

TEST_F(FrmMainTest, ClosingDoesNotWaitForTheSilentChecksAnswer) {
    WriteDatabase();
    QString path = values::SettingsPath();
    values::WriteSetting("main", "CheckForUpdates", "1", path);
    support::ScriptedServer server;
    server.SetAnswer("*", support::Answer().Stall());
    const QString host = std::exchange(values::ServerAddresses().UpdateHost, server.Url());
    shell::FrmMain* main = Start();
    QElapsedTimer sinceClosed;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        if (!sinceClosed.isValid() && !server.Requests().isEmpty()) {
            sinceClosed.start();
            main->Unload();
        }
    });
    watch.start(10);
    EXPECT_TRUE(QTest::qWaitFor([this] { return allGone_ > 0; }, 20000));
    EXPECT_LT(sinceClosed.elapsed(), 5000) << "the process would stay until the request fails";
    values::ServerAddresses().UpdateHost = host;
}

TEST_F(FrmMainTest, ClosedInTheMiddleOfItsLoadItLeavesNoWindowBehind) {
    WriteDatabase();
    for (int closeAt = 1; closeAt < 40; closeAt += 3) {
        values::Program() = values::ProgramValues();
        int dispatches = 0;
        QTimer watch;
        QObject::connect(&watch, &QTimer::timeout, [&] {
            forms::Form* main = all_.Find("FrmMain");
            if (++dispatches == closeAt && main != nullptr)
                main->Unload();
        });
        watch.start(0);
        Start();
        watch.stop();
        if (dispatches < closeAt)
            break;
        EXPECT_TRUE(all_.Loaded().isEmpty()) << closeAt;
        all_.Bury();
    }
}

TEST_F(FrmMainTest, SettingsDecideShadowAndCheck) {
    WriteDatabase();
    for (const char* key : {"CheckDisableShadow", "CheckForUpdates"}) {
        QString path = values::SettingsPath();
        values::WriteSetting("main", key, "1", path);
    }
    Start();
    EXPECT_TRUE(values::Program().ShadowDisabled);
    EXPECT_FALSE(values::Program().ShadowEnabled);
    EXPECT_TRUE(values::Program().CheckForUpdatesAtStart);
    values::Program().CheckForUpdatesAtStart = false;
}
