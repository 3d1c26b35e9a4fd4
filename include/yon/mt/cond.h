#pragma once

#include <atomic>
#include <type_traits>

#include "yon/base/throw.h"
#include "yon/mt/lock.h"
#include "yon/mt/rec_mutex.h"
#include "yon/mt/semaphore.h"
#include "yon/mt/threadexception.h"

namespace yon {

/// A condition variable: threads wait, through a guard of the lock under which the condition changes, until another
/// thread signals. A signal releases exactly one of the threads that were waiting, a broadcast all of them; who comes
/// later does not take their place. A wait may also end without a signal, so test the condition again. Any thread may
/// use it, with or without the lock. Failures of the system raise `ThreadSyscallException`.
class YON_API Cond {
public:
    Cond() = default;
    Cond(Cond const &) = delete;
    Cond & operator=(Cond const &) = delete;

    void signal() { wake(false); }
    void broadcast() { wake(true); }

    /// Releases the lock, waits, and takes the lock again, also when it raises; a lock that was taken several times
    /// is released altogether. Raises `ThreadLockedException` when the guard does not hold its lock.
    template <class Guard>
    void wait(Guard const & guard) {
        if (!guard.acquired()) raiseLocked(90, "yon::Cond::wait");
        preWait();
        Released const released(guard.mutex());
        dowait();
    }
    /// The same for a limited time, by the monotonic clock and rounded up to the next millisecond. False: it has
    /// passed without a signal for this thread.
    template <class Guard>
    bool timedWait(Guard const & guard, Time const & time) {
        if (!guard.acquired()) raiseLocked(107, "yon::Cond::timedWait");
        preWait();
        Released const released(guard.mutex());
        return timedDowait(time);
    }

private:
    template <class M>
    struct StateOf {
        struct type {};
    };
    template <class M>
    requires requires { typename M::LockState; }
    struct StateOf<M> {
        using type = typename M::LockState;
    };

    /// Releases a lock as often as it is held, and takes it again at the end.
    template <class M>
    class Released {
        static constexpr bool counts = requires { typename M::LockState; };

    public:
        explicit Released(M const & mutex) : mutex_(mutex) {
            if constexpr (counts) {
                mutex.unlock(state_);
            } else {
                mutex.unlock();
            }
        }
        ~Released() {
            if constexpr (counts) {
                mutex_.lock(state_);
            } else {
                mutex_.lock();
            }
        }

    private:
        M const & mutex_;
        typename StateOf<M>::type state_;
    };

    [[noreturn]] static void raiseLocked(unsigned int line, char const * function);
    void preWait() const;
    bool postWait(bool woken) const;
    void dowait() const;
    bool timedDowait(Time const & time) const;
    void wake(bool all);

    // At most one count stands in the queue, and the gate is closed, from a wake-up until the last thread that it
    // releases has left. Who leaves the queue with the count passes it on; the last one opens the gate instead.
    detail::SystemLock internal_;
    Semaphore gate_{1};   ///< closed while threads are being released, so that nobody else can join them
    Semaphore queue_{0};  ///< where they wait
    mutable std::atomic<int> waiting_{0};  ///< those who have come and not left; grows behind the gate
    mutable int toRelease_ = 0;            ///< those of them who are still to be released; guarded by internal_
};

}  // namespace yon
