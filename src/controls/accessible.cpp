#include "controls/accessible.h"

#include "controls/animation_bar.h"
#include "controls/dc_button.h"
#include "controls/panel_fx.h"

#include <QAccessible>
#include <QAccessibleWidget>

namespace controls {

namespace {

class ButtonAccessible : public QAccessibleWidget {
  public:
    explicit ButtonAccessible(dcButton* button)
        : QAccessibleWidget(button, button->CheckBoxMode() ? QAccessible::CheckBox : QAccessible::Button) {}

    QAccessible::Role role() const override {
        return Button()->CheckBoxMode() ? QAccessible::CheckBox : QAccessible::Button;
    }

    QString text(QAccessible::Text which) const override {
        if (which == QAccessible::Name && Button()->accessibleName().isEmpty())
            return AccessibleText(Button()->Caption());
        if (which == QAccessible::Accelerator) {
            const QChar key = FindAccessKey(Button()->Caption());
            return key.isNull() ? QString() : QStringLiteral("Alt+") + key.toUpper();
        }
        return QAccessibleWidget::text(which);
    }

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.checkable = Button()->CheckBoxMode();
        state.checked = Button()->CheckBoxMode() && Button()->Value();
        state.pressed = Button()->CurrentState() == DownState;
        state.hotTracked = Button()->CurrentState() == HotState;
        return state;
    }

    QStringList actionNames() const override {
        QStringList names;
        if (Button()->Enabled())
            names.append(Button()->CheckBoxMode() ? toggleAction() : pressAction());
        return names + QAccessibleWidget::actionNames();
    }

    void doAction(const QString& action) override {
        if (action == pressAction() || action == toggleAction())
            Button()->AccessKeyPress(0);
        else
            QAccessibleWidget::doAction(action);
    }

  private:
    dcButton* Button() const { return static_cast<dcButton*>(widget()); }
};

QAccessibleInterface* MakeInterface(const QString& className, QObject* object) {
    Q_UNUSED(className)
    if (auto* button = qobject_cast<dcButton*>(object))
        return new ButtonAccessible(button);
    if (auto* bar = qobject_cast<AnimationBar*>(object))
        return new QAccessibleWidget(bar, QAccessible::Animation);
    if (auto* panel = qobject_cast<PanelFx*>(object))
        return new QAccessibleWidget(panel, QAccessible::Grouping);
    return nullptr;
}

} // namespace

void InstallAccessibility() {
    static const bool installed = [] {
        QAccessible::installFactory(MakeInterface);
        return true;
    }();
    Q_UNUSED(installed)
}

QString AccessibleText(const QString& caption) {
    QString spoken;
    spoken.reserve(caption.size());
    for (qsizetype i = 0; i < caption.size(); ++i) {
        if (caption.at(i) == u'&' && ++i == caption.size())
            break;
        spoken.append(caption.at(i));
    }
    return spoken;
}

void AccessibleNameChanged(QWidget* control) {
    QAccessibleEvent event(control, QAccessible::NameChanged);
    QAccessible::updateAccessibility(&event);
}

void AccessibleCheckChanged(QWidget* control) {
    QAccessible::State changed;
    changed.checked = true;
    QAccessibleStateChangeEvent event(control, changed);
    QAccessible::updateAccessibility(&event);
}

} // namespace controls
