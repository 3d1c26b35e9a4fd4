#pragma once

#include <ctime>

#include "yon/platform/platform.h"

namespace yon::platform {

/// A number that changes when the coarse value of the wall clock does, which is every few milliseconds. Inline, since
/// nothing but this takes time where threads look at themselves.
inline longlong wallTick() noexcept {
#ifdef CLOCK_REALTIME_COARSE
    timespec t;
    ::clock_gettime(CLOCK_REALTIME_COARSE, &t);
    return longlong{t.tv_sec} * 1000000000 + t.tv_nsec;
#else
    return wallMicroseconds() / 1000;
#endif
}

}  // namespace yon::platform
