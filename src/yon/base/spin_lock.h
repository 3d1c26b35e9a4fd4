// A lock for a few instructions that works before main and after exit.
#pragma once

#include <atomic>
#include <thread>

#include "yon/platform/process_end.h"

namespace yon {

/// Constant-initialised and trivially destroyed, so it needs no set-up and is never gone. Not recursive. Hold it for
/// a few instructions only, and call nothing under it that could wait.
class SpinLock {
public:
    /// Returns false when nobody will ever release the lock, because the process ends and the owner is gone.
    bool lock() noexcept {
        while (held_.exchange(true, std::memory_order_acquire)) {
            while (held_.load(std::memory_order_relaxed)) {
                if (platform::othersAreGone()) return false;
                std::this_thread::yield();
            }
        }
        return true;
    }
    void unlock() noexcept { held_.store(false, std::memory_order_release); }

private:
    std::atomic<bool> held_{false};
};

/// Holds a spin lock if `owns()`; otherwise what the lock guards is lost.
class SpinGuard {
public:
    explicit SpinGuard(SpinLock & lock) noexcept : lock_(lock), owns_(lock.lock()) {}
    SpinGuard(SpinGuard const &) = delete;
    SpinGuard & operator=(SpinGuard const &) = delete;
    ~SpinGuard() {
        if (owns_) lock_.unlock();
    }
    bool owns() const noexcept { return owns_; }

private:
    SpinLock & lock_;
    bool const owns_;
};

}  // namespace yon
