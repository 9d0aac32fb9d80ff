// The display scale that sizes of icons, bars and shadows are multiplied by.
#pragma once

namespace window {

// 1.0 below 97 dots per inch, 3.0 above 240, six steps between them.
float ScaleForDotsPerInch(int dotsPerInch);

// Asks the screen, yields and sets DpiScale of the program-wide values.
void MeasureDpi();

} // namespace window
