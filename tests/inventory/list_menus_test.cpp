// Windows with lists as the program has them, and recorders for everything that leaves the process. Popups open inside
// a loop of their own, so what is to happen there is arranged before the click that opens them.
#include "forms/desktop.h"
#include "forms/dialogs.h"
#include "forms/forms.h"
#include "forms/label.h"
#include "forms/menu.h"
#include "forms/text_box.h"
#include "forms/timer.h"
#include "inventory/device_lists.h"
#include "inventory/frm_menu.h"
#include "inventory/list_behaviour.h"
#include "inventory/open_lookup.h"
#include "suite/list_tree.h"
#include "suite/list_view.h"
#include "values/addresses.h"

#include <QApplication>
#include <QHeaderView>
#include <QMenu>
#include <QTest>
#include <gtest/gtest.h>

namespace {

// What the opener of a lookup window knows of it.
class LookupWindow : public forms::Form {
  public:
    LookupWindow() : Form("FrmLookup", 3000, 3000) {
        name = new forms::Label(Client(), "ImportantLabelName");
        ids = new forms::TextBox(Client(), "TextID");
        start = new forms::Timer(this, "TimerStart", 100'000, false);
    }
    forms::Label* name;
    forms::TextBox* ids;
    forms::Timer* start;
};

class ListWindow : public forms::Form {
  public:
    ListWindow(const QString& name, const QString& listName, const QString& menu, bool active)
        : Form(name, 12000, 6000) {
        list = AddList(listName, menu, active);
    }

    suite::ListView* AddList(const QString& listName, const QString& menu, bool active) {
        auto* made = new suite::ListView(Client(), listName);
        made->Move(0, 0, 12000, 6000);
        inventory::ConnectList(*made, menu, active ? this : nullptr);
        return made;
    }

    suite::ListView* list = nullptr;
};

class ListMenusTest : public testing::Test {
  protected:
    ListMenusTest() {
        all_.SetAllGone([] {});
        inventory::RegisterMenuForm();
        forms::SetMsgBoxRecorder([this](const QString& text, forms::MessageIcon) { messages_ << text; });
        forms::SetBrowserRecorder([this](const QString& address) { addresses_ << address; });
        forms::SetClipboardRecorder([this](const QString& text) { clipboard_ << text; });
        values::ServerAddresses().SearchSite = QStringLiteral("http://search.example");
        all_.RegisterMaker(
            "FrmMain", [] { return std::make_unique<ListWindow>("FrmMain", "ListViewHardware", "MenuMain", false); });
        all_.RegisterMaker("FrmLookup", [] { return std::make_unique<LookupWindow>(); });
        main_ = static_cast<ListWindow*>(all_.Shared("FrmMain"));
        problems_ = main_->AddList("ListViewProblems", "MenuMain", false);
        problems_->Move(0, 3000, 12000, 3000);
        main_->list->Move(0, 0, 12000, 3000);
        for (suite::ListView* list : {main_->list, problems_}) {
            inventory::AddDeviceColumns(list->ListItems());
            inventory::SortByName(list->ListItems());
        }
        main_->Show();
        AddRow(main_->list, {"Sound, Card", "Maker & Sons", "OK", "Media", "1.0", "A&1\\x|B|"});
        AddRow(main_->list, {"Disk & Co", "Other", "Code 10", "Disk", "2.0", "C"});
        AddRow(problems_, {"Broken", "Nobody", "Code 28", "Other", "Unknown", "Z|"});
    }
    ~ListMenusTest() override {
        all_.Clear();
        forms::SetMsgBoxRecorder(nullptr);
        forms::SetBrowserRecorder(nullptr);
        forms::SetClipboardRecorder(nullptr);
        values::ServerAddresses() = before_;
    }

    // Does `act` on the popup that opens next and closes it if it is open still.
    void OnPopup(std::function<void(QMenu*)> act) {
        auto* timer = new QTimer(QApplication::instance());
        QObject::connect(timer, &QTimer::timeout, timer, [this, timer, act] {
            auto* popup = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            if (popup == nullptr)
                return;
            timer->stop();
            timer->deleteLater();
            ++popups_;
            act(popup);
            if (popup->isVisible())
                popup->close();
        });
        timer->start(5);
    }

