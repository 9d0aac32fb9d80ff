// How large the windows are drawn. They are designed in twips around a text of a certain size; a desktop whose text is
// larger gets windows that are larger in the same measure, and a screen that is too small for them gets smaller windows
// with a smaller text.
#pragma once

#include <QSize>

namespace forms {

struct Density {
    double dotsPerInch = 96; // what the windows are measured with
    double textFactor = 1;   // what the text's size has to be multiplied by, at most 1
};

// `textRatio` is the size of the desktop's text beside that of the design; a little more than 1 fits without a change,
// and so does less. `room` is the work area in pixels, `widest` and `highest` are the largest windows' measures in
// twips.
Density FitDensity(double screenDotsPerInch, double textRatio, QSize room, double widest, double highest);

// Measures screen and font, and applies what fits to DotsPerInch and to the application's font. Once, after the
// application object is made and before the first window.
void ApplyDensity(double widest, double highest);

} // namespace forms
