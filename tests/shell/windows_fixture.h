// The whole program in one process: every window registered, made-up devices, a folder and a database of its own, and
// message boxes recorded. Windows and values are as before when it goes.
#pragma once

#include "appearance/frm_colors.h"
#include "base/paths.h"
#include "contribution/frm_improve.h"
#include "database/database_builder.h"
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
#include "support/usb_device.h"
#include "updating/frm_update.h"
#include "values/program_values.h"

#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

class WindowsFixture : public testing::Test {
  protected:
    explicit WindowsFixture(const QByteArray& machine) : devices_(machine) {
        base::SetProgramFolder(folder_.path());
        values::Program() = values::ProgramValues();
        all_.SetAllGone([this] { ++allGone_; });
        shell::RegisterMainWindow();
        appearance::RegisterForms();
        inventory::RegisterMenuForm();
        database::RegisterLookupForm();
        contribution::RegisterImproveForm();
        updating::RegisterUpdateForm();
        forms::SetMsgBoxRecorder([this](const QString& text, forms::MessageIcon) { messages_ << text; });
    }

    ~WindowsFixture() override {
        all_.Clear();
        database::CloseDeviceDatabase();
        forms::SetMsgBoxRecorder(nullptr);
        values::Program() = values::ProgramValues();
    }

    // A USB device without functions, to be listed under its product's name.
    static QByteArray UsbDevice(int port, const char* product, const char* manufacturer) {
        return support::UsbDevice(port, "000" + QByteArray::number(port), product, manufacturer);
    }

    // Version 2.3.4; knows the device of port 1.
    void WriteDatabase() {
        database::DatabaseBuilder builder;
        builder.Add("USB\\VID_1234&PID_0001", "Known Hub", "Known Maker");
        QString error;
        ASSERT_TRUE(builder.Write(folder_.filePath("hwids.mdb"), "2.3.4", &error)) << error.toStdString();
    }

    shell::FrmMain* Start() {
        auto* main = static_cast<shell::FrmMain*>(all_.Shared("FrmMain"));
        main->Show();
        return main;
    }

    // Until the first scan is over and the tabs tell its counts.
    shell::FrmMain* StartAndScan() {
        WriteDatabase();
        shell::FrmMain* main = Start();
        const auto done = [main] {
            return main->LabelStatus->Caption() == "Status: Done" && main->Timer1->Enabled() &&
                   main->ShownCount[0] == main->ListViewHardware->ListItems().Count();
        };
        EXPECT_TRUE(QTest::qWaitFor(done, 20000));
        return main;
    }

    QTemporaryDir folder_;
    DeviceFixture devices_;
    forms::Forms& all_ = forms::Forms::Instance();
    QStringList messages_;
    int allGone_ = 0;
};
