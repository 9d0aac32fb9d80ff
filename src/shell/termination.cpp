#include "shell/termination.h"

#include "forms/form.h"
#include "forms/forms.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

namespace shell {

namespace {

constexpr std::array endingSignals = {SIGTERM, SIGINT, SIGHUP};

// What was set before us, by whoever started the program.
std::array<sighandler_t, endingSignals.size()>& Before() {
    static std::array<sighandler_t, endingSignals.size()> handlers = {SIG_DFL, SIG_DFL, SIG_DFL};
    return handlers;
}

// A handler may call next to nothing, so it writes one byte that the event loop reads.
std::array<int, 2>& Pipe() {
    static std::array<int, 2> ends = {-1, -1};
    return ends;
}

void Tell(int) {
    const int error = errno; // of whatever call the signal came into
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = write(Pipe()[0], &byte, 1);
    errno = error;
}

} // namespace

Termination::Termination() {
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, Pipe().data()) != 0)
        return;
    notifier_ = std::make_unique<QSocketNotifier>(Pipe()[1], QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [] {
        char byte = 0;
        while (read(Pipe()[1], &byte, 1) > 0) {
        }
        if (forms::Form* main = forms::Forms::Instance().Find(QStringLiteral("FrmMain")))
            main->Unload();
    });
    for (size_t i = 0; i < endingSignals.size(); ++i) {
        Before()[i] = std::signal(endingSignals[i], Tell);
        // Who has a program started to outlive its terminal (nohup) has the signal ignored.
        if (Before()[i] == SIG_IGN)
            std::signal(endingSignals[i], SIG_IGN);
    }
}

Termination::~Termination() {
    if (notifier_)
        for (size_t i = 0; i < endingSignals.size(); ++i)
            std::signal(endingSignals[i], Before()[i]);
    for (int& end : Pipe()) {
        if (end >= 0)
            close(end);
        end = -1;
    }
}

} // namespace shell
