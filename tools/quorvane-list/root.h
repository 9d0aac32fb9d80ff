// Which machine is read: this one, one whose /sys was copied, or one that was saved.
#pragma once

#include <string>

namespace list_tool {

// Makes a folder, or the file of a saved machine, the process' device root; an empty one stands for this machine.
// Empty, or why there are no devices to be read.
std::string UseRoot(const std::string& root);

} // namespace list_tool
