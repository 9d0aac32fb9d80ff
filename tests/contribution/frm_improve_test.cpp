#include "contribution/frm_improve.h"

#include "base/paths.h"
#include "controls/dc_button.h"
#include "controls/panel_fx.h"
#include "database/database_builder.h"
#include "database/store.h"
#include "database/submission_scope.h"
#include "device_fixture.h"
#include "forms/desktop.h"
#include "forms/dialogs.h"
#include "forms/forms.h"
#include "forms/label.h"
#include "forms/timer.h"
#include "inventory/frm_menu.h"
#include "shell/frm_main.h"
#include "suite/list_tree.h"
#include "suite/list_view.h"
#include "support/scripted_server.h"
#include "support/usb_device.h"
#include "upload_request.h"
#include "values/addresses.h"
#include "values/program_values.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>
#include <sys/mount.h>

using contribution::FrmImprove;
using support::Answer;
using support::Reply;

namespace {

// Of two IDs: one with the revision and one without.
QByteArray UsbDevice(int port, const QByteArray& product, const QByteArray& name, const QByteArray& maker) {
    return support::UsbDevice(port, product, name, maker, "  bcdDevice = 0100\n" + support::usbDriver);
}

// Two devices to be offered, a disk that the database knows, a device for the keywords.
const QByteArray machineText = UsbDevice(1, "0001", "Zoom Camera™", "Alpha") + UsbDevice(2, "0002", "Disk", "Beta") +
                               UsbDevice(3, "0003", "QEMU Tablet", "Gamma") +
                               UsbDevice(4, "0004", "Optical Mouse", "Delta");
const QByteArray uploadPath = "/files/hardware_ids/upload_hardware_id_v1.php";

class FrmImproveTest : public testing::Test {
  protected:
    FrmImproveTest() : machine_(machineText) {
        base::SetProgramFolder(folder_.path());
        values::Program() = values::ProgramValues();
        values::ServerAddresses().UploadHost = server_.Url();
        values::ServerAddresses().Mail = "mail@example";
        server_.SetAnswer(uploadPath, Reply(500, "stored"));
        all_.SetAllGone([] {});
        shell::RegisterMainWindow();
        inventory::RegisterMenuForm();
        contribution::RegisterImproveForm();
        all_.Shared("FrmMain");
        Write("improve_database_keywords_to_skip.txt", "nothing\r\n\r\nqemu");
        database::DatabaseBuilder builder;
        builder.Add("USB\\VID_1234&PID_0002", "disk", "BETA");
        builder.Add("USB\\VID_1234&PID_0002&REV_0100", "Disk", "Beta");
        QString error;
        EXPECT_TRUE(builder.Write(folder_.filePath("hwids.mdb"), "2.3.4", &error)) << error.toStdString();
        EXPECT_TRUE(database::OpenDeviceDatabase());
    }
    ~FrmImproveTest() override {
        all_.Clear();
        database::CloseDeviceDatabase();
        values::ServerAddresses() = addresses_;
        values::Program() = values::ProgramValues();
    }