    void PickNext(const QString& entry) {
        OnPopup([entry](QMenu* popup) {
            QAction* action = popup->findChild<QAction*>(entry);
            ASSERT_NE(action, nullptr) << entry.toStdString();
            QTest::mouseClick(popup, Qt::LeftButton, {}, popup->actionGeometry(action).center());
        });
    }

    // On the middle of a row, counted from 1; below the rows where there is none.
    static void Click(suite::ListView* list, int row, Qt::MouseButton button = Qt::LeftButton,
                      Qt::KeyboardModifiers keys = {}) {
        suite::ListTree* tree = list->Tree();
        const QModelIndex index = tree->model()->index(row - 1, 0);
        const QPoint place = index.isValid() ? tree->visualRect(index).center() : QPoint(20, 100);
        QTest::mouseClick(tree->viewport(), button, keys, place);
    }

    void Choose(suite::ListView* list, int row, const QString& entry) {
        // A menu takes a click for an unwanted one where the mouse has not moved since it opened.
        QTest::mouseMove(list->window()->windowHandle(), QPoint(1, 1));
        PickNext(entry);
        Click(list, row, Qt::RightButton);
    }

    static void AddRow(suite::ListView* list, const QStringList& texts) {
        suite::ListItem* row = list->ListItems().Add(texts[0]);
        for (int i = 1; i < texts.size(); ++i)
            row->SetSubItems(i, texts[i]);
    }

    static QStringList Names(const suite::ListView* list) {
        QStringList names;
        for (int i = 1; i <= list->ListItems().Count(); ++i)
            names << list->ListItems().Item(i)->Text();
        return names;
    }

    ListWindow* Matches(const QStringList& names) {
        all_.RegisterMaker("Matches", [] {
            return std::make_unique<ListWindow>("Matches", "LabelListViewHardware", "MenuLookup", true);
        });
        auto* window = static_cast<ListWindow*>(all_.New("Matches"));
        for (const char* key : {"Name", "Manufacturer", "HardwareIDs"})
            window->list->ListItems().AddColumn(key, key, 1500);
        window->list->ListItems().AddColumn("L", "L", 0);
        for (const QString& name : names)
            AddRow(window->list, {name, name + "'s maker", "ID&1", "004"});
        window->Show();
        return window;
    }

