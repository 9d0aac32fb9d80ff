#include "base/yield.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

namespace base {

namespace {

struct YieldState {
    int depth = 0;
    int forbidden = 0;
    int gateMilliseconds = 1;
    QElapsedTimer sinceDispatch;
};

YieldState& State() {
    static YieldState state;
    return state;
}

template <typename Dispatch> void Dispatched(Dispatch dispatch) {
    YieldState& state = State();
    Q_ASSERT_X(state.forbidden == 0, "Yield", "called inside a paint or a transfer callback");
    if (state.forbidden != 0 || QCoreApplication::instance() == nullptr)
        return;
    ++state.depth;
    dispatch();
    --state.depth;
    state.sinceDispatch.start();
}

bool DispatchIsDue() {
    const YieldState& state = State();
    return state.gateMilliseconds <= 0 || !state.sinceDispatch.isValid() ||
           state.sinceDispatch.elapsed() >= state.gateMilliseconds;
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
