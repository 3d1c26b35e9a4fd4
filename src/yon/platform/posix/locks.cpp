#include "yon/platform/locks.h"

#include "yon/platform/posix/futex.h"

namespace yon::platform::detail {

// No spinning: who has just been woken often runs on the processor of the one that has woken it and holds the lock.
[[gnu::cold]] void waitForLock(std::uintptr_t & word) noexcept {
    while (std::atomic_ref(word).exchange(isAwaited, std::memory_order_acquire) != isFree) {
        futexWait(&word, isAwaited, nullptr);
    }
}

[[gnu::cold]] void wakeOne(std::uintptr_t & word) noexcept { futexWake(&word, 1); }

}  // namespace yon::platform::detail
