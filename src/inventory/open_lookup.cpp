#include "inventory/open_lookup.h"

#include "base/yield.h"
#include "forms/form.h"
#include "forms/forms.h"
#include "forms/label.h"
#include "forms/text_box.h"
#include "forms/timer.h"
#include "inventory/device_lists.h"
#include "suite/list_items.h"

namespace inventory {

void OpenLookup(const suite::ListItem& device) {
    // The row may go while the window loads, so its texts are taken first.
    const QString name = device.Text(); // NOLINT(performance-unnecessary-copy-initialization)
    QString ids = device.SubItems(HardwareIdsColumn).value_or(QString());
    forms::Form* lookup = forms::Forms::Instance().New(QStringLiteral("FrmLookup"));
    if (lookup == nullptr)
        return;
    lookup->Show();
    lookup->SetCaption(name);
    if (auto* label = lookup->Find<forms::Label>(QStringLiteral("ImportantLabelName")))
        label->SetCaption(QStringLiteral("Device: ") + name);
    if (auto* text = lookup->Find<forms::TextBox>(QStringLiteral("TextID")))
        text->SetText(ids.replace(u'|', QStringLiteral("\r\n")));
    base::Yield();
    lookup->SetFocus();
    base::Yield();
    // A window that was closed meanwhile has nothing to search for.
    auto* timer = lookup->Find<forms::Timer>(QStringLiteral("TimerStart"));
    if (timer != nullptr && !lookup->IsUnloaded())
        timer->SetEnabled(true);
    base::Yield();
}

} // namespace inventory
