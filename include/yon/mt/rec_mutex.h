#pragma once

#include <atomic>
#include <cstdint>

#include "yon/base/config.h"
#include "yon/mt/thread_safety.h"

namespace yon {

namespace detail {

/// The system's critical section: not recursive. Constant-initialised, with nothing to destroy: static objects may
/// use it before main and after exit. Whoever gets it may destroy it, even before `unlock` of the last owner returns.
class YON_API YON_CAPABILITY SystemLock {
public:
    constexpr SystemLock() noexcept = default;
    SystemLock(SystemLock const &) = delete;
    SystemLock & operator=(SystemLock const &) = delete;

    void lock() const noexcept YON_ACQUIRE();
    bool tryLock() const noexcept YON_TRY_ACQUIRE(true);
    void unlock() const noexcept YON_RELEASE();

private:
    mutable std::uintptr_t word_ = 0;
};

}  // namespace detail

/// A mutex that its owner may take again, and then has to release as often. Made of the system's lock and, like it,
/// good for static objects. Raises nothing. Locking it does not count as changing the object that it is part of. Use
/// it through `Lock` and `TryLock`.
class YON_API YON_CAPABILITY RecMutex {
public:
    constexpr RecMutex() noexcept = default;
    RecMutex(RecMutex const &) = delete;
    RecMutex & operator=(RecMutex const &) = delete;

    void lock() const noexcept YON_ACQUIRE();
    bool tryLock() const noexcept YON_TRY_ACQUIRE(true);
    /// REQUIRES: the calling thread holds it; so does `willUnlock`.
    void unlock() const noexcept YON_RELEASE();
    /// Whether the next `unlock` frees it.
    bool willUnlock() const noexcept { return count_ == 1; }

private:
    friend class Cond;
    friend class StaticMutex;

    /// How often the owner holds it, kept while a wait has released it altogether.
    struct LockState {
        int count = 0;
    };
    void unlock(LockState & state) const noexcept YON_RELEASE();
    void lock(LockState const & state) const noexcept YON_ACQUIRE();

    bool lockAgain(std::uintptr_t me) const noexcept;
    void own(std::uintptr_t me, int count) const noexcept;

    detail::SystemLock lock_;
    mutable std::atomic<std::uintptr_t> owner_{0};
    mutable int count_ = 0;
};

}  // namespace yon
