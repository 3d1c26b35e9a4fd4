#include <sched.h>

#include <cerrno>
#include <climits>

#include "yon/platform/locks.h"
#include "yon/platform/posix/futex.h"

namespace yon::platform {

namespace {

// A semaphore's storage is its count in the low half and the number of threads that wait for it in the high one.
using Word = std::atomic_ref<ulonglong>;
constexpr ulonglong oneWaiter = 1ull << 32;
constexpr ulonglong invalid = 1ull << 31;  ///< a count that cannot be

// Sleeping and waking take longer than a count that is about to come: others get the processor a few times first.
constexpr int spins = 10;
constexpr int yields = 4;

ulonglong countOf(ulonglong state) noexcept { return state % oneWaiter; }

/// Takes a count if there is one, and `waiters` from the number of those who wait.
bool take(Word word, ulonglong waiters) noexcept {
    ulonglong state = word.load(std::memory_order_relaxed);
    while (countOf(state) != 0) {
        if (word.compare_exchange_weak(state, state - 1 - waiters, std::memory_order_acquire,
                                       std::memory_order_relaxed)) {
            return true;
        }
    }
    return false;
}

[[gnu::noinline]] int waitForCount(ulonglong & semaphore, timespec const * time) noexcept {
    Word const word(semaphore);
    for (int i = 0; i < spins + yields; ++i) {
        i < spins ? spinPause() : static_cast<void>(::sched_yield());
        if (take(word, 0)) return done;
    }
    word.fetch_add(oneWaiter, std::memory_order_relaxed);
    for (;;) {
        int const error = futexWait(&semaphore, 0, time) == 0 ? done : errno;
        if (take(word, oneWaiter)) return done;
        // What has interrupted a wait with a limit has also shortened it: the caller knows how much is left.
        if (error == ETIMEDOUT || (error == EINTR && time != nullptr)) break;
    }
    word.fetch_sub(oneWaiter, std::memory_order_relaxed);
    return timedOut;
}

int waitSemaphore(ulonglong & semaphore, timespec const * time) noexcept {
    if (countOf(Word(semaphore).load(std::memory_order_relaxed)) == invalid) return EINVAL;
    if (take(Word(semaphore), 0)) return done;
    return time != nullptr && time->tv_sec == 0 && time->tv_nsec == 0 ? timedOut : waitForCount(semaphore, time);
}

}  // namespace

int createSemaphore(ulonglong & semaphore, int count) noexcept {
    semaphore = count < 0 ? invalid : static_cast<ulonglong>(count);
    return done;
}

void destroySemaphore(ulonglong &) noexcept {}

int postSemaphore(ulonglong & semaphore, int count) noexcept {
    Word const word(semaphore);
    ulonglong state = word.load(std::memory_order_relaxed);
    do {
        if (count <= 0 || countOf(state) == invalid) return EINVAL;
        if (countOf(state) + static_cast<ulonglong>(count) > INT_MAX) return EOVERFLOW;
    } while (!word.compare_exchange_weak(state, state + static_cast<ulonglong>(count), std::memory_order_release,
                                         std::memory_order_relaxed));
    if (state >= oneWaiter) futexWake(&semaphore, count);
    return done;
}

int waitSemaphore(ulonglong & semaphore) noexcept { return waitSemaphore(semaphore, nullptr); }

int waitSemaphore(ulonglong & semaphore, unsigned milliseconds) noexcept {
    timespec const time{milliseconds / 1000, static_cast<long>(milliseconds % 1000) * 1000000};
    return waitSemaphore(semaphore, &time);
}

}  // namespace yon::platform
