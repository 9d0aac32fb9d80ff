#include "base/file_mode.h"

#include <sys/stat.h>

namespace base {

mode_t NewFileMode() {
    // The mask can be read only by setting it.
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

} // namespace base
