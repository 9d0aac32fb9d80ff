// The pictures of the icon modules: one small line drawing for each kind of device, drawn from a table of shapes at any
// size. They are made to be told apart at 16 pixels and to stand out on light and dark lists alike.
#pragma once

#include "suite/icon_modules.h"

#include <QPixmap>

namespace suite {

// A square picture with a transparent ground; null for Glyph::None and for sizes below 1. Cached by the toolkit.
QPixmap GlyphPixmap(Glyph glyph, int pixels);

} // namespace suite
