// Small services that give the borderless windows their shape and edge: a colour key that makes the title bar's corners
// see-through and a soft shadow around the window; and the resolving of colours, folders and functions of the platform.
#pragma once

#include "base/colour.h"

#include <QString>

namespace forms {
class Form;
}

namespace appearance {

// Pixels of exactly this colour show what lies behind the window. The last step of every window's load, with the
// BackColor of its TitelBar1.
void MakeWindowColorKeyed(forms::Form* form, base::Colour colour);

// Sets the defaults of the shadows, whose sizes depend on the display scale. Once, while the main window loads.
void InitShadow();

// Adds, refreshes or removes the window's shadow, as the program's switch and the border colour say.
void UpdateShadow(forms::Form* form);

// A compositor has begun or ended: gives every window the shadow that it had no screen for, with its sizes.
void RenewShadows();

// The plain colour of a value that may be a system colour.
base::Colour TranslateColor(base::Colour colour);

// The path of a special folder by the platform's number, empty if there is none. With `create` a missing one is made.
// `flags`, `owner` and `token` have no meaning on this platform.
QString GetSpecialFolder(int folder, int flags = 0, bool create = false, const forms::Form* owner = nullptr,
                         int token = 0);

// Whether a library exports a function.
bool ApiExists(const QString& function, const QString& library);

} // namespace appearance
