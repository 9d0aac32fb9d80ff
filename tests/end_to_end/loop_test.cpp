// The whole way of a device into everybody's database, with the real tools, windows and web server: a database is built
// and published; a user contributes a device that it lacks; a maintainer checks, merges and publishes what arrived;
// other users are told of it, fetch it, and find the device.
#include "appearance/frm_colors.h"
#include "base/paths.h"
#include "contribution/frm_improve.h"
#include "controls/dc_button.h"
#include "database/frm_lookup.h"
#include "database/store.h"
#include "device_fixture.h"
#include "forms/dialogs.h"
#include "forms/forms.h"
#include "forms/label.h"
#include "forms/timer.h"
#include "inventory/frm_menu.h"
#include "shell/frm_main.h"
#include "suite/list_view.h"
#include "updating/frm_update.h"
#include "values/addresses.h"
#include "values/program_values.h"
#include "values/settings.h"
#include "web_server.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <gmock/gmock.h>
#include <optional>

using testing::HasSubstr;

namespace {

using end_to_end::WebServer;

constexpr char pciIds[] = "1af4  Red Hat, Inc.\n\t1000  Network device\n";
constexpr char usbIds[] = "1234  Lumen Optics\n\t0009  Something else\n";

// The same camera in two machines; the second one is not told its name.
constexpr char contributorsMachine[] = R"(
/devices/pci0000:00/0000:00:14.0/usb1/1-1 @ bus/usb
  idVendor = 1234
  idProduct = 0001
  bcdDevice = 0100
  bDeviceClass = 09
  product = Photon 3 Camera™
  manufacturer = Lumen Optics
  driver -> /bus/usb/drivers/usb
)";
constexpr char secondMachine[] = R"(
/devices/pci0000:00/0000:00:14.0/usb1/1-2 @ bus/usb
  idVendor = 1234
  idProduct = 0001
  bcdDevice = 0100
  bDeviceClass = 09
  driver -> /bus/usb/drivers/usb
)";

struct Result {
    int Status = -1;
    std::string Output;
};

class LoopTest : public testing::Test {
  protected:
    LoopTest() : server_(QStringLiteral(QUORVANE_SERVER_FOLDER)), addresses_(values::ServerAddresses()) {
        forms::SetMsgBoxRecorder(
            [](const QString& text, forms::MessageIcon) { ADD_FAILURE() << "message: " << Plain(text); });
        values::ServerAddresses().UpdateHost = server_.Url();
        values::ServerAddresses().UploadHost = server_.Url();
    }

    ~LoopTest() override {
        End();
        forms::SetMsgBoxRecorder(nullptr);
        values::ServerAddresses() = addresses_;
        base::SetProgramFolder({});
    }

    QString Path(const QString& name) const { return folder_.filePath(name); }

