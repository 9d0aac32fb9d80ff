// Yield: dispatch all pending events, then go on. Every long routine of the program calls it many times, so it returns
// at once when the last dispatch ended less than the gate's time ago. Whatever can run from an event can run inside a
// yield.
#pragma once

#include <functional>

namespace base {

// Dispatches pending events, unless the last dispatch ended less than the gate ago. Must not be called while a
// NoYieldScope lives (asserted).
void Yield();

// The same; `letGo` is called first if events are going to be dispatched, and not otherwise: for what may be kept
// between two steps but never while anything else runs.
void Yield(const std::function<void()>& letGo);

// For loops that wait for something outside: blocks until an event arrives, at most `milliseconds`, and dispatches it.
void YieldBlocking(int milliseconds);

// How many yields are on the stack.
int YieldDepth();

// The gate in milliseconds; 1 by default, 0 lets every Yield dispatch (tests).
void SetYieldGate(int milliseconds);

// Marks code that must not dispatch events: paints, transfer callbacks, socket notifications.
class NoYieldScope {
  public:
    NoYieldScope();
    ~NoYieldScope();
    NoYieldScope(const NoYieldScope&) = delete;
    NoYieldScope& operator=(const NoYieldScope&) = delete;
};

} // namespace base
