// Arithmetic on colours, shared by the drawn controls. Channels round to nearest, ties to even.
#pragma once

#include "base/colour.h"

namespace controls {

// The colour that lies `t` of the way from `a` to `b`, each channel by itself: 0 is `a`, 1 is `b`. Only the low three
// bytes take part.
base::Colour LerpColour(base::Colour a, base::Colour b, double t);

// Adds `amount` times 255 to each channel and keeps it within 0 to 255. A negative amount darkens.
base::Colour ShiftColour(base::Colour colour, double amount);

} // namespace controls