    void Write(const QString& name, const QByteArray& bytes) const {
        QFile file(Path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }

    // quorvane-db in the maintainer's folder.
    Result Maintain(const QString& arguments) const {
        QProcess tool;
        tool.setWorkingDirectory(folder_.path());
        tool.setProcessChannelMode(QProcess::MergedChannels);
        tool.start(QCoreApplication::applicationDirPath() + QStringLiteral("/quorvane-db"),
                   QProcess::splitCommand(arguments));
        EXPECT_TRUE(tool.waitForFinished(60000));
        return {tool.exitCode(), tool.readAll().toStdString()};
    }

    // A new key; its public part as a build takes it.
    QString MakeKey(const QString& name) const {
        const Result made = Maintain(QStringLiteral("keygen --output ") + name);
        EXPECT_EQ(made.Status, 0) << made.Output;
        return QString::fromStdString(made.Output).trimmed().section(u'=', 1);
    }

    void Publish(const QString& keys) const {
        const Result packed = Maintain(QStringLiteral("pack shared.mdb ") + keys + QStringLiteral(" --output ") +
                                       server_.PublicFolder() + QStringLiteral("/files/updates/quorvane"));
        ASSERT_EQ(packed.Status, 0) << packed.Output;
    }

    // A user's folder with the database as it is published now.
    void MakeClient(const QString& name) const {
        ASSERT_TRUE(QDir(folder_.path()).mkdir(name));
        ASSERT_TRUE(QFile::copy(Path(QStringLiteral("shared.mdb")), Path(name + QStringLiteral("/hwids.mdb"))));
    }

    void RegisterWindows() {
        all_.SetAllGone([] {});
        shell::RegisterMainWindow();
        appearance::RegisterForms();
        inventory::RegisterMenuForm();
        database::RegisterLookupForm();
        contribution::RegisterImproveForm();
        updating::RegisterUpdateForm();
    }

    // The program from its start to the end of its first scan, in that folder on that machine.
    void Start(const QString& client, const char* machine) {
        End();
        RegisterWindows();
        machine_.emplace(machine);
        base::SetProgramFolder(Path(client));
        values::Program() = values::ProgramValues();
        main_ = static_cast<shell::FrmMain*>(all_.Shared(QStringLiteral("FrmMain")));
        main_->Show();
        // The timer that counts the rows stands still during a scan.
        const auto done = [this] {
            return main_->LabelStatus->Caption() == QLatin1String("Status: Done") && main_->Timer1->Enabled();
        };
        EXPECT_TRUE(QTest::qWaitFor(done, 20000));
    }

    void End() {
        all_.Clear();
        database::CloseDeviceDatabase();
        values::Program() = values::ProgramValues();
        main_ = nullptr;
        machine_.reset();
    }

    static void Click(controls::dcButton* button) { QTest::mouseClick(button, Qt::LeftButton); }

    // The label under the list and the rows found for the machine's only device.
    QString LookUp() {
        suite::ListItems& devices = main_->ListViewHardware->ListItems();
        EXPECT_EQ(devices.Count(), 1);
        if (devices.Count() == 0)
            return {};
        devices.Item(1)->SetSelected(true);
        Click(main_->dcButton1);
        auto* lookup = static_cast<database::FrmLookup*>(all_.Find(QStringLiteral("FrmLookup")));
        EXPECT_NE(lookup, nullptr);
        EXPECT_TRUE(QTest::qWaitFor(
            [lookup] { return lookup->LabelStatus->Caption().startsWith(QLatin1String("Results: ")); }, 20000));
        QString found = lookup->LabelStatus->Caption();
        suite::ListItems& rows = lookup->LabelListViewHardware->ListItems();
        for (int row = 1; row <= rows.Count(); ++row)
            found += QStringLiteral("\n") + rows.Item(row)->Text() + u'|' + rows.Item(row)->CellText(1) + u'|' +
                     rows.Item(row)->CellText(2);
        EXPECT_TRUE(lookup->Unload());
        return found;
    }

    void Contribute() {
        Click(main_->CommandImproveHardware);
        auto* improve = static_cast<contribution::FrmImprove*>(all_.Find(QStringLiteral("FrmImprove")));
        ASSERT_NE(improve, nullptr);
        const auto done = [improve] { return improve->LabelStatus->Caption() == QLatin1String("Status: Done."); };
        Click(improve->CommandGetHardware);
        ASSERT_TRUE(QTest::qWaitFor(done, 20000));
        EXPECT_EQ(improve->ListViewHardware->ListItems().Count(), 2);
        Click(improve->CommandSaveSubmit);
        ASSERT_TRUE(QTest::qWaitFor(
            [improve] { return improve->ImportantLabelSubmitStatus->Caption().startsWith(QLatin1String("Done!")); },
            20000));
        EXPECT_EQ(Plain(improve->ImportantLabelSubmitStatus->Caption()), "Done! - Uploaded to Brindlex: Successful!");
    }

    // By the update window's own buttons; ends when the main window has read the new database.
    void Update(const QString& version) {
        Click(main_->CommandCheckForUpdates);
        auto* update = static_cast<updating::FrmUpdate*>(all_.Find(QStringLiteral("FrmUpdate")));
        ASSERT_NE(update, nullptr);
        ASSERT_TRUE(QTest::qWaitFor([update] { return update->CommandDownloadDatabase->Enabled(); }, 20000));
        EXPECT_FALSE(update->CommmandOpenBrindlex->Enabled()) << "the program itself is published as it is";
        Click(update->CommandDownloadDatabase);
        const QString caption = QStringLiteral("Database Version: ") + version;
        EXPECT_TRUE(QTest::qWaitFor([&] { return main_->LabelDatabaseVersion->Caption() == caption; }, 30000))
            << Plain(main_->LabelDatabaseVersion->Caption());
        EXPECT_EQ(all_.Find(QStringLiteral("FrmUpdate")), nullptr);
        EXPECT_FALSE(main_->ImportantLabelUpdateAvailable->Visible());
        EXPECT_TRUE(main_->CommandCheckForUpdates->Enabled());
    }

    void ExpectRefusedUpdate() {
        QStringList messages;
        forms::SetMsgBoxRecorder([&messages](const QString& text, forms::MessageIcon) { messages.append(text); });
        Click(main_->CommandCheckForUpdates);
        auto* update = static_cast<updating::FrmUpdate*>(all_.Find(QStringLiteral("FrmUpdate")));
        ASSERT_NE(update, nullptr);
        EXPECT_TRUE(QTest::qWaitFor([update] { return update->CommandDownloadDatabase->Enabled(); }, 20000));
        Click(update->CommandDownloadDatabase);
        // The main window reads the old database again.
        EXPECT_TRUE(QTest::qWaitFor(
            [&] {
                return all_.Find(QStringLiteral("FrmUpdate")) == nullptr && database::DatabaseConnection() &&
                       main_->CommandCheckForUpdates->Enabled();
            },
            30000));
        EXPECT_EQ(messages, QStringList{QStringLiteral("Failed to decompress the download database file!")});
        forms::SetMsgBoxRecorder(
            [](const QString& text, forms::MessageIcon) { ADD_FAILURE() << "message: " << Plain(text); });
    }

    static void CheckForUpdatesAtStart() {
        QString path = values::SettingsPath();
        values::WriteSetting(QStringLiteral("main"), QStringLiteral("CheckForUpdates"), QStringLiteral("1"), path);
    }

    // The paths of the files that have arrived at the server.
    QStringList Arrived() const {
        QStringList paths;
        for (const QFileInfo& file : QDir(server_.UploadFolder()).entryInfoList({QStringLiteral("*.txt")}))
            paths << file.filePath();
        return paths;
    }

    QTemporaryDir folder_;
    WebServer server_;
    const values::Addresses addresses_;
    forms::Forms& all_ = forms::Forms::Instance();
    std::optional<DeviceFixture> machine_;
    shell::FrmMain* main_ = nullptr;
};

TEST_F(LoopTest, AContributedDeviceReachesEverybody) {
    if (server_.Fault().contains(QStringLiteral("not installed")))
        GTEST_SKIP() << qPrintable(server_.Fault());
    ASSERT_TRUE(server_.Fault().isEmpty()) << qPrintable(server_.Fault());

    // The maintainer begins.
    Write(QStringLiteral("pci.ids"), pciIds);
    Write(QStringLiteral("usb.ids"), usbIds);
    const Result built =
        Maintain(QStringLiteral("build --output shared.mdb --version 2.5.0 --pci-ids pci.ids --usb-ids usb.ids"));
    ASSERT_EQ(built.Status, 0) << built.Output;
    const QString firstKey = MakeKey(QStringLiteral("first.pem"));
    const QString secondKey = MakeKey(QStringLiteral("second.pem"));
    values::ServerAddresses().UpdateKeys = firstKey;
    Publish(QStringLiteral("--key first.pem"));
    MakeClient(QStringLiteral("contributor"));
    MakeClient(QStringLiteral("second"));

    // Nobody knows the camera yet; nobody is told of an update.
    Start(QStringLiteral("second"), secondMachine);
    CheckForUpdatesAtStart();
    EXPECT_EQ(Plain(LookUp()), "Results: No Matches");
    Start(QStringLiteral("second"), secondMachine);
    EXPECT_FALSE(main_->ImportantLabelUpdateAvailable->Visible());

    Start(QStringLiteral("contributor"), contributorsMachine);
    CheckForUpdatesAtStart();
    Contribute();

    // What arrived is what was written.
    const QStringList arrived = Arrived();
    ASSERT_EQ(arrived.size(), 1);
    QFile sent(arrived.first());
    ASSERT_TRUE(sent.open(QIODevice::ReadOnly));
    EXPECT_EQ(sent.readAll().toStdString(), "USB\\VID_1234&PID_0001|||Photon 3 Camera\x99|||Lumen Optics\r\n"
                                            "USB\\VID_1234&PID_0001&REV_0100|||Photon 3 Camera\x99|||Lumen Optics\r\n");

    const Result checked = Maintain(QStringLiteral("check --db shared.mdb ") + arrived.first());
    EXPECT_EQ(checked.Status, 0) << checked.Output;
    EXPECT_THAT(checked.Output, HasSubstr("2 good, 0 malformed, 0 suspicious, 0 duplicate, 0 already known"));
    const Result merged = Maintain(QStringLiteral("merge --version 2.5.1 shared.mdb ") + arrived.first());
    EXPECT_EQ(merged.Status, 0) << merged.Output;
    EXPECT_THAT(merged.Output, HasSubstr("2 added, 0 already known, 0 left out"));
    // The key changes: both sign until everybody has a program that knows the new one.
    Publish(QStringLiteral("--key second.pem --old-key first.pem"));
    EXPECT_THAT(Maintain(QStringLiteral("check --db shared.mdb ") + arrived.first()).Output,
                HasSubstr("0 good, 0 malformed, 0 suspicious, 0 duplicate, 2 already known"));

    for (const char* machine : {contributorsMachine, secondMachine}) {
        Start(machine == secondMachine ? QStringLiteral("second") : QStringLiteral("contributor"), machine);
        values::ServerAddresses().UpdateKeys = machine == secondMachine ? secondKey : firstKey;
        EXPECT_TRUE(main_->ImportantLabelUpdateAvailable->Visible());
        Update(QStringLiteral("2.5.1"));
        EXPECT_EQ(Plain(LookUp()), "Results: 2 Possible Matches\n"
                                   "Photon 3 Camera™|Lumen Optics|USB\\VID_1234&PID_0001&REV_0100\n"
                                   "Photon 3 Camera™|Lumen Optics|USB\\VID_1234&PID_0001");
    }
    Start(QStringLiteral("second"), secondMachine);
    EXPECT_FALSE(main_->ImportantLabelUpdateAvailable->Visible());

    // The new key is lost: what any other signs is not taken until there is a program that knows its key.
    EXPECT_EQ(Maintain(QStringLiteral("merge --version 2.5.2 shared.mdb ") + arrived.first()).Status, 0);
    Publish(QStringLiteral("--key first.pem"));
    Start(QStringLiteral("second"), secondMachine);
    ExpectRefusedUpdate();
    EXPECT_EQ(main_->LabelDatabaseVersion->Caption(), QStringLiteral("Database Version: 2.5.1"));
    values::ServerAddresses().UpdateKeys = firstKey;
    Update(QStringLiteral("2.5.2"));
}

} // namespace
