#include "forms/accessible.h"

#include "forms/form.h"
#include "forms/label.h"
#include "forms/picture_box.h"

#include <QAccessible>
#include <QAccessibleWidget>

namespace forms {

namespace {

class AccessibleLabel : public QAccessibleWidget {
  public:
    explicit AccessibleLabel(Label* label) : QAccessibleWidget(label, QAccessible::StaticText) {}

    QAccessible::Role role() const override { return OwnLabel().Grip() ? QAccessible::Grip : QAccessible::StaticText; }

    QString text(QAccessible::Text which) const override {
        if (which != QAccessible::Name || !widget()->accessibleName().isEmpty())
            return QAccessibleWidget::text(which);
        // The grip's mark is a letter of a font of symbols, which nobody should hear.
        return OwnLabel().Grip() ? QStringLiteral("Size Grip") : OwnLabel().ShownText();
    }

  private:
    const Label& OwnLabel() const { return *static_cast<Label*>(widget()); }
};

QAccessibleInterface* Make(const QString& className, QObject* object) {
    Q_UNUSED(className)
    // Screen readers look for the active window by its role, and a bare widget has none.
    if (auto* form = qobject_cast<Form*>(object))
        return new QAccessibleWidget(form, QAccessible::Window);
    if (auto* label = qobject_cast<Label*>(object))
        return new AccessibleLabel(label);
    // One that holds controls is the ground that they stand on.
    if (auto* picture = qobject_cast<PictureBox*>(object))
        return new QAccessibleWidget(picture, picture->findChild<Control*>() == nullptr ? QAccessible::Graphic
                                                                                        : QAccessible::Grouping);
    return nullptr;
}

} // namespace

void InstallAccessibility() {
    static const bool installed = [] {
        QAccessible::installFactory(Make);
        return true;
    }();
    Q_UNUSED(installed)
}

} // namespace forms
