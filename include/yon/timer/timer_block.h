// What the timer service knows of a timer: `TimerInfo` for programs, `TimerBlock` and `TimeoutBlock` for its dumps.
#pragma once

#include "yon/base/time.h"
#include "yon/timer/itimer_object.h"
#include "yon/timer/timer_id.h"

namespace yon {

/// So many timers can be set at once.
inline constexpr ulong maxTimers = 300;

enum class TimerStatus : ulong {
    idle,   ///< free
    busy,   ///< armed
    paused  ///< fired for the last time, to be released once its callback has run
};

/// "IDLE", "BUSY", "PAUSED"; "UNKNOWN" for any other value.
YON_API char const * timerStatusName(TimerStatus status) noexcept;

/// A timer that is set, at the moment of a snapshot.
struct TimerInfo {
    TimerId id;
    ulong userTimerId = 0;
    Time remaining;  ///< until it fires, not below 0; 0 for a paused one
    Time interval;
    ulong times = 0;  ///< callbacks to come, 0: without end
    TimerStatus status = TimerStatus::idle;

    YON_API dumper & dump(dumper & d) const;
};

/// One slot of the timer table. Times are of the monotonic clock.
struct TimerBlock {
    TimerId id;             ///< the position stays
    ulong m_statusPos = 0;  ///< where `m_idStatus` of the queue holds this position
    Time m_expiredTime;     ///< when it fires next
    Time m_nInterval;
    ulong m_unTimes = 1;                              ///< callbacks to come, 0: without end
    ITimerObject * m_pCallBackTimerObject = nullptr;  ///< null in a free slot
    ulong m_nUserTimerID = 0;
    void * m_pParam = nullptr;
    TimerStatus m_status = TimerStatus::idle;

    YON_API dumper & dump(dumper & d) const;
};

/// An entry of the expiry queue.
struct TimeoutBlock {
    Time m_expiredTime;  ///< of the wall clock
    TimerId m_nTimerID;
    TimerBlock const * m_tb = nullptr;

    YON_API dumper & dump(dumper & d) const;
};

}  // namespace yon
