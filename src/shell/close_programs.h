// The end of the program.
#pragma once

namespace shell {

// Unloads FrmColors, stops the main window's timers, which it knows by the beginning of their names, and unloads every
// form. Stops after a hundred forms, which protects against a list that never ends.
void ClosePrograms();

} // namespace shell
