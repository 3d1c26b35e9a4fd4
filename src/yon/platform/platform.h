// The seam between the library and the operating system: its whole contract. `posix/` and `win32/` hold one small
// file for each section, with nothing in it but what differs.
#pragma once

#include "yon/base/types.h"

namespace yon::platform {

// ---- Clocks. All may be called from any thread.

/// Microseconds since 1970-01-01 00:00 UTC by the clock that somebody may set.
longlong wallMicroseconds() noexcept;
/// Microseconds since some moment in the past, by a clock that nobody sets and that never goes back.
longlong monotonicMicroseconds() noexcept;

struct CalendarTime {
    longlong year;  ///< of the common era
    int month;      ///< 1 to 12
    int day;        ///< 1 to 31
    int hour;
    int minute;
    int second;
};

/// The local time, by the rules of the process's time zone, of a moment in seconds since 1970-01-01 00:00 UTC.
/// REQUIRES: a moment within the range of 64-bit microseconds.
CalendarTime localTime(longlong seconds) noexcept;

}  // namespace yon::platform
