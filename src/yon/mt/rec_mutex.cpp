#include "yon/mt/rec_mutex.h"

#include "yon/platform/locks.h"

namespace yon {

namespace detail {

void SystemLock::lock() const noexcept { platform::lockWord(word_); }
bool SystemLock::tryLock() const noexcept { return platform::tryLockWord(word_); }
void SystemLock::unlock() const noexcept { platform::unlockWord(word_); }

}  // namespace detail

// Nobody but the owner finds its own mark, which it has set itself: nothing has to be ordered.

bool RecMutex::lockAgain(std::uintptr_t me) const noexcept {
    if (owner_.load(std::memory_order_relaxed) != me) return false;
    ++count_;
    return true;
}

void RecMutex::own(std::uintptr_t me, int count) const noexcept {
    owner_.store(me, std::memory_order_relaxed);
    count_ = count;
}

void RecMutex::lock() const noexcept {
    std::uintptr_t const me = platform::threadToken();
    if (lockAgain(me)) return;
    lock_.lock();
    own(me, 1);
}

bool RecMutex::tryLock() const noexcept {
    std::uintptr_t const me = platform::threadToken();
    if (lockAgain(me)) return true;
    if (!lock_.tryLock()) return false;
    own(me, 1);
    return true;
}

void RecMutex::unlock() const noexcept {
    if (--count_ != 0) return;
    owner_.store(0, std::memory_order_relaxed);
    lock_.unlock();
}

void RecMutex::unlock(LockState & state) const noexcept {
    state.count = count_;
    own(0, 0);
    lock_.unlock();
}

void RecMutex::lock(LockState const & state) const noexcept {
    lock_.lock();
    own(platform::threadToken(), state.count);
}

}  // namespace yon
