// A second process of a test's own, for what several of them do to one file.
#pragma once

#include <csignal>
#include <fcntl.h>
#include <functional>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace support {

// A process that runs `body`, which tells how far it is by writing one byte for each finished step.
class Child {
  public:
    explicit Child(const std::function<void(const std::function<void()>& stepDone)>& body) {
        int ends[2];
        if (::pipe2(ends, O_CLOEXEC) != 0) {
            return;
        }
        pid_ = ::fork();
        if (pid_ == 0) {
            ::prctl(PR_SET_PDEATHSIG, SIGKILL);
            body([&] { [[maybe_unused]] const ssize_t written = ::write(ends[1], "x", 1); });
            ::_exit(0);
        }
        ::close(ends[1]);
        progress_ = ends[0];
    }
    ~Child() {
        if (pid_ > 0) {
            Kill();
            Finish();
        }
        ::close(progress_);
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    void Kill() const { ::kill(pid_, SIGKILL); }

    // Waits until it has finished one step more than was waited for before. False if it ended instead.
    bool WaitForStep() {
        char byte = 0;
        const bool finished = ::read(progress_, &byte, 1) == 1;
        steps_ += finished ? 1 : 0;
        return finished;
    }

    // Waits for its end; the number of steps that it finished. To be called once.
    int Finish() {
        while (WaitForStep()) {
        }
        int status = 0;
        ::waitpid(pid_, &status, 0);
        pid_ = -1;
        return steps_;
    }

  private:
    pid_t pid_ = -1;
    int progress_ = -1;
    int steps_ = 0;
};

} // namespace support
