#include "base/clock.h"

#include <ctime>

namespace base {

namespace {

std::function<QDateTime()>& Clock() {
    static std::function<QDateTime()> clock;
    return clock;
}

// Seconds between local time and Greenwich's. Asked of the system once a minute only, as each question costs a look at
// the file of the time zone, and downloads ask for the time with every chunk.
long LocalOffset(std::time_t seconds) {
    static std::time_t minuteAsked = -1;
    static long offset = 0;
    if (seconds / 60 != minuteAsked) {
        std::tm local{};
        offset = localtime_r(&seconds, &local) != nullptr ? local.tm_gmtoff : 0;
        minuteAsked = seconds / 60;
    }
    return offset;
}

constexpr std::time_t secondsInDay = 24 * 60 * 60;

} // namespace

QDateTime Now() { return Clock() ? Clock()() : QDateTime::currentDateTime(); }

float SecondsSinceMidnight() {
    if (Clock()) {
        return float(Now().time().msecsSinceStartOfDay()) / 1000.0F;
    }
    std::timespec now{};
    std::timespec_get(&now, TIME_UTC);
    const std::time_t second = (now.tv_sec + LocalOffset(now.tv_sec)) % secondsInDay;
    const long wholeMilliseconds = now.tv_nsec / 1'000'000;
    return float(double(second) + double(wholeMilliseconds) / 1000.0);
}

void SetClock(std::function<QDateTime()> clock) { Clock() = std::move(clock); }

} // namespace base
