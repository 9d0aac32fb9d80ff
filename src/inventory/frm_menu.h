// The holder of the three popup menus; a window that is never shown. Which list a command works on: the first menu
// always on the main window's whole list, the other two on the list of the window that asked last.
#pragma once

#include "forms/form.h"

#include <QPoint>
#include <QString>

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

  protected:
    // A popup that is still open would keep the process.
    void Closing() override;

  private:
    void MainCommand(const QString& entry);
    void LookupCommand(const QString& entry);
    void ImproveCommand(const QString& entry);
};

// The window whose list MenuLookup or MenuImprove works on; set by it right before its popup.
void SetActiveListForm(forms::Form* form);

// Shows one of the menus by its name at a place of the screen (pixels), in the present colours of the scheme, and
// returns when it has closed and its command has run.
void PopupListMenu(const QString& menuName, const QPoint& place);

// Tells the collection of forms how FrmMenu is made.
void RegisterMenuForm();

} // namespace inventory