    forms::Forms& all_ = forms::Forms::Instance();
    const values::Addresses before_ = values::ServerAddresses();
    QStringList messages_;
    QStringList addresses_;
    QStringList clipboard_;
    int popups_ = 0;
    ListWindow* main_;
    suite::ListView* problems_;
};

TEST_F(ListMenusTest, TheMainMenuWorksOnTheWholeListWhereverItWasOpened) {
    Click(main_->list, 2);
    Choose(problems_, 1, "MenuMainCopyName");
    EXPECT_EQ(clipboard_.takeLast(), "Sound, Card");
    Choose(problems_, 1, "MenuMainRemoveDevice");
    EXPECT_EQ(Names(main_->list), QStringList("Disk & Co"));
    EXPECT_EQ(Names(problems_), QStringList("Broken"));
    EXPECT_EQ(main_->list->SelectedItem()->Text(), "Disk & Co");
    EXPECT_EQ(popups_, 2);
}

TEST_F(ListMenusTest, CopiesAndSearchesValuesRowsAndWholeLists) {
    const QString search = "http://search.example/?q=";
    const QList<std::pair<QString, QString>> expected = {
        {"MenuMainCopyManufacturer", "Maker & Sons"},
        {"MenuMainCopyError", "OK"},
        {"MenuMainCopyClass", "Media"},
        {"MenuMainCopyDriverVersion", "1.0"},
        {"MenuMainCopyID", "A&1\\x|B|"},
        {"MenuMainCopyRow", "Sound, Card,Maker & Sons,OK,Media,1.0,A&1\\x|B|"},
        {"MenuMainCopyWhole", "Name,Manufacturer,Error Code,Class,Driver Version,Hardware IDs\r\n"
                              "Disk & Co,Other,Code 10,Disk,2.0,C\r\n"
                              "Sound, Card,Maker & Sons,OK,Media,1.0,A&1\\x|B|\r\n"},
        {"MenuMainSearchGoogle", search + "Sound, Card Driver"},
        {"MenuMainSearchGoogleID", search + "A%261\\x Driver"},
    };
    for (const auto& [entry, text] : expected) {
        Choose(main_->list, 2, entry);
        EXPECT_EQ((clipboard_ + addresses_).join('|'), text);
        clipboard_.clear();
        addresses_.clear();
    }
    Choose(main_->list, 1, "MenuMainSearchGoogle");
    main_->list->SelectedItem()->SetSubItems(5, "|B");
    Choose(main_->list, 1, "MenuMainSearchGoogleID");
    EXPECT_EQ(addresses_, (QStringList{search + "Disk %26 Co Driver", search + "|B Driver"}));
}

TEST_F(ListMenusTest, WithoutASelectedRowEmptyTextsGo) {
    for (const char* entry : {"MenuMainCopyName", "MenuMainCopyRow", "MenuMainSearchGoogle", "MenuMainSearchGoogleID",
                              "MenuMainLookup", "MenuMainRemoveDevice"})
        Choose(problems_, 1, entry);
    EXPECT_EQ(clipboard_, (QStringList{"", ""}));
    EXPECT_EQ(addresses_, QStringList(2, "http://search.example/?q= Driver"));
    EXPECT_EQ(main_->list->ListItems().Count(), 2);
    EXPECT_EQ(all_.Find("FrmLookup"), nullptr);
    EXPECT_TRUE(messages_.isEmpty());
}

TEST_F(ListMenusTest, TheLookupMenuWorksOnTheWindowClickedLastAndLeavesOutTheHiddenColumn) {
    ListWindow* first = Matches({"One", "Two"});
    ListWindow* second = Matches({"Three"});
    Choose(second->list, 1, "MenuLookupCopyName");
    Choose(first->list, 2, "MenuLookupCopyRow");
    Choose(first->list, 2, "MenuLookupCopyWhole");
    Choose(first->list, 2, "MenuLookupCopyID");
    Choose(first->list, 2, "MenuLookupSearchGoogleID");
    EXPECT_EQ(clipboard_, (QStringList{"Three", "Two,Two's maker,ID&1",
                                       "Name,Manufacturer,HardwareIDs\r\nOne,One's maker,ID&1\r\n"
                                       "Two,Two's maker,ID&1\r\n",
                                       "ID&1"}));
    EXPECT_EQ(addresses_, QStringList("http://search.example/?q=ID%261 Driver"));
    Choose(first->list, 1, "MenuLookupRemoveDevice");
    EXPECT_EQ(Names(first->list), QStringList("Two"));
    // The window that the menu belongs to goes while the menu is open.
    OnPopup([&](QMenu* popup) {
        second->Unload();
        popup->findChild<QAction*>("MenuLookupRemoveDevice")->trigger();
    });
    Click(second->list, 1, Qt::RightButton);
    EXPECT_EQ(Names(first->list), QStringList("Two"));
}

TEST_F(ListMenusTest, AnEmptyListSaysSoAndOpensNothing) {
    problems_->ListItems().Clear();
    Click(problems_, 1, Qt::LeftButton);
    EXPECT_TRUE(messages_.isEmpty());
    Click(problems_, 1, Qt::RightButton);
    EXPECT_EQ(messages_, QStringList("The List Is Empty."));
    EXPECT_EQ(popups_, 0);
}

TEST_F(ListMenusTest, KeysOpenThePopupAtTheSelectedRowInTheColoursOfTheScheme) {
    Click(main_->list, 2);
    const suite::ListTree* tree = main_->list->Tree();
    const QRect row = tree->visualRect(tree->model()->index(1, 0));
    const auto check = [&](const QMenu* popup) {
        EXPECT_EQ(popup->pos().y(), tree->viewport()->mapToGlobal(row.bottomLeft()).y());
        EXPECT_EQ(popup->palette().color(QPalette::Window), QColor(0x40, 0x40, 0x40));
        EXPECT_EQ(popup->palette().color(QPalette::WindowText), QColor(Qt::white));
    };
    OnPopup(check);
    QTest::keyClick(main_->list->Tree(), Qt::Key_Menu);
    OnPopup(check);
    QTest::keyClick(main_->list->Tree(), Qt::Key_F10, Qt::ShiftModifier);
    EXPECT_EQ(popups_, 2);
}

TEST_F(ListMenusTest, AnOpenPopupGoesWithItsHolder) {
    OnPopup([this](QMenu* popup) {
        all_.Find("FrmMenu")->Unload();
        EXPECT_FALSE(popup->isVisible());
    });
    Click(main_->list, 1, Qt::RightButton);
    EXPECT_EQ(popups_, 1);
}

TEST_F(ListMenusTest, HeadersSortAndDeleteKeepsASelection) {
    AddRow(main_->list, {"Adapter", "A", "Code 5", "Net", "9.0", "D"});
    const auto clickHeader = [this](int column) {
        QHeaderView* header = main_->list->Tree()->header();
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                          {header->sectionViewportPosition(column) + 20, header->height() / 2});
    };
    clickHeader(2);
    EXPECT_EQ(Names(main_->list), (QStringList{"Disk & Co", "Adapter", "Sound, Card"}));
    clickHeader(2);
    EXPECT_EQ(Names(main_->list), (QStringList{"Sound, Card", "Adapter", "Disk & Co"}));
    clickHeader(0);
    EXPECT_EQ(Names(main_->list), (QStringList{"Adapter", "Disk & Co", "Sound, Card"}));
    clickHeader(0);
    EXPECT_EQ(Names(main_->list), (QStringList{"Sound, Card", "Disk & Co", "Adapter"}));

