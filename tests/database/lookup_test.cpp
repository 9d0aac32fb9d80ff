#include "database/frm_lookup.h"

#include "appearance/colour_table.h"
#include "appearance/frm_colors.h"
#include "appearance/skin.h"
#include "controls/anchor.h"
#include "controls/animation_bar.h"
#include "controls/dc_button.h"
#include "controls/titel_bar.h"
#include "forms/desktop.h"
#include "forms/dialogs.h"
#include "forms/forms.h"
#include "forms/label.h"
#include "forms/picture_box.h"
#include "forms/text_box.h"
#include "forms/timer.h"
#include "inventory/frm_menu.h"
#include "inventory/open_lookup.h"
#include "store_fixture.h"
#include "suite/list_header.h"
#include "suite/list_tree.h"
#include "suite/list_view.h"
#include "values/addresses.h"

#include <QPointer>
#include <QTest>
#include <QTimer>

using database::FrmLookup;

namespace {

const QString exact = "PCI\\VEN_8086&DEV_1&SUBSYS_2";
const QString family = "PCI\\VEN_8086&DEV_1";

class LookupTest : public StoreFixture {
  protected:
    void SetUp() override {
        StoreFixture::SetUp();
        all_.SetAllGone([] {});
        database::RegisterLookupForm();
        appearance::RegisterForms();
        inventory::RegisterMenuForm();
        forms::SetMsgBoxRecorder([this](const QString& text, forms::MessageIcon) { messages_ << text; });
        forms::SetBrowserRecorder([this](const QString& address) { addresses_ << address; });
        values::ServerAddresses().SearchSite = "http://search.example";
    }

    void TearDown() override {
        all_.Clear();
        forms::SetMsgBoxRecorder(nullptr);
        forms::SetBrowserRecorder(nullptr);
        values::ServerAddresses() = before_;
        StoreFixture::TearDown();
    }

    void Fill() {
        database::DatabaseBuilder builder;
        builder.Add(family, "Chip", "Intel");
        builder.Add(exact, "Board", "Maker");
        builder.Add(exact, "Chip", "Intel");
        builder.Add("O'ID%", "Odd", "Makers");
        WriteAndOpen(builder);
    }

    // As a device list opens it.
    FrmLookup* Open(const QString& ids, const QString& name = "Some Device") {
        suite::ListItems list;
        suite::ListItem* device = list.Add(name);
        device->SetSubItems(5, ids);
        inventory::OpenLookup(*device);
        return static_cast<FrmLookup*>(all_.Find("FrmLookup"));
    }

    static bool Ended(const FrmLookup* window) { return window->LabelStatus->Caption().startsWith("Results: "); }

    FrmLookup* Search(const QString& ids) {
        FrmLookup* window = Open(ids);
        EXPECT_TRUE(QTest::qWaitFor([window] { return Ended(window); }, 20000));
        return window;
    }

    static QStringList Rows(const FrmLookup* window) {
        QStringList rows;
        const suite::ListItems& items = window->LabelListViewHardware->ListItems();
        for (int i = 1; i <= items.Count(); ++i)
            rows << QStringList{items.Item(i)->Text(), items.Item(i)->CellText(1), items.Item(i)->CellText(2),
                                items.Item(i)->CellText(3)}
                        .join(u'/');
        return rows;
    }

    // Runs once, as soon as the window's search has begun: inside one of its yields.
    void DuringSearch(FrmLookup* window, const std::function<void()>& act) {
        auto* timer = new QTimer(window);
        QObject::connect(timer, &QTimer::timeout, timer, [=] {
            if (window->LabelStatus->Caption() != "Status: Searching..." || window->LabelListViewHardware->Visible())
                return;
            timer->stop();
            act();
        });
        timer->start(0);
    }

