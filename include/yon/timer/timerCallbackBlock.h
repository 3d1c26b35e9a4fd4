#pragma once

#include "yon/timer/itimer_object.h"
#include "yon/timer/timer_id.h"

namespace yon {

/// One event for a callback object, queued for the callback thread. A plain value; the object is the caller's.
struct YON_API TimerCallbackBlock {
    enum class Type : ulong { fired, released };

    Type type = Type::fired;
    TimerId id;
    ITimerObject * object = nullptr;  ///< null: nothing is called
    ulong userTimerId = 0;
    void * param = nullptr;

    /// Calls the object; not for a fired timer while the process is closing. Lets nothing out: what the callback
    /// throws, and an event of an unknown type, is recorded. Returns whether the queue is to be told of the end.
    bool exec() const noexcept;
};

}  // namespace yon
