#include "base/standard_streams.h"

#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <initializer_list>
#include <unistd.h>

namespace base {

void PrepareStandardStreams() {
    // open gives the lowest free number. Opened the wrong way round, so that using the stream goes on failing.
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(stream, F_GETFD) < 0) {
            static_cast<void>(::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY));
        }
    }
    // A file beyond the limit that the shell sets is a failed write too. Handled rather than ignored: programs that we
    // start would go on ignoring them.
    for (const int fault : {SIGPIPE, SIGXFSZ}) {
        std::signal(fault, [](int) {});
    }
}

bool StandardOutputWritten() { return std::fflush(stdout) == 0 && std::ferror(stdout) == 0; }

} // namespace base
