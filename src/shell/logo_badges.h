// The three logos of the main window are one picture; a badge on each tells them apart.
#pragma once

#include "draw/picture.h"

namespace shell {

// The picture with a badge in its lower right corner: a globe for the first one, the web site, and a number for the
// social pages.
draw::Picture WithBadge(const draw::Picture& logo, int index);

} // namespace shell