    forms::Forms& all_ = forms::Forms::Instance();
    const values::Addresses before_ = values::ServerAddresses();
    QStringList messages_;
    QStringList addresses_;
};

TEST_F(LookupTest, TheLongestIdStandsOnTopInTheColourOfBestMatches) {
    Fill();
    FrmLookup* window = Open(family + "|" + exact + "|NONE|");
    EXPECT_EQ(window->Caption(), "Some Device");
    EXPECT_EQ(window->TitelBar1->Caption(), "Device Lookup");
    bool searching = false;
    DuringSearch(window, [&] {
        searching = true;
        EXPECT_FALSE(window->TimerStart->Enabled());
        EXPECT_FALSE(window->TimerStatus->Enabled());
        EXPECT_EQ(window->DB1->Style(), 4);
    });
    ASSERT_TRUE(QTest::qWaitFor([&] { return Ended(window); }, 20000));
    EXPECT_TRUE(searching);
    EXPECT_EQ(window->LabelStatus->Caption(), "Results: 3 Possible Matches");
    EXPECT_EQ(Rows(window), (QStringList{"Board/Maker/" + exact + "/027", "Chip/Intel/" + exact + "/027",
                                         "Chip/Intel/" + family + "/018"}));
    const base::Colour best = appearance::ColorOf(appearance::ImportantText);
    EXPECT_EQ(window->ImportantPictureBestMacthColor->BackColor(), best);
    const suite::ListItems& items = window->LabelListViewHardware->ListItems();
    for (int column = 0; column < 3; ++column) {
        EXPECT_EQ(items.Item(1)->CellForeColor(column), best);
        EXPECT_EQ(items.Item(2)->CellForeColor(column), best);
        EXPECT_FALSE(items.Item(3)->CellForeColor(column).has_value());
    }
    appearance::SetColor(appearance::ImportantText, base::Colour(0x123456));
    appearance::ApplyColorsToAllForms();
    for (int row = 1; row <= 3; ++row)
        EXPECT_EQ(items.Item(row)->CellForeColor(0), row < 3 ? std::optional(base::Colour(0x123456)) : std::nullopt);
    EXPECT_TRUE(window->LabelListViewHardware->Visible());
    EXPECT_TRUE(window->LabelListViewHardware->Header()->isSectionHidden(3));
    EXPECT_EQ(items.Column(4).Width, 0);
}

TEST_F(LookupTest, TwoWindowsSearchAtOnceAndKeepTheirOwnRows) {
    Fill();
    FrmLookup* first = Open(exact + "|" + family + "|");
    FrmLookup* second = nullptr;
    DuringSearch(first, [&] { second = Search("o'id%"); });
    ASSERT_TRUE(QTest::qWaitFor([&] { return second != nullptr && Ended(first) && Ended(second); }, 20000));
    EXPECT_EQ(Rows(first).size(), 3);
    EXPECT_EQ(Rows(second), QStringList("Odd/Makers/O'ID%/005"));
    EXPECT_EQ(second->LabelStatus->Caption(), "Results: 1 Possible Matches");

    QTest::mouseClick(second->LabelListViewHardware->Tree()->viewport(), Qt::LeftButton, {}, {20, 5});
    QTest::keyClick(second->LabelListViewHardware->Tree(), Qt::Key_Delete);
    EXPECT_TRUE(QTest::qWaitFor([&] { return second->LabelStatus->Caption() == "Results: No Matches"; }, 1000));
    QTest::mouseClick(second->LabelListViewHardware->Tree()->viewport(), Qt::RightButton);
    EXPECT_EQ(messages_, QStringList("The List Is Empty."));
    EXPECT_EQ(first->LabelStatus->Caption(), "Results: 3 Possible Matches");
}

TEST_F(LookupTest, AClosedWindowFinishesItsSearchAndTheProgramsEndStopsIt) {
    Fill();
    FrmLookup* closed = Open(exact);
    const QPointer<suite::ListView> list = closed->LabelListViewHardware;
    int mostRows = 0;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, &watch, [&] {
        if (list)
            mostRows = std::max(mostRows, list->ListItems().Count());
    });
    watch.start(0);
    int rowsWhenClosed = -1;
    DuringSearch(closed, [&] {
        rowsWhenClosed = list->ListItems().Count();
        closed->Unload();
    });
    EXPECT_TRUE(QTest::qWaitFor([&] { return list.isNull(); }, 5000)) << "not buried";
    EXPECT_EQ(rowsWhenClosed, 0);
    EXPECT_EQ(mostRows, 2);

