#pragma once

#include <cstdint>

#include "yon/mt/cond.h"

namespace yon {

namespace detail {
class Deadline;
}

/// A lock that many may hold for reading or one for writing. A writer may take it again for writing, and then has to
/// release it as often; a reader that asks again while a writer waits blocks. Writers who wait go before new readers.
/// Any thread may use it, through `ReadLock`, `WriteLock` and their trying forms. All functions raise
/// `ThreadSyscallException` when the system fails.
class YON_API YON_CAPABILITY RWRecMutex {
public:
    RWRecMutex() = default;
    RWRecMutex(RWRecMutex const &) = delete;
    RWRecMutex & operator=(RWRecMutex const &) = delete;

    // The trying and the timed forms return whether they have the lock. Times pass by the monotonic clock and are
    // rounded up to the next millisecond.
    void readLock() const YON_ACQUIRE_SHARED();
    bool tryReadLock() const YON_TRY_ACQUIRE_SHARED(true);
    bool timedReadLock(Time const & time) const YON_TRY_ACQUIRE_SHARED(true);
    void writeLock() const YON_ACQUIRE();
    bool tryWriteLock() const YON_TRY_ACQUIRE(true);
    bool timedWriteLock(Time const & time) const YON_TRY_ACQUIRE(true);

    /// Releases a read lock or one level of the write lock. REQUIRES: the calling thread holds it.
    void unlock() const YON_RELEASE_GENERIC();

    /// Turns the caller's one read lock into the write lock. In between nobody else writes. Raises
    /// `DeadlockException` when another reader is about to upgrade: each would wait for the other.
    void upgrade() const YON_NO_THREAD_SAFETY_ANALYSIS;
    /// The same for a limited time; afterwards the caller still has its read lock. False at once when another reader
    /// is about to upgrade.
    bool timedUpgrade(Time const & time) const YON_NO_THREAD_SAFETY_ANALYSIS;
    /// Turns the write lock into a read lock; a writer that has taken it several times loses one level instead.
    void downgrade() const YON_NO_THREAD_SAFETY_ANALYSIS;

private:
    class WaitingWriter;
    using Guard = Lock<detail::SystemLock>;

    bool readable() const noexcept { return count_ >= 0 && waitingWriters_ == 0; }
    /// While an upgrader waits without its read lock, nobody else may write.
    bool writable(bool upgrader) const noexcept { return count_ == 0 && upgrading_ == upgrader; }
    bool writeAgain() const noexcept;
    void takeForWriting() const noexcept;
    bool await(Cond & cond, Guard const & guard, detail::Deadline const * deadline) const;
    bool waitToWrite(Guard const & guard, detail::Deadline const * deadline, bool upgrader) const;
    bool write(detail::Deadline const * deadline) const;
    bool upgrade(detail::Deadline const * deadline) const;
    void passOn() const;

    detail::SystemLock mutex_;             ///< guards what follows; held while the conditions are signalled
    mutable int count_ = 0;                ///< locks for reading; below 0: how often the writer has it
    mutable std::uintptr_t writer_ = 0;    ///< who has it while the count is below 0
    mutable unsigned waitingWriters_ = 0;  ///< an upgrader is one of them
    mutable bool upgrading_ = false;       ///< one thread has given up its read lock and will write next
    mutable Cond readers_;
    mutable Cond writers_;
    mutable Cond upgrader_;
};

}  // namespace yon
