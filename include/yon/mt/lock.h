// The guards of locks: they lock in the constructor, unlock in the destructor, and know whether they hold the lock.
//
//     yon::Lock lock(mutex);                       // RecMutex, StaticMutex, Monitor, mt::map, mt::set
//     yon::TryReadLock lock(rwMutex, time);        // RWRecMutex; without a time it does not wait
//     if (lock.acquired()) …
#pragma once

#include <utility>

#include "yon/base/time.h"
#include "yon/mt/thread_safety.h"

namespace yon {

namespace detail {

struct Exclusive {
    static void lock(auto & m) YON_NO_THREAD_SAFETY_ANALYSIS { m.lock(); }
    static bool tryLock(auto & m) YON_NO_THREAD_SAFETY_ANALYSIS { return m.tryLock(); }
};
struct Reading {
    static void lock(auto & m) YON_NO_THREAD_SAFETY_ANALYSIS { m.readLock(); }
    static bool tryLock(auto & m) YON_NO_THREAD_SAFETY_ANALYSIS { return m.tryReadLock(); }
    static bool tryLock(auto & m, Time const & t) YON_NO_THREAD_SAFETY_ANALYSIS { return m.timedReadLock(t); }
};
struct Writing {
    static void lock(auto & m) YON_NO_THREAD_SAFETY_ANALYSIS { m.writeLock(); }
    static bool tryLock(auto & m) YON_NO_THREAD_SAFETY_ANALYSIS { return m.tryWriteLock(); }
    static bool tryLock(auto & m, Time const & t) YON_NO_THREAD_SAFETY_ANALYSIS { return m.timedWriteLock(t); }
};

/// What all guards have. A guard is used by the thread that made it. Only where unlocking can raise may the
/// destructor.
template <class M, class Mode>
class Guard {
    static constexpr bool quiet = noexcept(std::declval<M const &>().unlock());

public:
    Guard(Guard const &) = delete;
    Guard & operator=(Guard const &) = delete;

    /// Whether this guard holds the lock.
    bool acquired() const noexcept { return acquired_; }
    /// Waits for the lock; nothing when the guard holds it.
    void acquire() YON_NO_THREAD_SAFETY_ANALYSIS {
        if (acquired_) return;
        Mode::lock(mutex_);
        acquired_ = true;
    }
    /// Takes the lock if that needs no wait, or no longer one than given where there is a time. Returns `acquired()`.
    bool tryAcquire(auto const &... time) YON_NO_THREAD_SAFETY_ANALYSIS {
        return acquired_ = acquired_ || Mode::tryLock(mutex_, time...);
    }
    /// Lets go of the lock early; nothing when the guard does not hold it.
    void release() noexcept(quiet) YON_NO_THREAD_SAFETY_ANALYSIS {
        if (!acquired_) return;
        acquired_ = false;
        mutex_.unlock();
    }
    M const & mutex() const noexcept { return mutex_; }

protected:
    explicit Guard(M const & mutex) noexcept : mutex_(mutex) {}
    ~Guard() noexcept(quiet) { release(); }

private:
    M const & mutex_;
    bool acquired_ = false;
};

}  // namespace detail

/// Takes a lock and releases it at the end.
template <class M>
class YON_SCOPED_CAPABILITY Lock : public detail::Guard<M, detail::Exclusive> {
public:
    explicit Lock(M const & mutex) YON_ACQUIRE(mutex) YON_NO_THREAD_SAFETY_ANALYSIS : Lock::Guard(mutex) {
        this->acquire();
    }
    ~Lock() YON_RELEASE() {}
};

/// Takes a lock if it is free; ask `acquired()`.
template <class M>
class TryLock : public detail::Guard<M, detail::Exclusive> {
public:
    explicit TryLock(M const & mutex) : TryLock::Guard(mutex) { this->tryAcquire(); }
};

/// Reads under a `RWRecMutex`. An upgrade turns the guard's lock into one for writing.
template <class M>
class YON_SCOPED_CAPABILITY ReadLock : public detail::Guard<M, detail::Reading> {
public:
    explicit ReadLock(M const & mutex) YON_ACQUIRE_SHARED(mutex) YON_NO_THREAD_SAFETY_ANALYSIS
        : ReadLock::Guard(mutex) {
        this->acquire();
    }
    ~ReadLock() YON_RELEASE_GENERIC() {}
};

/// Reads under a `RWRecMutex` if that needs no wait, or none longer than a given time; ask `acquired()`.
template <class M>
class TryReadLock : public detail::Guard<M, detail::Reading> {
public:
    explicit TryReadLock(M const & mutex) : TryReadLock::Guard(mutex) { this->tryAcquire(); }
    TryReadLock(M const & mutex, Time const & time) : TryReadLock::Guard(mutex) { this->tryAcquire(time); }
};

/// Writes under a `RWRecMutex`.
template <class M>
class YON_SCOPED_CAPABILITY WriteLock : public detail::Guard<M, detail::Writing> {
public:
    explicit WriteLock(M const & mutex) YON_ACQUIRE(mutex) YON_NO_THREAD_SAFETY_ANALYSIS : WriteLock::Guard(mutex) {
        this->acquire();
    }
    ~WriteLock() YON_RELEASE() {}
};

/// Writes under a `RWRecMutex` if that needs no wait, or none longer than a given time; ask `acquired()`.
template <class M>
class TryWriteLock : public detail::Guard<M, detail::Writing> {
public:
    explicit TryWriteLock(M const & mutex) : TryWriteLock::Guard(mutex) { this->tryAcquire(); }
    TryWriteLock(M const & mutex, Time const & time) : TryWriteLock::Guard(mutex) { this->tryAcquire(time); }
};

}  // namespace yon