    void Write(const QString& name, const QByteArray& bytes) const {
        QFile file(folder_.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    QByteArray Submitted() const {
        QFile file(folder_.filePath("new_hardware.txt"));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("missing");
    }

    FrmImprove* Open() {
        auto* window = static_cast<FrmImprove*>(all_.Shared("FrmImprove"));
        window->Show();
        return window;
    }
    static bool Done(const FrmImprove* window) { return window->LabelStatus->Caption() == "Status: Done."; }
    static void ClickAndWait(FrmImprove* window, controls::dcButton* button) {
        QTest::mouseClick(button, Qt::LeftButton);
        EXPECT_TRUE(QTest::qWaitFor([window] { return Done(window); }, 20000));
        EXPECT_TRUE(ShowsItsTotal(window));
    }
    // Waits for the timer that writes the number of the rows.
    static bool ShowsItsTotal(const FrmImprove* window) {
        return QTest::qWaitFor(
            [window] {
                return window->InfoLabelListTotal->Caption() == QStringLiteral("Total Hardware Not In Database: %1")
                                                                    .arg(window->ListViewHardware->ListItems().Count());
            },
            5000);
    }
    FrmImprove* OpenAndScan() {
        FrmImprove* window = Open();
        ClickAndWait(window, window->CommandGetHardware);
        return window;
    }

    // Runs once, inside the work, when `ready` holds.
    static void When(FrmImprove* window, const std::function<bool()>& ready, const std::function<void()>& act) {
        auto* timer = new QTimer(window);
        QObject::connect(timer, &QTimer::timeout, timer, [=] {
            if (!ready())
                return;
            timer->stop();
            act();
        });
        timer->start(0);
    }

    static QStringList Rows(const FrmImprove* window) {
        QStringList rows;
        const suite::ListItems& items = window->ListViewHardware->ListItems();
        for (int i = 1; i <= items.Count(); ++i)
            rows << items.Item(i)->Text() + u'/' + items.Item(i)->CellText(1) + u'/' + items.Item(i)->CellText(2);
        return rows;
    }

    forms::Forms& all_ = forms::Forms::Instance();
    const values::Addresses addresses_ = values::ServerAddresses();
    QTemporaryDir folder_;
    DeviceFixture machine_;
    support::ScriptedServer server_;
};

TEST_F(FrmImproveTest, AWholeRunAddsUploadsAndOffersNothingTwice) {
    FrmImprove* window = Open();
    EXPECT_TRUE(window->CommandGetHardware->Enabled());
    EXPECT_FALSE(window->CommandSaveSubmit->Enabled());
    bool working = false;
    When(
        window, [=] { return window->StatusText.startsWith("Searching Database... "); },
        [&] {
            working = true;
            EXPECT_FALSE(window->ListViewHardware->Visible());
            EXPECT_TRUE(window->PanelProgress->Visible());
            EXPECT_FALSE(window->CommandGetHardware->Enabled());
            EXPECT_FALSE(window->CommandSaveSubmit->Enabled());
        });
    ClickAndWait(window, window->CommandGetHardware);
    EXPECT_TRUE(working);
    EXPECT_TRUE(window->ListViewHardware->Visible());
    EXPECT_FALSE(window->PanelProgress->Visible());
    EXPECT_FALSE(window->CommandGetHardware->Enabled()) << "one scan per opening";
    const QString camera = QString::fromUtf8("Zoom Camera™/Alpha/USB\\VID_1234&PID_0001");
    const QString mouse = "Optical Mouse/Delta/USB\\VID_1234&PID_0004";
    EXPECT_EQ(Rows(window), (QStringList{mouse + "&REV_0100", mouse, camera + "&REV_0100", camera}));
    EXPECT_EQ(window->InfoLabelListTotal->Caption(), "Total Hardware Not In Database: 4");

    suite::ListTree* tree = window->ListViewHardware->Tree();
    QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, tree->visualRect(tree->model()->index(1, 0)).center());
    QTest::keyClick(tree, Qt::Key_Delete);
    EXPECT_TRUE(ShowsItsTotal(window));
    EXPECT_EQ(window->InfoLabelListTotal->Caption(), "Total Hardware Not In Database: 3");

    ClickAndWait(window, window->CommandSaveSubmit);
    EXPECT_EQ(window->ImportantLabelSubmitStatus->Caption(), "Done! - Uploaded to Brindlex: Successful!");
    EXPECT_EQ(window->InfoLabelListTotal->Caption(), "Total Hardware Not In Database: 0");
    EXPECT_FALSE(window->CommandSaveSubmit->Enabled());
    const QByteArray lines = "USB\\VID_1234&PID_0001|||Zoom Camera\x99|||Alpha\r\n"
                             "USB\\VID_1234&PID_0001&REV_0100|||Zoom Camera\x99|||Alpha\r\n"
                             "USB\\VID_1234&PID_0004&REV_0100|||Optical Mouse|||Delta\r\n";
    EXPECT_EQ(Submitted(), lines);
    EXPECT_EQ(server_.Requests(), QList<QByteArray>{UploadRequest(server_.Port(), uploadPath, lines)});
    EXPECT_FALSE(database::SubmissionRunning());

    window->Unload();
    window = OpenAndScan();
    EXPECT_EQ(Rows(window), QStringList(mouse));
    window->Unload();
    // What another process or another opening of the program finds.
    database::CloseDeviceDatabase();
    ASSERT_TRUE(database::OpenDeviceDatabase());
    EXPECT_EQ(Rows(OpenAndScan()), QStringList(mouse));
}

TEST_F(FrmImproveTest, ASecondClickBeforeTheButtonIsDisabledDoesNothing) {
    FrmImprove* window = OpenAndScan();
    const int offered = window->ListViewHardware->ListItems().Count();
    QTimer::singleShot(0, window, [window] { QTest::mouseClick(window->CommandSaveSubmit, Qt::LeftButton); });
    ClickAndWait(window, window->CommandSaveSubmit);
    EXPECT_EQ(server_.Requests().size(), 1);
    EXPECT_EQ(Submitted().count("\r\n"), offered);
}

TEST_F(FrmImproveTest, AFailedUploadNamesTheAddressAndKeepsTheAdditions) {
    server_.SetAnswer(uploadPath, Answer().Reset());
    FrmImprove* window = OpenAndScan();
    ClickAndWait(window, window->CommandSaveSubmit);
    EXPECT_EQ(window->ImportantLabelSubmitStatus->Caption(),
              "Done! - Uploaded to Brindlex: Failed! Please email 'new_hardware.txt' file to mail@example");
    EXPECT_EQ(Submitted().count("\r\n"), 4);
    window->Unload();
    window = OpenAndScan();
    EXPECT_TRUE(Rows(window).isEmpty());
    EXPECT_FALSE(window->CommandSaveSubmit->Enabled());
    EXPECT_TRUE(Done(window));
}

TEST_F(FrmImproveTest, AFileThatCannotBeWrittenDoesNotKeepTheRowsFromTheDatabase) {
    ASSERT_TRUE(QDir(folder_.path()).mkdir("new_hardware.txt"));
    FrmImprove* window = OpenAndScan();
    ClickAndWait(window, window->CommandSaveSubmit);
    EXPECT_TRUE(window->ImportantLabelSubmitStatus->Caption().contains("Failed!"));
    EXPECT_TRUE(server_.Requests().isEmpty());
    window->Unload();
    EXPECT_TRUE(Rows(OpenAndScan()).isEmpty());
}

TEST_F(FrmImproveTest, AFullDiskEndsTheFileAndNothingElse) {
    const QTemporaryDir place;
    const QByteArray disk = place.path().toLocal8Bit();
    if (mount("none", disk.constData(), "tmpfs", 0, "size=4096") != 0)
        GTEST_SKIP() << "no right to mount";
    QFile filler(place.filePath("filler"));
    EXPECT_TRUE(filler.open(QIODevice::WriteOnly) && filler.write(QByteArray(4096, 'x')) == 4096);
    filler.close();
    EXPECT_TRUE(QFile::link(place.filePath("full.txt"), folder_.filePath("new_hardware.txt")));
    FrmImprove* window = OpenAndScan();
    ClickAndWait(window, window->CommandSaveSubmit);
    EXPECT_EQ(Submitted(), "");
    EXPECT_TRUE(Rows(window).isEmpty());
    window->Unload();
    EXPECT_TRUE(Rows(OpenAndScan()).isEmpty());
    umount(disk.constData());
}

TEST_F(FrmImproveTest, RowsAllRemovedByHandSendAnEmptyFile) {
    Write("new_hardware.txt", "of an earlier run");
    FrmImprove* window = OpenAndScan();
    window->ListViewHardware->ListItems().Item(1)->SetSelected(true);
    for (int i = 0; i < 4; ++i)
        QTest::keyClick(window->ListViewHardware->Tree(), Qt::Key_Delete);
    ClickAndWait(window, window->CommandSaveSubmit);
    EXPECT_EQ(Submitted(), "");
    EXPECT_EQ(server_.Requests(), QList<QByteArray>{UploadRequest(server_.Port(), uploadPath, "")});
}

TEST_F(FrmImproveTest, ASubmissionRunsToItsEndThoughWindowDatabaseAndProgramClose) {
    FrmImprove* window = OpenAndScan();
    When(
        window, [=] { return window->ListViewHardware->ListItems().Count() == 3; },
        [=] {
            EXPECT_TRUE(database::SubmissionRunning());
            window->Unload();
            values::Program().ProgramClosing = true;
            database::CloseDeviceDatabase();
        });
    QTest::mouseClick(window->CommandSaveSubmit, Qt::LeftButton);
    EXPECT_EQ(Submitted().count("\r\n"), 4);
    EXPECT_EQ(server_.Requests().size(), 1);
    // The row whose addition had returned is there, the others are not.
    values::Program().ProgramClosing = false;
    ASSERT_TRUE(database::OpenDeviceDatabase());
    EXPECT_EQ(Rows(OpenAndScan()).size(), 3);
}

TEST_F(FrmImproveTest, AScanGoesOnInAClosedWindowAndStopsWithTheProgram) {
    FrmImprove* closed = Open();
    bool done = false;
    When(
        closed, [=] { return closed->StatusText.startsWith("Searching"); },
        [&] {
            closed->Unload();
            When(
                closed, [=] { return closed->StatusText == "Done."; }, [&] { done = true; });
        });
    QTest::mouseClick(closed->CommandGetHardware, Qt::LeftButton);
    EXPECT_TRUE(done);

    FrmImprove* ending = Open();
    EXPECT_NE(ending, closed);
    When(
        ending, [=] { return ending->LabelStatus->Caption().startsWith("Status: Getting "); },
        [] { values::Program().ProgramClosing = true; });
    QTest::mouseClick(ending->CommandGetHardware, Qt::LeftButton);
    EXPECT_TRUE(Rows(ending).isEmpty());
    EXPECT_TRUE(ending->ListViewHardware->Visible());
}

} // namespace
