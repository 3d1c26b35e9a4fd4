#include <ctime>

#include "yon/platform/fork.h"
#include "yon/platform/locks.h"
#include "yon/platform/platform.h"

namespace yon::platform {

static_assert(sizeof(std::time_t) == 8, "dates after 2038 need a 64-bit time_t");

namespace {

longlong microseconds(clockid_t clock) noexcept {
    timespec t;
    ::clock_gettime(clock, &t);
    return longlong{t.tv_sec} * 1000000 + t.tv_nsec / 1000;
}

/// The C library has a lock for the time zone, which a forked process may find locked for good: it forks with nobody
/// in there.
constinit std::uintptr_t timeZone = 0;
void lockTimeZone() noexcept { lockWord(timeZone); }
void unlockTimeZone() noexcept { unlockWord(timeZone); }
[[maybe_unused]] bool const survivesFork =
    (onFork(ForkLayer::base, lockTimeZone, unlockTimeZone, unlockTimeZone), true);

}  // namespace

longlong wallMicroseconds() noexcept { return microseconds(CLOCK_REALTIME); }

longlong monotonicMicroseconds() noexcept { return microseconds(CLOCK_MONOTONIC); }

CalendarTime localTime(longlong seconds) noexcept {
    std::time_t const moment = seconds;
    std::tm t{};
    lockTimeZone();
    ::localtime_r(&moment, &t);
    unlockTimeZone();
    return {longlong{t.tm_year} + 1900, t.tm_mon + 1, t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec};
}

}  // namespace yon::platform
