// How well two colours are told apart.
#pragma once

#include "base/colour.h"

namespace draw {

// By relative luminance: 1 (not at all) to 21. Text reads well from 4.5 on. Only the low three bytes take part.
double Contrast(base::Colour a, base::Colour b);

} // namespace draw
