// The clock that the program asks; tests set one of their own.
#pragma once

#include <QDateTime>
#include <functional>

namespace base {

QDateTime Now();

// Seconds since midnight, local time, with fractions, in the single precision of the platform's Timer function.
float SecondsSinceMidnight();

// Null restores the system's clock.
void SetClock(std::function<QDateTime()> clock);

} // namespace base
