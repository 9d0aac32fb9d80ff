// A popup menu: named entries with captions, the caption "-" being a separator. Owned by the form that holds it.
#pragma once

#include "forms/component.h"

#include <QPoint>
#include <QStringList>
#include <memory>

class QMenu;

namespace forms {

class Menu : public Component {
    Q_OBJECT

  public:
    Menu(Form* form, const QString& name, const QString& caption);
    ~Menu() override;

    QString Caption() const { return caption_; }
    // Adds the entry at the end. The name is what Click tells.
    void AddEntry(const QString& name, const QString& caption);
    QStringList EntryNames() const;
    // Shows the menu with its corner at a place of the screen, in pixels, and returns when it has closed. The clicked
    // entry's Click has been raised by then. Flags 8 and 32 put the place at the menu's right and bottom edge.
    void PopupMenu(const QPoint& place, int flags = 0);
    // Raises Click for an entry as if the user had chosen it. Unknown names do nothing.
    void Choose(const QString& entryName);
    bool IsOpen() const;
    // The toolkit's menu behind it, to be coloured; owned by this object.
    QMenu* Popup() const { return menu_.get(); }

  Q_SIGNALS:
    void Click(const QString& entryName);

  private:
    QString caption_;
    std::unique_ptr<QMenu> menu_;
};

} // namespace forms
