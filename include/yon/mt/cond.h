#pragma once

#include <atomic>
#include <limits>
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

    void signal() { wake(1); }
    void broadcast() { wake(std::numeric_limits<int>::max()); }

    /// Releases the lock, waits, and takes the lock again, also when it raises; a lock that was taken several times
    /// is released altogether. Raises `ThreadLockedException` when the guard does not hold its lock.
    template <class Guard>
    void wait(Guard const & guard) {
        if (!guard.acquired()) raiseLocked(90, "yon::Cond::wait");
        Group & group = preWait();
        Released<std::remove_cvref_t<decltype(guard.mutex())>> const released(guard.mutex());
        dowait(group);
    }
    /// The same for a limited time, by the monotonic clock and rounded up to the next millisecond. False: it has
    /// passed without a signal for this thread.
    template <class Guard>
    bool timedWait(Guard const & guard, Time const & time) {
        if (!guard.acquired()) raiseLocked(107, "yon::Cond::timedWait");
        Group & group = preWait();
        Released<std::remove_cvref_t<decltype(guard.mutex())>> const released(guard.mutex());
        return timedDowait(group, time);
    }

private:
    /// Releases a lock, and takes it again at the end.
    template <class M>
    struct Released {
        explicit Released(M const & m) : mutex(m) { m.unlock(); }
        ~Released() { mutex.lock(); }
        M const & mutex;
    };
    /// The same for one that may be held several times.
    template <class M>
    requires requires { typename M::LockState; }
    struct Released<M> {
        explicit Released(M const & m) : mutex(m) { m.unlock(state); }
        ~Released() { mutex.lock(state); }
        M const & mutex;
        typename M::LockState state;
    };

    [[noreturn]] static void raiseLocked(unsigned int line, char const * function);

    // Nobody joins a group while threads of it are being released, so what stands in its queue is for those who were
    // waiting. Newcomers join the other group then, and wait at the gate while both are being released.
    struct Group {
        Semaphore queue{0};  ///< where its threads wait
        int waiting = 0;     ///< those who have joined it and not left
        int released = 0;    ///< those of them for whom a count stands in the queue
    };

    Group & preWait() const;
    bool postWait(Group & group, bool woken) const;
    void dowait(Group & group) const;
    bool timedDowait(Group & group, Time const & time) const;
    int release(Group & group, int & count) const;
    void wake(int count);
    Group * older() const noexcept { return young_ == &groups_[0] ? &groups_[1] : &groups_[0]; }

    detail::SystemLock internal_;  ///< guards what follows; no wait with it held
    mutable Group groups_[2];
    mutable Group * young_ = &groups_[0];  ///< who joined last is in it: its turn comes after the older one's
    Semaphore gate_{0};
    mutable int outside_ = 0;           ///< those who wait at the gate
    mutable std::atomic<int> idle_{0};  ///< those who wait and are not being released; may be read without the lock
};

}  // namespace yon
