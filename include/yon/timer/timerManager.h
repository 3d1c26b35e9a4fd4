// `TimerManager`: the timer service of the process.
//
//     yon::TimerManager::instance()->start();
//     yon::TimerId id;
//     yon::TimerManager::instance()->setTimer(id, 1, 500, &object, 0, nullptr);  // every 500 ms without end
#pragma once

#include <atomic>
#include <iosfwd>
#include <new>
#include <vector>

#include "yon/mt/noncopyable.h"
#include "yon/mt/owned_thread.h"
#include "yon/timer/timerQueue.h"

namespace yon {

template <class T>
class Singleton_T;

/// Up to 300 timers at once, set, reset and killed from any thread, callbacks included. A thread checks every 50 ms
/// what has expired, another one runs the callbacks. Intervals count from the last check, so the first shot comes up
/// to 50 ms earlier or later than the interval after `setTimer`; a period is never shorter than the interval, and
/// what a late check has missed is not caught up: there is at most one shot a check. Time is measured on the
/// monotonic clock.
///
/// The one instance is made on first use and lives until `stop()`. A call that comes while or after another thread
/// stops it is refused like one before `start()`. A process may end with timers running.
class YON_API TimerManager : private noncopyable, public ThreadOwner {
public:
    ~TimerManager() override;

    /// Sets a timer and fills in its id: it calls `object->onTimeout` with `userTimerId` and `param` every `interval`
    /// ms, `times` times, without end for 0, and at last `object->onRelease`. Refused (false) with 300 timers set,
    /// and while the service does not run. Raises `std::bad_alloc`.
    virtual bool setTimer(TimerId & id, ulong userTimerId, ulong interval, ITimerObject * object, ulong times,
                          void * param);
    /// Begins anew with another interval and count; also a timer that has fired for the last time and is not released
    /// yet. False when it is gone.
    virtual bool resetTimer(TimerId id, ulong interval, ulong times);
    /// Ends a timer. Events that are due already and then `onRelease` still come. False when it is gone.
    virtual bool killTimer(TimerId id);
    /// Drops the handle of the checking thread when that one ends.
    void onThreadExit(Thread * thread) override;

    /// The same, and returns after `onRelease`: no callback comes for this id, also when it had ended before, so the
    /// object may go. The caller holds no lock that callbacks take. Called by a callback it does not wait: it
    /// delivers `onRelease` itself, and drops the events that are due.
    bool killTimerAndWait(TimerId id);

    /// Makes the instance if there is none. The pointer is the calling thread's own copy.
    static TimerManager *& instance();
    /// Starts the service, with the library's own timers; nothing when it runs. Returns 0. Raises
    /// `ThreadSyscallException` when there are no threads to be had.
    long start();
    /// Releases all timers, returns after their last callback, and destroys the instance; the next `instance()` is a
    /// fresh one. The caller holds no lock that callbacks take. In a callback it raises `Exception`, for it would
    /// wait for itself.
    void stop();

    /// All timers that are set, as they stand at one moment: the armed ones as they expire, then the paused ones.
    std::vector<TimerInfo> timers() const;

    dumper & dump(dumper & d) const;
    std::ostream & dump(std::ostream & os) const;

    /// Stops the service and lays the object to rest, still whole, for threads that hold its pointer.
    void operator delete(TimerManager * manager, std::destroying_delete_t) noexcept;

private:
    friend class Singleton_T<TimerManager>;
    TimerManager();

    void shutDown();
    Handle<TimerQueue> queue() const;
    bool waitForCheck();
    void check();
    void endChecks();

    RecMutex life_;                  ///< held while the service starts or stops
    RecMutex mutex_;                 ///< guards the handles
    Handle<TimerQueue> timerQueue_;  ///< empty unless running
    Handle<OwnedThread<TimerManager>> timeoutThread_;
    std::atomic<bool> running_{false};
    bool stopped_ = false;            ///< for good; under `life_`
    TimerQueue * checked_ = nullptr;  ///< what the checking thread checks as long as it runs
};

}  // namespace yon
