// The display scale that sizes of icons, bars and shadows are multiplied by.
#pragma once

namespace window {

// Asks the screen, yields and sets DpiScale of the program-wide values.
void MeasureDpi();

} // namespace window
