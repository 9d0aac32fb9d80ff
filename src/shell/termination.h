// Requests from outside to end the program (SIGTERM, SIGINT, SIGHUP): the main window is closed as by its close button,
// so settings and database are left in order. One at a time; a signal that is ignored when it begins stays ignored, and
// what was set before comes back with its end.
#pragma once

#include <QSocketNotifier>
#include <memory>

namespace shell {

class Termination {
  public:
    Termination();
    ~Termination();
    Termination(const Termination&) = delete;
    Termination& operator=(const Termination&) = delete;

  private:
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace shell
