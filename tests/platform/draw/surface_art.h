// Surfaces as text, for tests: one character a pixel, '.' for black and 'X' for white, rows ended by '\n'.
#pragma once

#include "draw/surface.h"

#include <ostream>
#include <string>

namespace base {
inline void PrintTo(Colour colour, std::ostream* stream) { *stream << "0x" << std::hex << colour.Value(); }
} // namespace base

namespace draw_test {

inline constexpr base::Colour black{0};
inline constexpr base::Colour white{0xFFFFFF};

inline std::string Art(const draw::Surface& surface) {
    std::string art;
    for (int y = 0; y < surface.Height(); ++y) {
        for (int x = 0; x < surface.Width(); ++x) {
            const base::Colour colour = surface.GetPixel(x, y);
            art += colour == black ? '.' : colour == white ? 'X' : '?';
        }
        art += '\n';
    }
    return art;
}

} // namespace draw_test
