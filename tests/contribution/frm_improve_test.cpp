#include "contribution/frm_improve.h"

#include "base/paths.h"
#include "controls/dc_button.h"
#include "controls/panel_fx.h"
#include "database/additions.h"
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
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

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
        MakeDatabase();
    }
    ~FrmImproveTest() override {
        all_.Clear();
        database::CloseDeviceDatabase();
        values::ServerAddresses() = addresses_;
        values::Program() = values::ProgramValues();
    }

    // Anew, with one device of the machine.
    void MakeDatabase() const {
        database::CloseDeviceDatabase();
        QFile::remove(folder_.filePath("hwids.mdb"));
        database::DatabaseBuilder builder;
        builder.Add("USB\\VID_1234&PID_0002", "disk", "BETA");
        builder.Add("USB\\VID_1234&PID_0002&REV_0100", "Disk", "Beta");
        QString error;
        EXPECT_TRUE(builder.Write(folder_.filePath("hwids.mdb"), "2.3.4", &error)) << error.toStdString();
        EXPECT_TRUE(database::OpenDeviceDatabase());
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

// Each time the rows come back with the next scan, though the database knows them, until they are sent or taken out.
TEST_F(FrmImproveTest, WhatWasNotSentIsOfferedAgain) {
    struct Case {
        const char* inTheWay; // a folder of this name, or an earlier file that nobody may change
        bool isFile;
        Answer answer;
        int requests;
        qsizetype lines; // of new_hardware.txt
        qsizetype rows;  // left on the list
        int known;       // whether the database has the rows
    };
    for (const Case& tried : {Case{"", false, Answer().Reset(), 1, 4, 0, true},
                              Case{"new_hardware.txt", false, Reply(200, "stored"), 0, 0, 0, true},
                              Case{"new_hardware.txt", true, Reply(200, "stored"), 0, 1, 0, true},
                              Case{"new_hardware_unsent.txt.new", false, Reply(200, "stored"), 0, 0, 4, false}}) {
        SCOPED_TRACE(tried.inTheWay);
        QFile::remove(folder_.filePath("new_hardware.txt"));
        const auto requests = server_.Requests().size();
        server_.SetAnswer(uploadPath, tried.answer);
        const QString way = folder_.filePath(tried.inTheWay);
        EXPECT_TRUE(*tried.inTheWay == 0 || tried.isFile || QDir().mkdir(way));
        if (tried.isFile) {
            Write(tried.inTheWay, "of an earlier run\r\n");
            if (QProcess::execute("chattr", {"+i", way}) != 0)
                continue; // another user, or a file system that cannot
        }
        FrmImprove* window = OpenAndScan();
        ClickAndWait(window, window->CommandSaveSubmit);
        EXPECT_EQ(window->ImportantLabelSubmitStatus->Caption(),
                  "Done! - Uploaded to Brindlex: Failed! Please email 'new_hardware.txt' file to mail@example");
        EXPECT_EQ(server_.Requests().size(), requests + tried.requests);
        EXPECT_EQ(Submitted().count("\r\n"), tried.lines);
        EXPECT_EQ(Rows(window).size(), tried.rows);
        EXPECT_EQ(database::IsDeviceInDatabase("USB\\VID_1234&PID_0004|||Optical Mouse|||Delta"), tried.known);
        window->Unload();
        if (tried.isFile) {
            EXPECT_EQ(QProcess::execute("chattr", {"-i", way}), 0);
        }
        QDir().rmdir(way);

        server_.SetAnswer(uploadPath, Reply(200, "stored"));
        window = OpenAndScan();
        ASSERT_EQ(Rows(window).size(), 4);
        window->ListViewHardware->ListItems().Item(1)->SetSelected(true);
        QTest::keyClick(window->ListViewHardware->Tree(), Qt::Key_Delete);
        ClickAndWait(window, window->CommandSaveSubmit);
        EXPECT_EQ(window->ImportantLabelSubmitStatus->Caption(), "Done! - Uploaded to Brindlex: Successful!");
        EXPECT_EQ(Submitted().count("\r\n"), 3);
        window->Unload();
        window = OpenAndScan();
        EXPECT_EQ(Rows(window).size(), tried.known ? 0 : 1) << "only a row that was never added is still unknown";
        window->Unload();
        MakeDatabase();
        EXPECT_FALSE(QFile::exists(folder_.filePath("new_hardware_unsent.txt")));
    }
}

TEST_F(FrmImproveTest, WhatBearsTheFilesNameIsReplacedAndNotWrittenTo) {
    Write("precious", "precious");
    const QByteArray path = QFile::encodeName(folder_.filePath("new_hardware.txt"));
    for (const bool pipe : {false, true}) {
        EXPECT_EQ(pipe ? mkfifo(path.constData(), 0600) : symlink("precious", path.constData()), 0);
        FrmImprove* window = OpenAndScan();
        ClickAndWait(window, window->CommandSaveSubmit);
        EXPECT_EQ(Submitted().count("\r\n"), 4);
        EXPECT_EQ(server_.Requests().last().count("|||"), 8);
        window->Unload();
        EXPECT_TRUE(QFile::remove(folder_.filePath("new_hardware.txt")));
        MakeDatabase();
    }
    QFile precious(folder_.filePath("precious"));
    EXPECT_TRUE(precious.open(QIODevice::ReadOnly) && precious.readAll() == "precious");
}

TEST_F(FrmImproveTest, RowsAllRemovedByHandSendAnEmptyFile) {
    Write("new_hardware.txt", "of an earlier run");
    Write("improve_database_keywords_to_skip.txt", "qemu\n" + QByteArray(1 << 20, '\n') + "Optical");
    FrmImprove* window = OpenAndScan();
    EXPECT_EQ(Rows(window).size(), 4) << "of keywords a mebibyte is read";
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
        [this, window] {
            EXPECT_TRUE(database::SubmissionRunning());
            EXPECT_EQ(Submitted().count("\r\n"), 1) << "a line is on the disk before its row goes";
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

// The first one's handler is below the second's on the stack and cannot end before it.
TEST_F(FrmImproveTest, ASubmissionWaitsForThatOfAWindowClosedMeanwhile) {
    FrmImprove* first = OpenAndScan();
    FrmImprove* second = nullptr;
    When(
        first, [=] { return first->ListViewHardware->ListItems().Count() == 3; },
        [&] {
            first->Unload();
            second = OpenAndScan();
            EXPECT_EQ(Rows(second).size(), 3);
            QTest::mouseClick(second->CommandSaveSubmit, Qt::LeftButton);
        });
    QTest::mouseClick(first->CommandSaveSubmit, Qt::LeftButton);
    ASSERT_NE(second, nullptr);
    EXPECT_TRUE(QTest::qWaitFor([&] { return Rows(second).isEmpty() && Done(second); }, 20000));
    ASSERT_EQ(server_.Requests().size(), 2);
    EXPECT_EQ(server_.Requests().first().count("|||"), 8);
    EXPECT_EQ(server_.Requests().last().count("|||"), 6);
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
