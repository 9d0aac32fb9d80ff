#include "window/measure_dpi.h"

#include "base/numbers.h"
#include "base/yield.h"
#include "forms/screen.h"
#include "values/program_values.h"

#include <array>

namespace window {

namespace {

struct ScaleStep {
    int upTo; // dots per inch
    float scale;
};

constexpr std::array scaleSteps = {ScaleStep{96, 1.0F},  ScaleStep{120, 1.25F}, ScaleStep{144, 1.5F},
                                   ScaleStep{192, 2.0F}, ScaleStep{216, 2.25F}, ScaleStep{240, 2.5F}};
constexpr float largestScale = 3.0F;

} // namespace

float ScaleForDotsPerInch(int dotsPerInch) {
    for (const ScaleStep& step : scaleSteps)
        if (dotsPerInch <= step.upTo)
            return step.scale;
    return largestScale;
}

void MeasureDpi() {
    const int dotsPerInch = base::RoundToInt(forms::DotsPerInch());
    base::Yield();
    values::Program().DpiScale = ScaleForDotsPerInch(dotsPerInch);
}

} // namespace window
