// Preloaded into a process: the time of day jumps hours and days back and forth ten times a second, as when somebody
// sets the clock. The clock that only counts up stays as it is, like the system's.
#include <array>
#include <ctime>
#include <dlfcn.h>
#include <sys/time.h>

namespace {

using GetTime = int (*)(clockid_t, timespec*);

int Real(clockid_t clock, timespec* time) {
    static const auto next = reinterpret_cast<GetTime>(dlsym(RTLD_NEXT, "clock_gettime"));
    return next(clock, time);
}

time_t Jump() {
    constexpr std::array<time_t, 8> jumps = {0, 86'400, -86'400, 3'600, -3'600, 31'536'000, -10, 1'500'000'000};
    timespec now{};
    Real(CLOCK_MONOTONIC, &now);
    return jumps[size_t(now.tv_sec * 10 + now.tv_nsec / 100'000'000) % jumps.size()];
}

} // namespace

extern "C" {

int clock_gettime(clockid_t clock, timespec* time) noexcept {
    const int result = Real(clock, time);
    if (result == 0 && (clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE))
        time->tv_sec += Jump();
    return result;
}

int gettimeofday(timeval* time, void*) noexcept {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    time->tv_sec = now.tv_sec;
    time->tv_usec = now.tv_nsec / 1000;
    return 0;
}

int timespec_get(timespec* time, int base) noexcept { return clock_gettime(CLOCK_REALTIME, time) == 0 ? base : 0; }

time_t time(time_t* result) noexcept {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    if (result != nullptr)
        *result = now.tv_sec;
    return now.tv_sec;
}
}
