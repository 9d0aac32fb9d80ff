#include "controls/accessible.h"

#include "controls/animation_bar.h"
#include "controls/brindlex_pb.h"
#include "controls/dc_button.h"
#include "controls/panel_fx.h"
#include "controls/titel_bar.h"
#include "draw/text_layout.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <algorithm>
#include <cmath>

namespace controls {

namespace {

class ButtonAccessible : public QAccessibleWidget {
  public:
    explicit ButtonAccessible(dcButton* button) : QAccessibleWidget(button, QAccessible::Button) {}

    QAccessible::Role role() const override {
        return Button()->CheckBoxMode() ? QAccessible::CheckBox : QAccessible::Button;
    }

    QString text(QAccessible::Text which) const override {
        if (which == QAccessible::Name && Button()->accessibleName().isEmpty())
            return draw::WithoutMarks(Button()->Caption());
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

class BusyAccessible : public QAccessibleWidget {
  public:
    explicit BusyAccessible(AnimationBar* bar) : QAccessibleWidget(bar, QAccessible::Animation) {}

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.busy = static_cast<AnimationBar*>(widget())->IsRunning();
        state.animated = state.busy;
        return state;
    }
};

class PanelAccessible : public QAccessibleWidget {
  public:
    explicit PanelAccessible(PanelFx* panel) : QAccessibleWidget(panel, QAccessible::Grouping) {}

    QAccessible::State state() const override {
        const auto* panel = static_cast<PanelFx*>(widget());
        QAccessible::State state = QAccessibleWidget::state();
        state.expandable = panel->CanCollapse();
        state.expanded = panel->CanCollapse() && !panel->Collapse();
        state.collapsed = panel->CanCollapse() && panel->Collapse();
        return state;
    }
};

// What is shown is heard: a value outside the range reads as the end that the bar stands at.
class ProgressAccessible : public QAccessibleWidget, public QAccessibleValueInterface {
  public:
    explicit ProgressAccessible(BrindlexPB* bar) : QAccessibleWidget(bar, QAccessible::ProgressBar) {}

    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::ValueInterface)
            return static_cast<QAccessibleValueInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }

    QString text(QAccessible::Text which) const override {
        if (which == QAccessible::Value)
            return QString::number(std::lround(Bar()->Percent())) + u'%';
        if (which == QAccessible::Name && Bar()->accessibleName().isEmpty())
            return Bar()->Text();
        return QAccessibleWidget::text(which);
    }

    QVariant currentValue() const override { return std::max(Bar()->Min(), std::min(Bar()->Value(), Bar()->Max())); }
    QVariant minimumValue() const override { return Bar()->Min(); }
    QVariant maximumValue() const override { return Bar()->Max(); }
    QVariant minimumStepSize() const override { return {}; }
    // Progress is the program's to tell.
    void setCurrentValue(const QVariant&) override {}

  private:
    BrindlexPB* Bar() const { return static_cast<BrindlexPB*>(widget()); }
};

class CaptionButtonAccessible : public QAccessibleWidget {
  public:
    explicit CaptionButtonAccessible(AlphaImage* button) : QAccessibleWidget(button, QAccessible::Button) {}

    QStringList actionNames() const override { return {pressAction()}; }

    void doAction(const QString& action) override {
        auto* button = static_cast<AlphaImage*>(widget());
        if (action == pressAction() && button->Enabled())
            Q_EMIT button->MouseUp();
    }
};

QAccessibleInterface* MakeInterface(const QString& /*className*/, QObject* object) {
    if (auto* button = qobject_cast<dcButton*>(object))
        return new ButtonAccessible(button);
    if (auto* bar = qobject_cast<AnimationBar*>(object))
        return new BusyAccessible(bar);
    if (auto* panel = qobject_cast<PanelFx*>(object))
        return new PanelAccessible(panel);
    if (auto* bar = qobject_cast<BrindlexPB*>(object))
        return new ProgressAccessible(bar);
    if (auto* button = qobject_cast<AlphaImage*>(object))
        return new CaptionButtonAccessible(button);
    if (auto* bar = qobject_cast<TitelBar*>(object))
        return new QAccessibleWidget(bar, QAccessible::TitleBar);
    return nullptr;
}

} // namespace

void InstallAccessibility() {
    [[maybe_unused]] static const bool installed = [] {
        QAccessible::installFactory(MakeInterface);
        return true;
    }();
}

void AccessibleNameChanged(QWidget* control) {
    QAccessibleEvent event(control, QAccessible::NameChanged);
    QAccessible::updateAccessibility(&event);
}

void AccessibleValueChanged(QWidget* control, int value) {
    QAccessibleValueChangeEvent event(control, value);
    QAccessible::updateAccessibility(&event);
}

void AccessibleBusyChanged(QWidget* control) {
    QAccessible::State changed;
    changed.busy = true;
    QAccessibleStateChangeEvent event(control, changed);
    QAccessible::updateAccessibility(&event);
}

void AccessibleExpandChanged(QWidget* control) {
    QAccessible::State changed;
    changed.expanded = true;
    changed.collapsed = true;
    QAccessibleStateChangeEvent event(control, changed);
    QAccessible::updateAccessibility(&event);
}

void AccessibleCheckChanged(QWidget* control) {
    QAccessible::State changed;
    changed.checked = true;
    QAccessibleStateChangeEvent event(control, changed);
    QAccessible::updateAccessibility(&event);
}

} // namespace controls