    FrmLookup* ending = Open(exact);
    DuringSearch(ending, [] { values::Program().ProgramClosing = true; });
    QTest::qWait(400);
    EXPECT_FALSE(ending->LabelListViewHardware->Visible());
    EXPECT_FALSE(ending->TimerStatus->Enabled());
    EXPECT_EQ(ending->LabelStatus->Caption(), "Status: Searching...");
    auto* late = static_cast<FrmLookup*>(all_.New("FrmLookup"));
    late->Show();
    EXPECT_TRUE(late->IsUnloaded());
}

TEST_F(LookupTest, OddInputFindsWhatItCanAndNothingElse) {
    Fill();
    EXPECT_EQ(Rows(Search("O'ID%")).size(), 1);
    for (const QString& ids :
         {QString(), QString("|" + exact), QString("\"%' OR 1=1 --"), QString(1000, u'x'), QString("O'ID_")}) {
        FrmLookup* window = Search(ids);
        EXPECT_EQ(window->LabelStatus->Caption(), "Results: No Matches") << ids.toStdString();
        window->Unload();
    }
    EXPECT_EQ(Open(exact, "Line\r\nbreak, & comma")->ImportantLabelName->Caption(), "Device: Line\r\nbreak, & comma");
}

TEST_F(LookupTest, ADatabaseThatIsGoneGivesNoMatches) {
    Fill();
    FrmLookup* window = Open(exact);
    DuringSearch(window, [] { database::CloseDeviceDatabase(); });
    EXPECT_TRUE(QTest::qWaitFor([window] { return Ended(window); }, 20000));
    EXPECT_TRUE(window->LabelListViewHardware->Visible());
    EXPECT_EQ(Search(exact)->LabelStatus->Caption(), "Results: No Matches");
}

TEST_F(LookupTest, TheButtonSearchesTheWebForTheFirstLine) {
    FrmLookup* window = Open(exact + "|" + family + "|");
    window->TimerStart->SetEnabled(false);
    QTest::mouseClick(window->CommandSearchGoogleID, Qt::LeftButton);
    window->TextID->SetText("\r\nA&B\r\n");
    QTest::mouseClick(window->CommandSearchGoogleID, Qt::LeftButton);
    EXPECT_EQ(addresses_, (QStringList{"http://search.example/?q=PCI\\VEN_8086%26DEV_1%26SUBSYS_2 Driver",
                                       "http://search.example/?q=\r\nA%26B\r\n Driver"}));
}

TEST_F(LookupTest, TheLayoutFollowsTheWindow) {
    auto* window = static_cast<FrmLookup*>(all_.New("FrmLookup"));
    window->Show();
    EXPECT_EQ(window->Width(), 8520);
    EXPECT_EQ(window->Height(), 5340);
    EXPECT_EQ(window->Anchor1->MinHeight(), 5340);
    const double listHeight = window->LabelListViewHardware->Height();
    window->Move(0, 0, 9720, 6540);
    QTest::qWait(50);
    EXPECT_EQ(window->LabelListViewHardware->Height(), listHeight + 1200);
    EXPECT_EQ(window->TitelBar1->Width(), 9720);
    EXPECT_EQ(window->LabelResize->Left() + window->LabelResize->Width(), 9720);
    EXPECT_TRUE(window->LabelResize->Visible());
}

} // namespace
