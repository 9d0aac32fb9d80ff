// The permissions of files that the program makes without the toolkit.
#pragma once

#include <sys/types.h>

namespace base {

// Reading and writing for everybody, less what the user's own mask takes away.
mode_t NewFileMode();

} // namespace base
