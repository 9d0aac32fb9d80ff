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
    if (auto* picture = qobject_cast<AlphaImgCtl*>(object))
        return new AccessiblePicture(picture);
    auto* widget = qobject_cast<QWidget*>(object);
    if (!widget)
        return nullptr;
    if (className == QLatin1String(GroupBox::staticMetaObject.className()))
        return new QAccessibleWidget(widget, QAccessible::Grouping);
    if (className == QLatin1String(TabControlPage::staticMetaObject.className()))
        return new QAccessibleWidget(widget, QAccessible::PropertyPage);
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
