// The icons that the desktop shows for a window.
#pragma once

#include <QString>

namespace forms {
class Form;
}

namespace window {

// Sets the big and the small icon of the window, and with `ownerToo` also of the last owner above it.
void SetFormIcon(forms::Form& form, const QString& resourceName, bool ownerToo);

// The icon for a title bar: 24 by 24 pixels times the display scale.
int TitleIconSize();

} // namespace window
