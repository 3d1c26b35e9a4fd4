#include "yon/mt/cond.h"

#include <algorithm>
#include <utility>

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

/// Joins a group in which nobody is being released, or waits until there is one.
Cond::Group & Cond::preWait() const {
    for (;;) {
        {
            Lock const lock(internal_);
            if (young_->released != 0) young_ = older();
            if (young_->released == 0) {
                ++young_->waiting;
                idle_.fetch_add(1, std::memory_order_relaxed);
                return *young_;
            }
            ++outside_;
        }
        gate_.wait();
    }
}

/// Leaves the group; returns whether a wake-up was for this thread. Who was not woken, because his time was over or
/// the wait has failed, leaves the counts to the others, unless there is one for each.
bool Cond::postWait(Group & group, bool woken) const {
    if (!woken) {
        {
            Lock const lock(internal_);
            if (group.released < group.waiting) {
                --group.waiting;
                idle_.fetch_sub(1, std::memory_order_relaxed);
                return false;
            }
        }
        group.queue.wait();
    }
    int admitted = 0;
    {
        Lock const lock(internal_);
        --group.waiting;
        if (--group.released == 0) admitted = std::exchange(outside_, 0);
    }
    if (admitted != 0) gate_.post(admitted);
    return true;
}

void Cond::dowait(Group & group) const {
    try {
        group.queue.wait();
    } catch (...) {
        postWait(group, false);
        throw;
    }
    postWait(group, true);
}

bool Cond::timedDowait(Group & group, Time const & time) const {
    bool woken = false;
    try {
        woken = group.queue.timedWait(time);
    } catch (...) {
        postWait(group, false);
        throw;
    }
    return postWait(group, woken);
}

/// Releases up to `count` of those who wait in a group, and takes them off the count.
int Cond::release(Group & group, int & count) const {
    int const released = std::min(group.waiting - group.released, count);
    group.released += released;
    idle_.fetch_sub(released, std::memory_order_relaxed);
    count -= released;
    return released;
}

void Cond::wake(int count) {
    // Who holds the lock, or has held it since the condition changed, sees everybody who waits for the change.
    if (idle_.load(std::memory_order_relaxed) == 0) return;
    internal_.lock();
    Group & first = *older();
    Group & second = *young_;
    int const fromFirst = release(first, count);
    int const fromSecond = release(second, count);
    internal_.unlock();
    if (fromFirst != 0) first.queue.post(fromFirst);
    if (fromSecond != 0) second.queue.post(fromSecond);
}

}  // namespace yon
