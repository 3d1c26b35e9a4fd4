#include "yon/mt/cond.h"

#include <algorithm>

#include "yon/mt/deadline.h"
#include "yon/platform/locks.h"

namespace yon {

namespace {

/// Raises when a call of the system has failed.
void check(int result, unsigned int line, char const * function) {
    if (result == platform::done || result == platform::timedOut) return;
    YON_THROW_AT(YON_LOCATION("src/yon/mt/cond", line, function), ThreadSyscallException, result);
}

}  // namespace

Semaphore::Semaphore(int count) {
    check(platform::createSemaphore(semaphore_, count), 25, "yon::Semaphore::Semaphore");
}

Semaphore::~Semaphore() { platform::destroySemaphore(semaphore_); }

void Semaphore::wait() const { check(platform::waitSemaphore(semaphore_), 40, "yon::Semaphore::wait"); }

bool Semaphore::timedWait(Time const & time) const {
    detail::Deadline const deadline(time);
    for (;;) {
        unsigned const left = deadline.leftMilliseconds();
        int const result = platform::waitSemaphore(semaphore_, left);
        if (result == platform::timedOut && left != 0) continue;
        check(result, 50, "yon::Semaphore::timedWait");
        return result == platform::done;
    }
}

void Semaphore::post(int count) const {
    check(platform::postSemaphore(semaphore_, count), 61, "yon::Semaphore::post");
}

void Cond::raiseLocked(unsigned int line, char const * function) {
    YON_THROW_AT(YON_LOCATION("include/yon/mt/cond", line, function), ThreadLockedException);
}

void Cond::preWait() const {
    gate_.wait();
    waiting_.fetch_add(1, std::memory_order_relaxed);
    gate_.post();
}

/// Returns whether a wake-up was for this thread. Who was not woken, because his time was over or the wait has
/// failed, leaves the releases to those who wait on, as long as there are enough of them.
bool Cond::postWait(bool woken) const {
    int left = 0;
    {
        Lock const lock(internal_);
        int const others = waiting_.fetch_sub(1, std::memory_order_relaxed) - 1;
        if (!woken && toRelease_ <= others) return false;
        left = --toRelease_;
    }
    if (left != 0) {
        if (woken) queue_.post();
        return true;
    }
    // Nobody else is left who could have the count.
    if (!woken) queue_.wait();
    gate_.post();
    return true;
}

void Cond::dowait() const {
    try {
        queue_.wait();
    } catch (...) {
        postWait(false);
        throw;
    }
    postWait(true);
}

bool Cond::timedDowait(Time const & time) const {
    bool woken = false;
    try {
        woken = queue_.timedWait(time);
    } catch (...) {
        postWait(false);
        throw;
    }
    return postWait(woken);
}

void Cond::wake(bool all) {
    // Who holds the lock, or has held it since the condition changed, sees everybody who waits for the change.
    if (waiting_.load(std::memory_order_relaxed) == 0) return;
    gate_.wait();
    bool const any = [&] {
        Lock const lock(internal_);
        int const waiting = waiting_.load(std::memory_order_relaxed);
        toRelease_ = all ? waiting : std::min(waiting, 1);
        return waiting != 0;
    }();
    (any ? queue_ : gate_).post();
}

}  // namespace yon
