#include "suite/accessible_controls.h"

#include "suite/alpha_image.h"
#include "suite/group_box.h"
#include "suite/tab_control.h"

#include <QAccessible>
#include <QAccessibleWidget>

namespace suite {

namespace {

// A picture that does something when it is clicked.
class AccessiblePicture : public QAccessibleWidget {
  public:
    explicit AccessiblePicture(AlphaImgCtl* picture) : QAccessibleWidget(picture) {}

    QAccessible::Role role() const override {
        return static_cast<AlphaImgCtl*>(widget())->Clickable() ? QAccessible::Button : QAccessible::Graphic;
    }

    QStringList actionNames() const override {
        QStringList names = QAccessibleWidget::actionNames();
        if (role() == QAccessible::Button)
            names.prepend(pressAction());
        return names;
    }

    void doAction(const QString& name) override {
        if (name == pressAction())
            static_cast<AlphaImgCtl*>(widget())->Press();
        else
            QAccessibleWidget::doAction(name);
    }
};

QAccessibleInterface* Make(const QString& className, QObject* object) {
    Q_UNUSED(className)
    if (auto* picture = qobject_cast<AlphaImgCtl*>(object))
        return new AccessiblePicture(picture);
    if (auto* group = qobject_cast<GroupBox*>(object))
        return new QAccessibleWidget(group, QAccessible::Grouping);
    if (auto* page = qobject_cast<TabControlPage*>(object))
        return new QAccessibleWidget(page, QAccessible::PropertyPage);
    return nullptr;
}

} // namespace

void InstallAccessibleControls() {
    static const bool installed = [] {
        QAccessible::installFactory(Make);
        return true;
    }();
    Q_UNUSED(installed)
}

} // namespace suite
