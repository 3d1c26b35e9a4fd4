#include <ctime>

#include "yon/platform/platform.h"
#include "yon/platform/posix/libc_lock.h"

namespace yon::platform {

static_assert(sizeof(std::time_t) == 8, "dates after 2038 need a 64-bit time_t");

namespace {

longlong microseconds(clockid_t clock) noexcept {
    timespec t;
    ::clock_gettime(clock, &t);
    return longlong{t.tv_sec} * 1000000 + t.tv_nsec / 1000;
}

}  // namespace

longlong wallMicroseconds() noexcept { return microseconds(CLOCK_REALTIME); }

longlong monotonicMicroseconds() noexcept { return microseconds(CLOCK_MONOTONIC); }

CalendarTime localTime(longlong seconds) noexcept {
    std::time_t const moment = seconds;
    std::tm t{};
    LibcLock const lock;
    ::localtime_r(&moment, &t);
    return {longlong{t.tm_year} + 1900, t.tm_mon + 1, t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec};
}

}  // namespace yon::platform
