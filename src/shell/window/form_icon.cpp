#include "window/form_icon.h"

#include "base/numbers.h"
#include "forms/form.h"
#include "forms/screen.h"
#include "values/program_values.h"
#include "window/icon_resource.h"

#include <QIcon>
#include <QPixmap>
#include <QWindow>

namespace window {

namespace {

constexpr int titleIconSize = 24; // pixels at a display scale of 1

QWindow* LastOwner(const QWidget& window) {
    QWindow* last = nullptr;
    const QWindow* at = window.windowHandle();
    while (at != nullptr && at->transientParent() != nullptr) {
        last = at->transientParent();
        at = last;
    }
    return last;
}

} // namespace

void SetFormIcon(forms::Form& form, const QString& resourceName, bool ownerToo) {
    QIcon icon;
    // The big and the small size first; the others are for desktops that show larger ones, or choose by themselves.
    for (const int size : {forms::GetSystemMetrics(forms::BigIconWidth), forms::GetSystemMetrics(forms::SmallIconWidth),
                           16, 24, 32, 48, 64, 128, 256}) {
        const draw::Picture picture = LoadIconFromRes(resourceName, size, size, 0, false);
        if (!picture.IsEmpty() && !icon.availableSizes().contains(QSize(size, size)))
            icon.addPixmap(QPixmap::fromImage(picture.Image()));
    }
    if (icon.isNull())
        return;
    if (QWindow* owner = ownerToo ? LastOwner(form) : nullptr)
        owner->setIcon(icon);
    form.setWindowIcon(icon);
}

int TitleIconSize() { return base::RoundToInt(titleIconSize * double(values::Program().DpiScale)); }

} // namespace window
