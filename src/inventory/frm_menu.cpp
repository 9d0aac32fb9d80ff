#include "inventory/frm_menu.h"

#include "appearance/colour_table.h"
#include "forms/forms.h"
#include "forms/menu.h"
#include "inventory/device_lists.h"
#include "inventory/list_actions.h"
#include "inventory/list_behaviour.h"
#include "inventory/open_lookup.h"
#include "suite/list_view.h"
#include "suite/paint_tools.h"

#include <QMenu>
#include <QPalette>
#include <QPointer>
#include <array>
#include <span>

namespace inventory {

namespace {

struct Entry {
    const char* name;
    const char* caption;
};

constexpr auto separator = "-";

// The sub-items that the commands take from one kind of list, and how much of it its text tells.
struct ListColumns {
    int manufacturer;
    int hardwareIds;
    ListTextScope scope;
};

constexpr ListColumns mainColumns = {ManufacturerColumn, HardwareIdsColumn, ListTextScope::WholeRow};
// The lists of the windows above this folder: name, manufacturer, hardware IDs, and a hidden one in the lookup
// window's.
constexpr ListColumns lookupColumns = {1, 2, ListTextScope::WithoutLastColumn};
constexpr ListColumns improveColumns = {1, 2, ListTextScope::WholeRow};

constexpr std::array mainEntries = {
    Entry{"MenuMainLookup", "Lookup Selected Device In Database"},
    Entry{"MenuMainLine1", separator},
    Entry{"MenuMainSearchGoogle", "Search Google For Drivers (By Name)"},
    Entry{"MenuMainSearchGoogleID", "Search Google For Drivers (By Hardware IDs)"},
    Entry{"MenuMainLine2", separator},
    Entry{"MenuMainCopyWhole", "Copy Whole List"},
    Entry{"MenuMainCopyRow", "Copy Selected Row"},
    Entry{"MenuMainCopyName", "Copy Selected Name"},
    Entry{"MenuMainCopyManufacturer", "Copy Selected Manufacturer"},
    Entry{"MenuMainCopyError", "Copy Selected Error Code"},
    Entry{"MenuMainCopyClass", "Copy Selected Class"},
    Entry{"MenuMainCopyDriverVersion", "Copy Selected Driver Version"},
    Entry{"MenuMainCopyID", "Copy Selected Hardware IDs"},
    Entry{"MenuMainLine3", separator},
    Entry{"MenuMainRemoveDevice", "Remove Selected Device From List (Delete Key)"},
};

constexpr std::array lookupEntries = {
    Entry{"MenuLookupSearchGoogle", "Search Google For Drivers (By Name)"},
    Entry{"MenuLookupSearchGoogleID", "Search Google For Drivers (By Hardware IDs)"},
    Entry{"MenuLookupLine1", separator},
    Entry{"MenuLookupCopyWhole", "Copy Whole List"},
    Entry{"MenuLookupCopyRow", "Copy Selected Row"},
    Entry{"MenuLookupCopyName", "Copy Selected Name"},
    Entry{"MenuLookupCopyManufacturer", "Copy Selected Manufacturer"},
    Entry{"MenuLookupCopyID", "Copy Selected Hardware IDs"},
    Entry{"MenuLookupLine2", separator},
    Entry{"MenuLookupRemoveDevice", "Remove Selected Device From List (Delete Key)"},
};

constexpr std::array improveEntries = {
    Entry{"MenuImproveCopyWhole", "Copy Whole List"},
    Entry{"MenuImproveCopyRow", "Copy Selected Row"},
    Entry{"MenuImproveCopyName", "Copy Selected Name"},
    Entry{"MenuImproveCopyManufacturer", "Copy Selected Manufacturer"},
    Entry{"MenuImproveCopyID", "Copy Selected Hardware IDs"},
    Entry{"MenuImproveLine2", separator},
    Entry{"MenuImproveRemoveDevice", "Remove Selected Device From List (Delete Key)"},
};

QPointer<forms::Form>& ActiveListForm() {
    static QPointer<forms::Form> form;
    return form;
}

forms::Menu* MakeMenu(forms::Form* form, const char* name, const char* caption, std::span<const Entry> entries) {
    auto* menu = new forms::Menu(form, QLatin1String(name), QLatin1String(caption));
    for (const Entry& entry : entries)
        menu->AddEntry(QLatin1String(entry.name), QLatin1String(entry.caption));
    return menu;
}

// One list with the window that owns it; nothing while the window is gone.
struct Target {
    forms::Form* form = nullptr;
    suite::ListView* list = nullptr;
};

Target FindTarget(forms::Form* form, const char* listName) {
    return {form, form == nullptr ? nullptr : form->Find<suite::ListView>(QLatin1String(listName))};
}

// The commands that all three menus have; `command` is the entry's name behind the menu's. False for any other.
bool CommonCommand(const QString& command, const Target& target, const ListColumns& columns) {
    const suite::ListItems& items = target.list->ListItems();
    if (command == QLatin1String("CopyWhole"))
        CopyWholeList(items, columns.scope);
    else if (command == QLatin1String("CopyRow"))
        CopyRow(items, columns.scope);
    else if (command == QLatin1String("CopyName"))
        CopyValue(items, 0);
    else if (command == QLatin1String("CopyManufacturer"))
        CopyValue(items, columns.manufacturer);
    else if (command == QLatin1String("CopyID"))
        CopyValue(items, columns.hardwareIds);
    else if (command == QLatin1String("SearchGoogle"))
        SearchByName(target.form, items);
    else if (command == QLatin1String("SearchGoogleID"))
        SearchById(target.form, items, columns.hardwareIds);
    else if (command == QLatin1String("RemoveDevice"))
        RemoveSelected(*target.list);
    else
        return false;
    return true;
}

// The popups belong to no window, so the skin does not reach them.
QPalette PopupPalette() {
    const QColor back = suite::ToQColor(appearance::ColorOf(appearance::ProgramBack));
    const QColor fore = suite::ToQColor(appearance::ColorOf(appearance::ProgramText));
    const QColor chosen = suite::ToQColor(appearance::ColorOf(appearance::TitleTopBack));
    QPalette palette = suite::ControlPalette(back, suite::ReadableOn(back, fore));
    palette.setColor(QPalette::Highlight, chosen);
    palette.setColor(QPalette::HighlightedText, suite::ReadableOn(chosen, fore));
    return palette;
}

} // namespace

FrmMenu::FrmMenu() : forms::Form(QStringLiteral("FrmMenu"), 1500, 1500) {
    MenuMain = MakeMenu(this, "MenuMain", "MainList", mainEntries);
    MenuLookup = MakeMenu(this, "MenuLookup", "MainLookup", lookupEntries);
    MenuImprove = MakeMenu(this, "MenuImprove", "MainImprove", improveEntries);
    connect(MenuMain, &forms::Menu::Click, this, &FrmMenu::MainCommand);
    connect(MenuLookup, &forms::Menu::Click, this, &FrmMenu::LookupCommand);
    connect(MenuImprove, &forms::Menu::Click, this, &FrmMenu::ImproveCommand);
}

void FrmMenu::Closing() {
    for (const forms::Menu* menu : {MenuMain, MenuLookup, MenuImprove})
        menu->Popup()->close();
}

void FrmMenu::MainCommand(const QString& entry) {
    // Always the whole list, whichever of the four the popup was opened from.
    const Target target = FindTarget(forms::Forms::Instance().Find(QStringLiteral("FrmMain")), "ListViewHardware");
    if (target.list == nullptr)
        return;
    const QString command = entry.mid(MenuMain->Name().size());
    const suite::ListItems& items = target.list->ListItems();
    if (CommonCommand(command, target, mainColumns))
        return;
    if (command == QLatin1String("CopyError"))
        CopyValue(items, ErrorCodeColumn);
    else if (command == QLatin1String("CopyClass"))
        CopyValue(items, ClassColumn);
    else if (command == QLatin1String("CopyDriverVersion"))
        CopyValue(items, DriverVersionColumn);
    else if (const suite::ListItem* item = items.SelectedItem(); item != nullptr && command == QLatin1String("Lookup"))
        OpenLookup(*item);
}

void FrmMenu::LookupCommand(const QString& entry) {
    const Target target = FindTarget(ActiveListForm(), "LabelListViewHardware");
    if (target.list != nullptr)
        CommonCommand(entry.mid(MenuLookup->Name().size()), target, lookupColumns);
}

void FrmMenu::ImproveCommand(const QString& entry) {
    const Target target = FindTarget(ActiveListForm(), "ListViewHardware");
    if (target.list != nullptr)
        CommonCommand(entry.mid(MenuImprove->Name().size()), target, improveColumns);
}

void SetActiveListForm(forms::Form* form) { ActiveListForm() = form; }

void PopupListMenu(const QString& menuName, const QPoint& place) {
    forms::Form* holder = forms::Forms::Instance().Shared(QStringLiteral("FrmMenu"));
    auto* menu = holder == nullptr ? nullptr : holder->Find<forms::Menu>(menuName);
    if (menu == nullptr)
        return;
    menu->Popup()->setPalette(PopupPalette());
    menu->PopupMenu(place);
}

void RegisterMenuForm() {
    forms::Forms::Instance().RegisterMaker(QStringLiteral("FrmMenu"), [] { return std::make_unique<FrmMenu>(); });
}

} // namespace inventory
