// Whether the screen composites windows, so that transparent parts of a window show what lies behind it.
#pragma once

namespace forms {

// True while the owner of the selection _NET_WM_CM_S<n> lives (X11); false on platforms without the question.
bool ScreenComposites();

} // namespace forms
