// Whether the screen composites windows, so that transparent parts of a window show what lies behind it.
#pragma once

namespace forms {

// True while the selection _NET_WM_CM_S0 has an owner (X11, whose first screen holds every monitor of a desktop); false
// on platforms without the question.
bool ScreenComposites();

} // namespace forms
