// What is short enough to stand in its caller. Included at the end of "yon/platform/locks.h".
#pragma once

#include <atomic>
#include <cstdint>

namespace yon::platform {

namespace detail {

// The states of a lock's word.
inline constexpr std::uintptr_t isFree = 0;
inline constexpr std::uintptr_t isHeld = 1;
inline constexpr std::uintptr_t isAwaited = 2;  ///< held, and somebody may be waiting for it

void waitForLock(std::uintptr_t & word) noexcept;
void wakeOne(std::uintptr_t & word) noexcept;

}  // namespace detail

inline bool tryLockWord(std::uintptr_t & word) noexcept {
    std::uintptr_t expected = detail::isFree;
    return std::atomic_ref(word).compare_exchange_strong(expected, detail::isHeld, std::memory_order_acquire,
                                                         std::memory_order_relaxed);
}

inline void lockWord(std::uintptr_t & word) noexcept {
    if (!tryLockWord(word)) detail::waitForLock(word);
}

inline void unlockWord(std::uintptr_t & word) noexcept {
    if (std::atomic_ref(word).exchange(detail::isFree, std::memory_order_release) == detail::isAwaited) {
        detail::wakeOne(word);
    }
}

/// The address of what the system keeps for the thread.
inline std::uintptr_t threadToken() noexcept { return reinterpret_cast<std::uintptr_t>(__builtin_thread_pointer()); }

}  // namespace yon::platform
