#include "window/measure_dpi.h"

#include "base/numbers.h"
#include "base/yield.h"
#include "forms/screen.h"
#include "values/program_values.h"

namespace window {

void MeasureDpi() {
    const int dotsPerInch = base::RoundToInt(forms::DotsPerInch());
    base::Yield();
    values::Program().DpiScale = float(forms::ScaleForDotsPerInch(dotsPerInch));
}

} // namespace window
