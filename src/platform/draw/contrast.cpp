#include "draw/contrast.h"

#include <algorithm>
#include <cmath>

namespace draw {

namespace {

double Luminance(base::Colour colour) {
    const auto linear = [](int channel) {
        const double part = channel / 255.0;
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.Red()) + 0.7152 * linear(colour.Green()) + 0.0722 * linear(colour.Blue());
}

} // namespace

double Contrast(base::Colour a, base::Colour b) {
    const double first = Luminance(a), second = Luminance(b);
    return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}

} // namespace draw
