// The design of the contribution window: controls, places in twips, anchors (left, top, right, bottom) and texts.
#include "contribution/frm_improve.h"
#include "controls/anchor.h"
#include "controls/animation_bar.h"
#include "controls/dc_button.h"
#include "controls/panel_fx.h"
#include "controls/titel_bar.h"
#include "forms/label.h"
#include "forms/screen.h"
#include "forms/text_box.h"
#include "forms/timer.h"
#include "suite/list_box.h"
#include "suite/list_view.h"

#include <QStringList>

namespace contribution {

namespace {

constexpr base::Colour windowKey = base::Colour::FromRgb(0xF8, 0xB8, 0xF7);
constexpr int wholeWindowCover = 32767; // twips
constexpr int progressTitleHeight = 360;

template <typename Control>
Control* Place(Control* control, double left, double top, double width, double height, const char* anchor = "") {
    control->Move(left, top, width, height);
    control->SetTag(QLatin1String(anchor));
    return control;
}

controls::dcButton* Button(QWidget* container, const char* name, const char* caption) {
    auto* button = new controls::dcButton(container, QLatin1String(name));
    button->InitProperties();
    button->SetCaption(QLatin1String(caption));
    return button;
}

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
    const auto label = [client](const char* name, const char* caption) {
        return new forms::Label(client, QLatin1String(name), QLatin1String(caption));
    };
    Anchor1 = new controls::Anchor(this, QStringLiteral("Anchor1"));
    TitelBar1 = Place(new controls::TitelBar(client, QStringLiteral("TitelBar1")), 0, 0, 8520, 480);
    TitelBar1->InitProperties();
    TitelBar1->SetBackColor(windowKey);
    TitelBar1->SetBackColorCover(wholeWindowCover);
    TitelBar1->SetShowMaximized(true);
    TitelBar1->SetShowMaximizedEnabled(true);

    LabelText1 = Place(new forms::TextBox(client, QStringLiteral("LabelText1")), 150, 600, 8220, 3060, "TTTF*/");
    LabelText1->SetLocked(true);
    LabelText1->SetText(Explanation());
    ImportantLabel1 =
        Place(label("ImportantLabel1", "*English Systems Only - PLEASE REMOVE ANY DEVICE THAT HAS NON ENGLISH WORDS!"),
              150, 3720, 8220, 285, "TTTF*/");
    CommandGetHardware = Place(Button(client, "CommandGetHardware", "1. Scan Hardware"), 150, 4080, 2550, 450);
    CommandSaveSubmit = Place(Button(client, "CommandSaveSubmit", "2. Add to Database && Submit to Brindlex"), 2820,
                              4080, 5550, 450, "TTTF*/");
    CommandSaveSubmit->SetEnabled(false);
    ListViewHardware =
        Place(new suite::ListView(client, QStringLiteral("ListViewHardware")), 150, 4650, 8220, 2640, "TTTT*/");
    ListViewHardware->SetAccessibleLabel(QStringLiteral("Hardware not in the database"));
    InfoLabelListTotal =
        Place(label("InfoLabelListTotal", "Total Hardware Not In Database: 0"), 150, 7365, 8220, 270, "TFTT*/");
    ImportantLabelSubmitStatus = Place(label("ImportantLabelSubmitStatus", ""), 150, 7650, 8220, 510, "TFTT*/");
    ImportantLabelSubmitStatus->SetWordWrap(true);
    LabelStatus = Place(label("LabelStatus", "Status:"), 150, 8220, 7800, 270, "TFTT*/");
    LabelResize = Place(label("LabelResize", "o"), 8250, 8445, 270, 270, "FFTT*/");
    LabelResize->SetGrip(true);

    PanelProgress = Place(new controls::PanelFx(client, QStringLiteral("PanelProgress")), 2000, 5400, 4500, 1050);
    PanelProgress->InitProperties();
    PanelProgress->SetTitleCaption(QStringLiteral("Please Wait..."));
    PanelProgress->SetBackGroundStyle(1);
    PanelProgress->SetTitleAlignment(1);
    PanelProgress->SetTileHeight(forms::ToPixels(progressTitleHeight));
    PanelProgress->SetVisible(false);
    DB1 = Place(new controls::AnimationBar(PanelProgress, QStringLiteral("DB1")), 180, 540, 4140, 330);
    List1 = Place(new suite::ListBox(client, QStringLiteral("List1")), 0, 0, 15, 15);
    List1->SetVisible(false);

    TimerStatus = new forms::Timer(this, QStringLiteral("TimerStatus"), 100, false);
    Timer1 = new forms::Timer(this, QStringLiteral("Timer1"), 250, true);
}

} // namespace contribution