    QTest::keyClick(main_->list->Tree(), Qt::Key_Delete);
    EXPECT_EQ(main_->list->ListItems().Count(), 3) << "nothing was selected";
    Click(main_->list, 3);
    QTest::keyClick(main_->list->Tree(), Qt::Key_Backspace);
    QTest::keyClick(main_->list->Tree(), Qt::Key_Delete, Qt::ShiftModifier);
    EXPECT_EQ(main_->list->SelectedItem()->Text(), "Disk & Co");
    QTest::keyClick(main_->list->Tree(), Qt::Key_Delete);
    QTest::keyClick(main_->list->Tree(), Qt::Key_Delete);
    QTest::keyClick(main_->list->Tree(), Qt::Key_Delete);
    EXPECT_EQ(main_->list->ListItems().Count(), 0);
    EXPECT_EQ(Names(problems_), QStringList("Broken"));
}

TEST_F(ListMenusTest, ALookupWindowGetsTheTextsOfTheRow) {
    Click(main_->list, 2);
    Choose(problems_, 1, "MenuMainLookup");
    auto* lookup = static_cast<LookupWindow*>(all_.Find("FrmLookup"));
    ASSERT_NE(lookup, nullptr);
    EXPECT_TRUE(lookup->isVisible());
    EXPECT_EQ(lookup->Caption(), "Sound, Card");
    EXPECT_EQ(lookup->name->Caption(), "Device: Sound, Card");
    EXPECT_EQ(lookup->ids->Text(), "A&1\\x\r\nB\r\n");
    EXPECT_TRUE(lookup->start->Enabled());

    // The row goes while the window is made, and the window while it is filled.
    all_.RegisterMaker("FrmLookup", [this] {
        main_->list->ListItems().Clear();
        auto made = std::make_unique<LookupWindow>();
        QTimer::singleShot(0, made.get(), [window = made.get()] { window->Unload(); });
        return made;
    });
    inventory::OpenLookup(*main_->list->SelectedItem());
    EXPECT_EQ(all_.Find("FrmLookup"), lookup);
}

} // namespace
