// Keys that are held down. The toolkit tells a repeat from a press only if the display server's events come to it
// together, and otherwise a held key presses a button 25 times a second. Here the server is asked to repeat presses
// alone, and what is down is kept.
#pragma once

namespace forms {

// From now on each repeated press says so (isAutoRepeat), raises no shortcut, and reaches no other window than the one
// that its key went down in. Acts once in a run, on X11; elsewhere the toolkit knows repeats by itself.
void TellKeyRepeats();

} // namespace forms
