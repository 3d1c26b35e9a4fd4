#pragma once

#include "yon/mt/cond.h"

namespace yon {

/// A mutex with one condition, on which its owner waits and notifies. Notifications are kept until the mutex is
/// released altogether, or its owner waits: then each wakes one waiting thread, and one to all wakes all. The mutex
/// may be taken again by its owner. Any thread may use it; hold it through `Lock` and `TryLock`. Releasing and
/// waiting raise `ThreadSyscallException` when the system fails, and release all the same.
class YON_API YON_CAPABILITY Monitor {
public:
    Monitor() = default;
    Monitor(Monitor const &) = delete;
    Monitor & operator=(Monitor const &) = delete;

    void lock() const noexcept YON_ACQUIRE();
    bool tryLock() const noexcept YON_TRY_ACQUIRE(true);
    /// REQUIRES: the calling thread holds the monitor; so do the functions that follow.
    void unlock() const YON_RELEASE();

    void notify() const noexcept YON_REQUIRES(this);
    void notifyAll() const noexcept YON_REQUIRES(this);
    /// Waits for a notification, with the monitor released altogether.
    void wait() const YON_REQUIRES(this);
    /// The same for a limited time, by the monotonic clock and rounded up to the next millisecond. False: it is over.
    bool timedWait(Time const & time) const YON_REQUIRES(this);

private:
    static constexpr int toAll = -1;

    /// Sends what has been notified; afterwards nothing is pending.
    void deliver() const;

    RecMutex mutex_;
    mutable Cond cond_;
    mutable int pending_ = 0;
};

}  // namespace yon
