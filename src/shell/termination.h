// Requests from outside to end the program (SIGTERM, SIGINT, SIGHUP): the main window is closed as by its close button,
// so settings and database are left in order.
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
