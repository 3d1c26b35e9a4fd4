// A lock for a few instructions that works before main and after exit.
#pragma once

#include <atomic>
#include <thread>

namespace yon {

/// Constant-initialised and trivially destroyed, so it needs no set-up and is never gone. Not recursive. Meets the
/// BasicLockable requirements. Hold it for a few instructions only, and call nothing under it that could wait.
class SpinLock {
public:
    void lock() noexcept {
        while (held_.exchange(true, std::memory_order_acquire)) {
            while (held_.load(std::memory_order_relaxed)) std::this_thread::yield();
        }
    }
    void unlock() noexcept { held_.store(false, std::memory_order_release); }

private:
    std::atomic<bool> held_{false};
};

}  // namespace yon
