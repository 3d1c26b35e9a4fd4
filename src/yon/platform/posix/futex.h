#pragma once

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <bit>
#include <cstdint>
#include <ctime>

namespace yon::platform {

/// The half of a 64-bit word that the system looks at: the low one.
inline std::uint32_t * futexOf(void * word) noexcept {
    static_assert(std::endian::native == std::endian::little);
    return static_cast<std::uint32_t *>(word);
}

/// Waits while the low half of the word is `value`; -1 with `errno` like the system call. The time, if any, is
/// relative and passes by the monotonic clock.
inline long futexWait(void * word, std::uint32_t value, timespec const * time) noexcept {
    return ::syscall(SYS_futex, futexOf(word), FUTEX_WAIT_PRIVATE, value, time, nullptr, 0);
}

inline void futexWake(void * word, int threads) noexcept {
    ::syscall(SYS_futex, futexOf(word), FUTEX_WAKE_PRIVATE, threads, nullptr, nullptr, 0);
}

/// Tells the processor that the caller is spinning.
inline void spinPause() noexcept {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#endif
}

}  // namespace yon::platform
