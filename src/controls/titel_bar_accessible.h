// What a screen reader learns of a title bar: a title bar named by its caption, with buttons that can be pressed.
#pragma once

namespace controls {

// Makes title bars and their buttons known to the accessibility layer; any number of calls.
void InstallTitelBarAccessibility();

} // namespace controls
