#include "controls/titel_bar_accessible.h"

#include "controls/titel_bar.h"

#include <QAccessible>
#include <QAccessibleWidget>

namespace controls {

namespace {

class ButtonAccessible : public QAccessibleWidget {
  public:
    explicit ButtonAccessible(AlphaImage* button) : QAccessibleWidget(button, QAccessible::Button) {}

    QStringList actionNames() const override { return {pressAction()}; }

    void doAction(const QString& action) override {
        auto* button = static_cast<AlphaImage*>(widget());
        if (action == pressAction() && button->Enabled())
            Q_EMIT button->MouseUp();
    }
};

QAccessibleInterface* MakeInterface(const QString& className, QObject* object) {
    if (className == QLatin1String(AlphaImage::staticMetaObject.className()))
        return new ButtonAccessible(static_cast<AlphaImage*>(object));
    if (className == QLatin1String(TitelBar::staticMetaObject.className()))
        return new QAccessibleWidget(static_cast<TitelBar*>(object), QAccessible::TitleBar);
    return nullptr;
}

} // namespace

void InstallTitelBarAccessibility() {
    static const bool installed = [] {
        QAccessible::installFactory(MakeInterface);
        return true;
    }();
    Q_UNUSED(installed)
}

} // namespace controls
