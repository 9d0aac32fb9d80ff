#include "base/clock.h"

namespace base {

namespace {

std::function<QDateTime()>& Clock() {
    static std::function<QDateTime()> clock;
    return clock;
}

} // namespace

QDateTime Now() { return Clock() ? Clock()() : QDateTime::currentDateTime(); }

float SecondsSinceMidnight() { return float(Now().time().msecsSinceStartOfDay()) / 1000.0F; }

void SetClock(std::function<QDateTime()> clock) { Clock() = std::move(clock); }

} // namespace base
