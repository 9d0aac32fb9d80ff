// Work that takes long in one piece, done beside the program while that dispatches events: a thread that lives for this
// one call. The work shares nothing with the rest of the program, which has one thread.
#pragma once

#include <atomic>
#include <functional>

namespace base {

// Runs `work` and returns when it has ended. Events are dispatched meanwhile and `stopped` is asked, every 20 ms or
// sooner; once it says so, the flag that the work was given turns true. `work` must not throw, nor dispatch events.
// Where the system gives no thread the work is done on the spot.
void RunAside(const std::function<void(const std::atomic<bool>& stop)>& work, const std::function<bool()>& stopped);

} // namespace base
