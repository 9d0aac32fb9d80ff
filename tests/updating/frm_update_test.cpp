#include "updating/frm_update.h"

#include "base/paths.h"
#include "controls/brindlex_pb.h"
#include "controls/dc_button.h"
#include "controls/panel_fx.h"
#include "data/replace_file.h"
#include "database/schema.h"
#include "database/store.h"
#include "database/submission_scope.h"
#include "forms/desktop.h"
#include "forms/dialogs.h"
#include "forms/forms.h"
#include "forms/label.h"
#include "forms/timer.h"
#include "net/engine_process.h"
#include "suite/check_box.h"
#include "support/scripted_server.h"
#include "updating/download.h"
#include "values/addresses.h"
#include "values/program_values.h"
#include "values/settings.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest/QTest>
#include <gtest/gtest.h>

namespace {

using support::Answer;
using support::Promise;
using support::Reply;
using support::ScriptedServer;
using updating::FrmUpdate;

// The part of the main window that the update window knows.
class MainWindow : public forms::Form {
  public:
    MainWindow() : Form("FrmMain", 3000, 3000) {
        version = new forms::Label(Client(), "LabelDatabaseVersion", "Database Version: 2.5.0");
        notice = new forms::Label(Client(), "ImportantLabelUpdateAvailable");
        count = new forms::Timer(this, "TimerCountDatabase", 100'000, false);
    }
    forms::Label* version;
    forms::Label* notice;
    forms::Timer* count;
};

class FrmUpdateTest : public testing::Test {
  protected:
    FrmUpdateTest() : addresses_(values::ServerAddresses()), program_(values::Program()) {
        base::SetProgramFolder(folder_.path());
        values::ServerAddresses().UpdateHost = server_.Url();
        values::Program().ProgramVersion = "1.2.3";
        auto& all = forms::Forms::Instance();
        all.SetAllGone([] {});
        all.RegisterMaker("FrmMain", [] { return std::make_unique<MainWindow>(); });
        updating::RegisterUpdateForm();
        main_ = static_cast<MainWindow*>(all.Shared("FrmMain"));
        main_->EnsureLoaded();
        forms::SetMsgBoxRecorder([this](const QString& text, forms::MessageIcon icon) {
            EXPECT_EQ(icon, forms::MessageIcon::Critical);
            messages_.append(text);
        });
        MakeDatabase("hwids.mdb", "2.5.0");
    }
    ~FrmUpdateTest() override {
        forms::Forms::Instance().Clear();
        forms::SetMsgBoxRecorder(nullptr);
        values::ServerAddresses() = addresses_;
        values::Program() = program_;
        base::SetProgramFolder({});
    }

    void MakeDatabase(const QString& name, const QString& version) const {
        ASSERT_TRUE(data::CreateDatabaseFile(
            folder_.filePath(name), database::SchemaStatements() +
                                        QStringList(QStringLiteral("INSERT INTO version VALUES ('%1')").arg(version))));
    }

    QByteArray Read(const QString& name) const {
        QFile file(folder_.filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("missing");
    }

    // An archive of files of that content, by name.
    static QByteArray Archive(const QMap<QString, QByteArray>& files) {
        const QTemporaryDir work;
        for (auto entry = files.begin(); entry != files.end(); ++entry) {
            QFile file(work.filePath(entry.key()));
            EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(entry.value()) == entry.value().size());
        }
        QProcess packer;
        packer.setWorkingDirectory(work.path());
        packer.start(net::FindEngine(), QStringList{"a", "-bd", "made.7z"} + files.keys());
        EXPECT_TRUE(packer.waitForFinished());
        QFile made(work.filePath("made.7z"));
        EXPECT_TRUE(made.open(QIODevice::ReadOnly));
        return made.readAll();
    }
    static QByteArray Archive(const QByteArray& content, const QString& name = "hwids.mdb") {
        return Archive({{name, content}});
    }

    FrmUpdate* Open() {
        window_ = static_cast<FrmUpdate*>(forms::Forms::Instance().Shared("FrmUpdate"));
        window_->Show();
        return window_;
    }

