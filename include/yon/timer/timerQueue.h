#pragma once

#include <array>
#include <memory>
#include <vector>

#include "yon/mt/handle.h"
#include "yon/mt/monitor.h"
#include "yon/mt/thread_owner.h"
#include "yon/timer/timer_block.h"
#include "yon/timer/timer_callback_thread.h"

namespace yon {

class TimerRecords;
class TimerTable;
struct TimerSlot;

/// The heart of the timer service: 300 slots, the order in which they expire, and the thread that runs the callbacks.
/// Somebody else has to call `check` again and again. Programs use it through `TimerManager`.
///
/// Expiry is measured on the monotonic clock; a jump of the wall clock changes nothing. All functions may be called
/// from any thread; what they have to record is written after the queue's monitor is left. Objects belong to handles.
class YON_API TimerQueue : public Shared, public ThreadOwner, private noncopyable {
public:
    /// How often the owner is to check.
    static constexpr Time checkPeriod = Time::milliSeconds(50);

    /// Starts the callback thread. Serial numbers of settings go on after `serial`. Raises `ThreadSyscallException`.
    explicit TimerQueue(ulong serial = 0);
    ~TimerQueue() override;

    /// As in `TimerManager`; false once the queue is stopped.
    bool setTimer(TimerId & id, ulong userTimerId, ulong interval, ITimerObject * object, ulong times, void * param);
    bool resetTimer(TimerId id, ulong interval, ulong times);
    bool killTimer(TimerId id);
    bool killTimerAndWait(TimerId id);

    /// Fires what has expired; `now` is of the monotonic clock.
    void check(Time now);
    void check();
    /// Waits for `checkPeriod`, or until `endChecks`.
    void waitForCheck();
    void endChecks();

    /// Called by the callback thread after it has run a fired event.
    void onTimerEnd(TimerId id);

    /// Releases all timers, delivers their released events and ends the callback thread. Not on that thread.
    void stop();
    /// The greatest serial number given out.
    ulong serial() const;

    std::vector<TimerInfo> timers() const;
    dumper & dump(dumper & d) const;

    void onThreadExit(Thread * thread) override;

private:
    bool set(TimerId & id, ulong userTimerId, ulong interval, ITimerObject * object, ulong times, void * param,
             TimerRecords & records);
    bool reset(TimerId id, ulong interval, ulong times, TimerRecords & records);
    bool kill(TimerId id, TimerRecords & records);
    void release(TimerSlot & slot, TimerRecords & records);
    void freeIdAt(ulong p, TimerRecords & records);
    void doCheck(TimerRecords & records);
    void onTimer(TimerSlot & slot, TimerRecords & records);

    mutable Monitor monitor_;  ///< guards everything below
    std::unique_ptr<TimerTable> table_;
    std::unique_ptr<TimerSlot *[]> expired_;        ///< scratch of a check: the slots it found expired
    std::unique_ptr<TimerCallbackBlock[]> events_;  ///< and the events that it posts
    std::size_t eventCount_ = 0;
    Time currTime_;        ///< of the last check
    Time const lastTime_;  ///< of the construction
    bool running_ = true;
    bool checking_ = true;  ///< until `endChecks`

    Handle<TimerCallbackThread> const callbacks_;
};

}  // namespace yon
