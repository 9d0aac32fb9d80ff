#include "base/yield.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>
#include <ctime>

namespace base {

namespace {

struct YieldState {
    int depth = 0;
    int forbidden = 0;
    int gateMilliseconds = 1;
    qint64 lastDispatch = 0; // coarse milliseconds; 0 before the first
};

YieldState& State() {
    static YieldState state;
    return state;
}

// The kernel's own time of its last tick. It is many times cheaper to read than the exact one, and most yields only
// find that nothing is due; its step of 1 to 4 ms is the most that it delays a dispatch.
qint64 CoarseMilliseconds() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
    return qint64(now.tv_sec) * 1000 + now.tv_nsec / 1'000'000;
}

template <typename Dispatch> void Dispatched(Dispatch dispatch) {
    YieldState& state = State();
    Q_ASSERT_X(state.forbidden == 0, "Yield", "called inside a paint or a transfer callback");
    if (state.forbidden != 0 || QCoreApplication::instance() == nullptr)
        return;
    ++state.depth;
    dispatch();
    --state.depth;
    state.lastDispatch = CoarseMilliseconds();
}

bool DispatchIsDue() {
    const YieldState& state = State();
    return state.gateMilliseconds <= 0 || state.lastDispatch == 0 ||
           CoarseMilliseconds() - state.lastDispatch >= state.gateMilliseconds;
}

} // namespace

void Yield() {
    if (DispatchIsDue())
        Dispatched([] { QCoreApplication::processEvents(); });
}

void Yield(const std::function<void()>& letGo) {
    if (DispatchIsDue()) {
        letGo();
        Dispatched([] { QCoreApplication::processEvents(); });
    }
}

void YieldBlocking(int milliseconds) {
    Dispatched([milliseconds] {
        // The timer's own event ends the wait; processEvents returns after the first round that did something.
        QTimer limit;
        limit.setSingleShot(true);
        limit.start(milliseconds);
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    });
}

int YieldDepth() { return State().depth; }

void SetYieldGate(int milliseconds) { State().gateMilliseconds = milliseconds; }

NoYieldScope::NoYieldScope() { ++State().forbidden; }

NoYieldScope::~NoYieldScope() { --State().forbidden; }

} // namespace base
