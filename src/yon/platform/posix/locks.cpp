#include "yon/platform/locks.h"

#include "yon/platform/posix/futex.h"

namespace yon::platform {

namespace {

// The states of a lock's word.
constexpr std::uintptr_t isFree = 0;
constexpr std::uintptr_t isHeld = 1;
constexpr std::uintptr_t isAwaited = 2;  ///< held, and somebody may be waiting for it

constexpr int spins = 100;  ///< longer than a lock is usually held, shorter than a change of threads

using Word = std::atomic_ref<std::uintptr_t>;

bool take(Word word) noexcept {
    std::uintptr_t expected = isFree;
    return word.compare_exchange_strong(expected, isHeld, std::memory_order_acquire, std::memory_order_relaxed);
}

[[gnu::noinline]] void waitForLock(std::uintptr_t & storage) noexcept {
    Word const word(storage);
    for (int i = 0; i < spins; ++i) {
        spinPause();
        if (word.load(std::memory_order_relaxed) == isFree && take(word)) return;
    }
    while (word.exchange(isAwaited, std::memory_order_acquire) != isFree) futexWait(&storage, isAwaited, nullptr);
}

}  // namespace

void lockWord(std::uintptr_t & storage) noexcept {
    if (!take(Word(storage))) waitForLock(storage);
}

bool tryLockWord(std::uintptr_t & storage) noexcept { return take(Word(storage)); }

void unlockWord(std::uintptr_t & storage) noexcept {
    if (Word(storage).exchange(isFree, std::memory_order_release) == isAwaited) futexWake(&storage, 1);
}

}  // namespace yon::platform
