#include "yon/platform/locks.h"

#include "yon/platform/posix/futex.h"

namespace yon::platform::detail {

namespace {

constexpr int spins = 40;  ///< longer than a lock is usually held, shorter than a change of threads

}  // namespace

[[gnu::cold]] void waitForLock(std::uintptr_t & storage) noexcept {
    std::atomic_ref const word(storage);
    for (int i = 0; i < spins; ++i) {
        spinPause();
        if (word.load(std::memory_order_relaxed) == isFree && tryLockWord(storage)) return;
    }
    while (word.exchange(isAwaited, std::memory_order_acquire) != isFree) futexWait(&storage, isAwaited, nullptr);
}

[[gnu::cold]] void wakeOne(std::uintptr_t & word) noexcept { futexWake(&word, 1); }

}  // namespace yon::platform::detail
