#include "forms/menu.h"

#include "forms/form.h"

#include <QAction>
#include <QMenu>

namespace forms {

namespace {

constexpr int rightAligned = 8;
constexpr int bottomAligned = 32;

} // namespace

Menu::Menu(Form* form, const QString& name, const QString& caption)
    : Component(form, name), caption_(caption), menu_(std::make_unique<QMenu>()) {}

Menu::~Menu() = default;

void Menu::AddEntry(const QString& name, const QString& caption) {
    if (caption == QLatin1String("-")) {
        menu_->addSeparator()->setObjectName(name);
        return;
    }
    QAction* action = menu_->addAction(caption);
    action->setObjectName(name);
    connect(action, &QAction::triggered, this, [this, name] { Q_EMIT Click(name); });
}

QStringList Menu::EntryNames() const {
    QStringList names;
    const auto actions = menu_->actions();
    for (const QAction* action : actions)
        names.append(action->objectName());
    return names;
}

void Menu::PopupMenu(const QPoint& place, int flags) {
    const QSize size = menu_->sizeHint();
    const QPoint corner(place.x() - ((flags & rightAligned) != 0 ? size.width() : 0),
                        place.y() - ((flags & bottomAligned) != 0 ? size.height() : 0));
    menu_->exec(corner);
}

void Menu::Choose(const QString& entryName) {
    const auto actions = menu_->actions();
    for (QAction* action : actions)
        if (action->objectName() == entryName && !action->isSeparator())
            action->trigger();
}

bool Menu::IsOpen() const { return menu_->isVisible(); }

} // namespace forms
