#include <windows.h>

#include <ctime>

#include "yon/platform/platform.h"

namespace yon::platform {

namespace {

longlong counterFrequency() noexcept {
    static longlong const frequency = [] {
        LARGE_INTEGER f;
        QueryPerformanceFrequency(&f);
        return longlong{f.QuadPart};
    }();
    return frequency;
}

}  // namespace

longlong wallMicroseconds() noexcept {
    // The system counts tenths of a microsecond since 1601.
    constexpr longlong from1601To1970 = 11644473600 * 1000000;
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    ULARGE_INTEGER ticks;
    ticks.LowPart = now.dwLowDateTime;
    ticks.HighPart = now.dwHighDateTime;
    return static_cast<longlong>(ticks.QuadPart / 10) - from1601To1970;
}

longlong monotonicMicroseconds() noexcept {
    LARGE_INTEGER now;
    QueryPerformanceCounter(&now);
    longlong const frequency = counterFrequency();
    // Whole seconds apart, or the product would not fit.
    return now.QuadPart / frequency * 1000000 + now.QuadPart % frequency * 1000000 / frequency;
}

CalendarTime localTime(longlong seconds) noexcept {
    // The C library knows the years 1970 to 3000 only. The calendar, days of the week included, repeats after 400
    // years, so any other moment is read in the 400 years from 2370 on, and the years are put back.
    constexpr longlong day = 24 * 60 * 60;
    constexpr longlong cycle = 146097 * day;
    constexpr longlong year3000 = 376200 * day;
    longlong cycles = 0;
    // A zone west of UTC shows the first day of 1970 as 1969.
    if (seconds < day || seconds >= year3000) cycles = seconds / cycle - (seconds % cycle < 0) - 1;
    __time64_t const moment = seconds - cycles * cycle;
    std::tm t{};
    _localtime64_s(&t, &moment);
    return {t.tm_year + 1900 + cycles * 400, t.tm_mon + 1, t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec};
}

}  // namespace yon::platform
