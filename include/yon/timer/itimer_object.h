#pragma once

#include "yon/base/config.h"
#include "yon/base/types.h"

namespace yon {

class dumper;

/// What is called by timers. All calls come on the one thread "timer.callback" and under no lock of the library; they
/// may set, reset and kill timers, and keep all other timers waiting as long as they run. What they throw is recorded
/// as an error.
///
/// The object belongs to the caller and must live until `onRelease`, which is the last call for a setting. A timer is
/// released when it has run out, is killed, or the service stops; a call of `onTimeout` that was due before may still
/// come ahead of `onRelease`. One object may serve several timers.
class YON_API ITimerObject {
public:
    virtual ~ITimerObject();
    /// The timer has fired: its id as two numbers, the caller's number for it and the caller's parameter.
    virtual void onTimeout(ulong serial, ulong position, ulong userTimerId, void * param) = 0;
    /// The timer is gone, and may be set anew.
    virtual void onRelease(ulong serial, ulong position, ulong userTimerId, void * param) = 0;
    /// Shows the object in dumps of its timer; writes nothing unless overridden. Comes on any thread, while a timer
    /// of the object is set, under no lock of the library. Must not wait for somebody who waits for a timer's
    /// release.
    virtual dumper & dump(dumper & d) const;
};

}  // namespace yon
