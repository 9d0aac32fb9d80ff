#include "controls/colour_helpers.h"

#include "base/numbers.h"

#include <algorithm>

namespace controls {
namespace {

base::Colour Pack(qint32 red, qint32 green, qint32 blue) {
    return base::Colour(quint32(red) + quint32(green) * 256U + quint32(blue) * 65536U);
}

qint32 LerpChannel(int a, int b, double t) { return base::RoundToInt(t * (b - a) + a); }

qint32 ShiftChannel(int channel, double amount) {
    const qint32 shifted = base::RoundToInt(amount * 255 + channel);
    return amount > 0 ? std::min(shifted, 255) : std::max(shifted, 0);
}

} // namespace

base::Colour LerpColour(base::Colour a, base::Colour b, double t) {
    return Pack(LerpChannel(a.Red(), b.Red(), t), LerpChannel(a.Green(), b.Green(), t),
                LerpChannel(a.Blue(), b.Blue(), t));
}

base::Colour ShiftColour(base::Colour colour, double amount) {
    return Pack(ShiftChannel(colour.Red(), amount), ShiftChannel(colour.Green(), amount),
                ShiftChannel(colour.Blue(), amount));
}

} // namespace controls
