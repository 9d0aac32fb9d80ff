// The holder of the three popup menus; a window that is never shown. Which list a command works on: the first menu
// always on the main window's whole list, the other two on the list of the window that asked last.
#pragma once

#include "forms/form.h"

#include <QPointer>

namespace forms {
class Menu;
}

namespace suite {
class ListView;
}

namespace inventory {

class FrmMenu : public forms::Form {
    Q_OBJECT

  public:
    FrmMenu();

    forms::Menu* MenuMain = nullptr;
    forms::Menu* MenuLookup = nullptr;
    forms::Menu* MenuImprove = nullptr;

  private:
    void MainCommand(const QString& entry);
    void LookupCommand(const QString& entry);
    void ImproveCommand(const QString& entry);
};

// The window whose list MenuLookup or MenuImprove works on; set by it right before its popup.
void SetActiveListForm(forms::Form* form);

// Shows one of the menus by its name at the pointer.
void PopupListMenu(const QString& menuName);

// Tells the collection of forms how FrmMenu is made.
void RegisterMenuForm();

} // namespace inventory
