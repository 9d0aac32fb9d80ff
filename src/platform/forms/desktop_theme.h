// The desktop's colours, at the start and when its theme changes while the program runs.
#pragma once

namespace forms {

// Fills the table of system colours from the toolkit's palette, now and after each change of it, upon which everything
// on the screen is painted anew. Once in a run, after the application and its style are made.
void FollowDesktopTheme();

} // namespace forms
