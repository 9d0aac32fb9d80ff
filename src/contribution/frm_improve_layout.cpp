// The design of the contribution window: controls, places in twips, anchors (left, top, right, bottom) and texts.
#include "contribution/frm_improve.h"
#include "controls/anchor.h"
#include "controls/dc_button.h"
#include "forms/label.h"
#include "forms/text_box.h"
#include "forms/timer.h"
#include "suite/list_box.h"
#include "suite/list_view.h"
#include "window/design.h"

#include <QStringList>

namespace contribution {

namespace {

using window::MakeButton;
using window::MakeLabel;
using window::Place;

QString Explanation() {
    const QStringList paragraphs = {
        QStringLiteral("Want to help improve the database for the program? This is the spot!"),
        QStringLiteral(
            "This tool will scan your hardware that has drivers installed, then search the database, removing any "
            "hardware already in the database. The hardware in the list is what is currently not in the "
            "database."),
        QStringLiteral(
            "Once done it will save the current hardware to the database file and upload a text file with only "
            "the updated hardware to the Brindlex server. (Nothing but the hardware info is uploaded and the "
            "text file that is uploaded is in the program folder named 'new_hardware.txt')"),
        QStringLiteral(
            "The text file uploaded to the server will be checked and then applied to the main database after a "
            "few days."),
        QStringLiteral(
            "You may notice that hardware that is in the database still shows up here. That is because some "
            "hardware has multiple ids, and while one of the ids may have been in the database, the others where "
            "not. This will grab each individual id for every hardware, making the database more detailed.")};
    return paragraphs.join(QStringLiteral("\r\n\r\n"));
}

} // namespace

void FrmImprove::CreateControls() {
    QWidget* client = Client();
    Anchor1 = new controls::Anchor(this, QStringLiteral("Anchor1"));
    TitelBar1 = window::MakeTitelBar(client, LeastWidth);
    LabelText1 =
        Place(new forms::TextBox(client, QStringLiteral("LabelText1")), 150, 510, 8220, 4200, window::FollowWidth);
    LabelText1->SetAccessibleLabel(QStringLiteral("How To Improve The Database"));
    LabelText1->SetLocked(true);
    LabelText1->SetText(Explanation());
    ImportantLabel1 = Place(MakeLabel(client, "ImportantLabel1",
                                      "*English Systems Only - PLEASE REMOVE ANY DEVICE THAT HAS NON ENGLISH WORDS!"),
                            150, 4725, 8220, 285, window::FollowWidth);
    CommandGetHardware = Place(MakeButton(client, "CommandGetHardware", "1. Scan Hardware"), 150, 5040, 2550, 420);
    CommandSaveSubmit = Place(MakeButton(client, "CommandSaveSubmit", "2. Add to Database && Submit to Brindlex"), 2820,
                              5040, 5550, 420, window::FollowWidth);
    CommandSaveSubmit->SetEnabled(false);
    ListViewHardware =
        Place(new suite::ListView(client, QStringLiteral("ListViewHardware")), 150, 5550, 8220, 1920, window::Stretch);
    ListViewHardware->SetAccessibleLabel(QStringLiteral("Hardware not in the database"));
    InfoLabelListTotal = Place(MakeLabel(client, "InfoLabelListTotal", "Total Hardware Not In Database: 0"), 150, 7500,
                               8220, 270, window::BottomWide);
    ImportantLabelSubmitStatus =
        Place(MakeLabel(client, "ImportantLabelSubmitStatus", ""), 150, 7770, 8220, 510, window::BottomWide);
    ImportantLabelSubmitStatus->SetWordWrap(true);
    LabelStatus = Place(MakeLabel(client, "LabelStatus", "Status:"), 150, 8340, 7800, 270, window::BottomWide);
    LabelResize = window::MakeGrip(client, LeastWidth, LeastHeight);
    PanelProgress = window::MakeProgressPanel(client, DB1);
    List1 = Place(new suite::ListBox(client, QStringLiteral("List1")), 0, 0, 15, 15);
    List1->SetVisible(false);
    TimerStatus = new forms::Timer(this, QStringLiteral("TimerStatus"), 100, false);
    Timer1 = new forms::Timer(this, QStringLiteral("Timer1"), 250, true);
}

} // namespace contribution