    // Starts the download as the user does and returns when `until` holds.
    void Start(const Answer& answer, const std::function<bool()>& until) {
        server_.SetAnswer("/files/updates/quorvane/hwids.7z", answer);
        Open();
        window_->CommandDownloadDatabase->SetEnabled(true);
        QTest::mouseClick(window_->CommandDownloadDatabase, Qt::LeftButton);
        EXPECT_TRUE(window_->PanelDownloading->Visible());
        EXPECT_FALSE(window_->PanelProgram->Visible());
        EXPECT_FALSE(window_->PanelDatabase->Visible());
        // The download runs inside the timer's tick, so tests look on from a timer of their own.
        EXPECT_TRUE(QTest::qWaitFor(until, 10'000));
    }

    QString Caption(const forms::Label* label) const { return label->Caption(); }

    const values::Addresses addresses_;
    const values::ProgramValues program_;
    ScriptedServer server_;
    QTemporaryDir folder_;
    MainWindow* main_ = nullptr;
    FrmUpdate* window_ = nullptr;
    QStringList messages_;
};

TEST_F(FrmUpdateTest, LoadsWithBothVersionsAndSweepsAnOldArchive) {
    QFile old(folder_.filePath("hwids.7z"));
    ASSERT_TRUE(old.open(QIODevice::WriteOnly));
    old.close();
    values::Program().CheckForUpdatesAtStart = true;
    Open();
    EXPECT_EQ(window_->Width(), 6240);
    EXPECT_EQ(window_->Height(), 3600);
    EXPECT_EQ(window_->PanelProgram->TitleCaption(), "Current Program Version: 1.2.3");
    EXPECT_EQ(window_->PanelDatabase->TitleCaption(), "Device Database Version: 2.5.0");
    EXPECT_EQ(window_->CheckForUpdates->Value(), 1);
    EXPECT_FALSE(old.exists());
    EXPECT_TRUE(window_->Unload());
}

TEST_F(FrmUpdateTest, TheChecksFillTheLabelsOncePerOpening) {
    server_.SetAnswer("/files/updates/quorvane/update.htm", Reply(200, "1.2.3"));
    server_.SetAnswer("/files/updates/quorvane/database_v1.htm", Reply(200, "2.6.0"));
    main_->notice->SetVisible(false);
    Open();
    window_->TimerCheckForUpdates->SetEnabled(true);
    ASSERT_TRUE(QTest::qWaitFor([this] { return window_->CommandDownloadDatabase->Enabled(); }, 5'000));
    EXPECT_FALSE(window_->TimerCheckForUpdates->Enabled());
    EXPECT_EQ(Caption(window_->Label1), "Online Version: 1.2.3");
    EXPECT_EQ(Caption(window_->Label2), "Update Available: NO");
    EXPECT_FALSE(window_->CommmandOpenBrindlex->Enabled());
    EXPECT_EQ(Caption(window_->Label4), "Online Version: 2.6.0");
    EXPECT_EQ(Caption(window_->Label3), "Update Available: YES");
    EXPECT_NE(window_->Label3->ForeColor(), window_->Label2->ForeColor());
    EXPECT_FALSE(main_->notice->Visible()) << "only the silent check shows the notice";
    QString opened;
    forms::SetBrowserRecorder([&opened](const QString& address) { opened = address; });
    window_->CommmandOpenBrindlex->SetEnabled(true);
    QTest::mouseClick(window_->CommmandOpenBrindlex, Qt::LeftButton);
    EXPECT_EQ(opened, values::ServerAddresses().WebSite);
    forms::SetBrowserRecorder(nullptr);
}

TEST_F(FrmUpdateTest, TheCheckBoxIsSavedAsText) {
    Open();
    QTest::keyClick(window_->CheckForUpdates->findChild<QWidget*>(), Qt::Key_Space);
    EXPECT_TRUE(values::Program().CheckForUpdatesAtStart);
    QString path = values::SettingsPath();
    EXPECT_EQ(values::ReadSetting("main", "CheckForUpdates", path), "1");
}

TEST_F(FrmUpdateTest, AFinishedDownloadReplacesTheDatabase) {
    MakeDatabase("new", "2.6.0");
    const QByteArray database = Read("new");
    const QByteArray archive = Archive(database);
    QStringList unzip;
    QStringList status;
    Open();
    QObject::connect(window_->DL1, &updating::DownLoadControl::StatusChange, window_,
                     [&](const QString&) { status.append(window_->lblStatus->Caption()); });
    Start(Reply(200, archive), [] { return forms::Forms::Instance().Find("FrmUpdate") == nullptr; });
    EXPECT_EQ(Read("hwids.mdb"), database);
    EXPECT_TRUE(main_->count->Enabled());
    EXPECT_FALSE(main_->notice->Visible());
    EXPECT_TRUE(messages_.isEmpty());
    EXPECT_EQ(Caption(window_->ImportantLabelUnzip), "Decompressed Successfully");
    EXPECT_EQ(window_->PanelDownloading->TitleCaption(), "Decompressed Successfully");
    EXPECT_EQ(Caption(window_->lblCBytes), QStringLiteral("Current Bytes Read - %1").arg(archive.size()));
    EXPECT_EQ(Caption(window_->lblTotalBytes), QStringLiteral("Total Bytes - %1").arg(archive.size()));
    EXPECT_EQ(Caption(window_->InfoLabelpercent), "Percent Complete - 100");
    EXPECT_TRUE(Caption(window_->InfolabelRate).startsWith("Transfer Rate - "));
    EXPECT_EQ(Caption(window_->lblTime), "Time Remaining - 0 sec");
    EXPECT_TRUE(status.contains("Status - Recieving File..."));
    EXPECT_EQ(window_->PB1->Value(), archive.size());
    EXPECT_EQ(window_->PB1->Max(), archive.size());
}

TEST_F(FrmUpdateTest, ARefusedDownloadSaysWhyAndStaysClosable) {
    Start(Reply(404, "none"), [this] { return !Caption(window_->lblerr).endsWith("- "); });
    EXPECT_EQ(Caption(window_->lblStatus), "Status - File Not Found!");
    EXPECT_EQ(Caption(window_->lblerr), "Error Code - [2] File Doesn't Exist!");
    EXPECT_EQ(window_->PB1->Value(), 0);
    EXPECT_EQ(Caption(window_->lblCBytes), "Bytes Read - ");
    EXPECT_TRUE(window_->PanelDownloading->Visible());
    EXPECT_FALSE(database::DatabaseConnection()) << "it stays closed until something opens it";
    EXPECT_TRUE(window_->Unload());
}

TEST_F(FrmUpdateTest, InTheMiddleOnlyCancelClosesTheWindow) {
    const auto at40 = [this] { return Caption(window_->InfoLabelpercent).endsWith(" 40"); };
    bool refused = false;
    bool closed = false;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, [&] {
        if (!refused && window_ != nullptr && at40()) {
            refused = !window_->Unload();
            QTest::mouseClick(window_->CommandCancel, Qt::LeftButton);
            closed = window_->IsUnloaded();
        }
    });
    look.start(5);
    Start(Promise(200, 10 * 1024).Send(QByteArray(4 * 1024, 'x')).Stall(), [&] { return closed; });
    EXPECT_TRUE(refused);
    QTest::qWait(100);
    EXPECT_EQ(Read("hwids.7z").size(), 4 * 1024) << "the partial file stays";
    EXPECT_FALSE(main_->count->Enabled());
    EXPECT_TRUE(database::OpenDatabaseFile(folder_.filePath("hwids.mdb")));
    database::CloseDeviceDatabase();
    EXPECT_TRUE(QTest::qWaitFor([this] { return server_.OpenConnections() == 0; }, 5'000))
        << "the window's end drops the connection";
    Open();
    EXPECT_EQ(Read("hwids.7z"), "missing") << "the next opening sweeps it";
}

TEST_F(FrmUpdateTest, ABrokenTransferLeavesTheWindowToItsCancelButton) {
    Start(Promise(200, 10 * 1024).Send(QByteArray(4 * 1024, 'x')).Reset(),
          [this] { return Caption(window_->lblerr).contains(QChar(u'[')); });
    EXPECT_EQ(Caption(window_->lblerr), "Error Code - [1] Uknown Error!");
    EXPECT_EQ(Caption(window_->lblStatus), "Status - Download Aborted Due To Error In Download!");
    EXPECT_FALSE(window_->Unload());
    QTest::mouseClick(window_->CommandCancel, Qt::LeftButton);
    EXPECT_TRUE(window_->IsUnloaded());
}

TEST_F(FrmUpdateTest, ABadArchiveIsReportedAndTheOldDatabaseStays) {
    const QByteArray before = Read("hwids.mdb");
    MakeDatabase("new", "2.6.0");
    ASSERT_TRUE(data::CreateDatabaseFile(folder_.filePath("foreign"), {"CREATE TABLE x (a)"}));
    const QString unopened = "Failed to open the download database file!";
    const QString unpacked = "Failed to decompress the download database file!";
    struct Case {
        QByteArray archive;
        QString message;
    };
    for (const Case& tried :
         {Case{"<html>no archive at all</html>", unopened}, Case{Archive("x", "libevil.so"), unpacked},
          Case{Archive("not a database, though well packed"), unpacked}, Case{Archive(Read("foreign")), unpacked},
          Case{Archive({{"hwids.mdb", Read("new")}, {"z.mdb", "the second one is none"}}), unpacked}}) {
        messages_.clear();
        main_->notice->SetVisible(true);
        main_->count->SetEnabled(false);
        Start(Reply(200, tried.archive), [] { return forms::Forms::Instance().Find("FrmUpdate") == nullptr; });
        EXPECT_EQ(messages_, QStringList{tried.message});
        EXPECT_EQ(Caption(window_->ImportantLabelUnzip), tried.message);
        EXPECT_EQ(Read("hwids.mdb"), before);
        EXPECT_TRUE(main_->count->Enabled());
        EXPECT_FALSE(main_->notice->Visible());
        EXPECT_EQ(Read("hwids.7z"), tried.archive) << "stays until the next opening";
    }
}

TEST_F(FrmUpdateTest, AnUnpackingThatIsGivenUpHasNotFailed) {
    const QByteArray before = Read("hwids.mdb");
    const QByteArray archive = Archive(QByteArray(32 << 20, '\0'));
    for (const bool byCancel : {true, false}) {
        main_->count->SetEnabled(false);
        bool givenUp = false;
        QTimer look;
        QObject::connect(&look, &QTimer::timeout, [&] {
            if (!givenUp && Caption(window_->ImportantLabelUnzip).contains("Progress")) {
                givenUp = true;
                byCancel ? QTest::mouseClick(window_->CommandCancel, Qt::LeftButton) : void(window_->Unload());
            }
        });
        Open();
        look.start(0);
        Start(Reply(200, archive), [this] { return main_->count->Enabled(); });
        EXPECT_TRUE(givenUp);
        EXPECT_EQ(messages_, QStringList());
        EXPECT_EQ(Read("hwids.mdb"), before);
    }
}

TEST_F(FrmUpdateTest, ADownloadWaitsForTheSubmissionsEnd) {
    Open();
    window_->CommandDownloadDatabase->SetEnabled(true);
    {
        const database::SubmissionScope submission;
        QTest::mouseClick(window_->CommandDownloadDatabase, Qt::LeftButton);
        QTest::qWait(400);
        EXPECT_TRUE(window_->PanelDatabase->Visible());
        EXPECT_TRUE(server_.Requests().isEmpty());
    }
    EXPECT_TRUE(QTest::qWaitFor([this] { return !server_.Requests().isEmpty(); }, 5'000));
    EXPECT_TRUE(window_->PanelDownloading->Visible());
    values::Program().ProgramClosing = true;
    window_->Unload();
    EXPECT_FALSE(Open()->isVisible()) << "a closing program opens no window";
}

} // namespace
