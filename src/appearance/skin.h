// The skin: gives every control of a window its colours by the first letters of its name. A window runs it at the end
// of its load, the colour editor after every change. Properties that a control lacks are passed over; nothing is
// reported.
#pragma once

#include "appearance/skin_table.h"

namespace forms {
class Form;
}

namespace appearance {

// Runs the whole sequence on one window. Yields after each touched control.
void ApplyColorsToForm(forms::Form* form);

// The same for every loaded window, then saves the colours. A change during its yields may run it nested.
void ApplyColorsToAllForms();

// One routine of the sequence: a walk over the window's controls in the present colours. `refresh` asks for a Refresh
// of each control it touched.
void RunRoutine(forms::Form* form, Routine routine, bool refresh);

// Calls Refresh on each control in turn, yielding after each.
void RefreshControls(forms::Form* form);

// Clears the window and draws its frame in the fore colour: one pixel on the left, right and bottom edges, the top edge
// being outside. The window shows it at once.
void DrawWindowFrame(forms::Form* form);

} // namespace appearance
