#pragma once

#include <atomic>

#include "yon/mt/rec_mutex.h"

namespace yon {

/// A mutex, recursive like `RecMutex`, for static objects of any kind: its storage is plain, and what it needs is
/// made by its first use and lives as long as the process. Making it may raise `std::bad_alloc`.
class YON_API YON_CAPABILITY StaticMutex {
public:
    constexpr StaticMutex() noexcept = default;
    StaticMutex(StaticMutex const &) = delete;
    StaticMutex & operator=(StaticMutex const &) = delete;

    void initialize() const;
    void lock() const YON_ACQUIRE() { section().lock(); }
    bool tryLock() const YON_TRY_ACQUIRE(true) { return section().tryLock(); }
    /// REQUIRES: the calling thread holds it.
    void unlock() const noexcept YON_RELEASE() { section_.load(std::memory_order_relaxed)->unlock(); }

private:
    friend class Cond;
    using LockState = RecMutex::LockState;
    void unlock(LockState & state) const noexcept YON_RELEASE() { section().unlock(state); }
    void lock(LockState const & state) const noexcept YON_ACQUIRE() { section().lock(state); }

    RecMutex const & section() const {
        if (section_.load(std::memory_order_acquire) == nullptr) initialize();
        return *section_.load(std::memory_order_acquire);
    }

    mutable std::atomic<RecMutex *> section_{nullptr};
};

/// One for everybody.
extern YON_API StaticMutex globalMutex;

}  // namespace yon
