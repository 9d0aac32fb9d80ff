#include "inventory/open_lookup.h"

#include "base/yield.h"
#include "forms/form.h"
#include "forms/forms.h"
#include "forms/label.h"
#include "forms/text_box.h"
#include "forms/timer.h"
#include "suite/list_items.h"

#include <QPointer>

namespace inventory {

namespace {

constexpr int hardwareIdsColumn = 5;

} // namespace

void OpenLookup(const suite::ListItem& device) {
    // The row may go while the window loads, so its texts are taken first.
    const QString name = device.Text();
    QString ids = device.SubItems(hardwareIdsColumn).value_or(QString());
    const QPointer<forms::Form> lookup = forms::Forms::Instance().New(QStringLiteral("FrmLookup"));
    if (!lookup)
        return;
    lookup->Show();
    if (!lookup || lookup->IsUnloaded())
        return;
    lookup->SetCaption(name);
    if (auto* label = lookup->Find<forms::Label>(QStringLiteral("ImportantLabelName")))
        label->SetCaption(QStringLiteral("Device: ") + name);
    if (auto* text = lookup->Find<forms::TextBox>(QStringLiteral("TextID")))
        text->SetText(ids.replace(u'|', QStringLiteral("\r\n")));
    base::Yield();
    if (!lookup)
        return;
    lookup->SetFocus();
    base::Yield();
    if (!lookup || lookup->IsUnloaded())
        return;
    if (auto* timer = lookup->Find<forms::Timer>(QStringLiteral("TimerStart")))
        timer->SetEnabled(true);
    base::Yield();
}

} // namespace inventory
