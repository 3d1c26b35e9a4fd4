#include "yon/mt/rwrecmutex.h"

#include "yon/mt/deadline.h"
#include "yon/platform/locks.h"

namespace yon {

using detail::Deadline;

/// Counts a thread among those who wait to write, as long as it does.
class RWRecMutex::WaitingWriter {
public:
    explicit WaitingWriter(RWRecMutex const & mutex) noexcept : mutex_(mutex) { ++mutex_.waitingWriters_; }
    ~WaitingWriter() { --mutex_.waitingWriters_; }

private:
    RWRecMutex const & mutex_;
};

bool RWRecMutex::writeAgain() const noexcept {
    if (count_ >= 0 || writer_ != platform::threadToken()) return false;
    --count_;
    return true;
}

void RWRecMutex::takeForWriting() const noexcept {
    count_ = -1;
    writer_ = platform::threadToken();
}

/// Waits until the condition is signalled or the time is over; false when it was over before.
bool RWRecMutex::await(Cond & cond, Guard const & guard, Deadline const * deadline) const {
    if (deadline == nullptr) {
        cond.wait(guard);
        return true;
    }
    Time const left = deadline->left();
    if (left <= Time()) return false;
    cond.timedWait(guard, left);
    return true;
}

/// Wakes those who may have the lock now. Also called by who gives up waiting: it may have kept others from going.
void RWRecMutex::passOn() const {
    if (waitingWriters_ == 0) {
        if (count_ >= 0) readers_.broadcast();
    } else if (count_ == 0) {
        (upgrading_ ? upgrader_ : writers_).signal();
    }
}

void RWRecMutex::readLock() const {
    Guard const guard(mutex_);
    while (!readable()) readers_.wait(guard);
    ++count_;
}

bool RWRecMutex::tryReadLock() const {
    Guard const guard(mutex_);
    if (!readable()) return false;
    ++count_;
    return true;
}

bool RWRecMutex::timedReadLock(Time const & time) const {
    Deadline const deadline(time);
    Guard const guard(mutex_);
    while (!readable()) {
        if (!await(readers_, guard, &deadline)) return false;
    }
    ++count_;
    return true;
}

void RWRecMutex::writeLock() const { write(nullptr); }

bool RWRecMutex::tryWriteLock() const {
    Guard const guard(mutex_);
    if (writeAgain()) return true;
    if (!writable(false)) return false;
    takeForWriting();
    return true;
}

bool RWRecMutex::timedWriteLock(Time const & time) const {
    Deadline const deadline(time);
    return write(&deadline);
}

/// False when the time was over first: then an upgrader has its read lock again.
bool RWRecMutex::waitToWrite(Guard const & guard, Deadline const * deadline, bool upgrader) const {
    bool served = true;
    auto const giveUp = [&] {
        if (upgrader) ++count_;
        upgrading_ = upgrading_ && !upgrader;
        passOn();
    };
    try {
        while (served && !writable(upgrader)) {
            WaitingWriter const waiting(*this);
            served = await(upgrader ? upgrader_ : writers_, guard, deadline);
        }
    } catch (...) {
        giveUp();
        throw;
    }
    if (!served) {
        giveUp();
        return false;
    }
    upgrading_ = false;
    takeForWriting();
    return true;
}

bool RWRecMutex::write(Deadline const * deadline) const {
    Guard const guard(mutex_);
    return writeAgain() || waitToWrite(guard, deadline, false);
}

bool RWRecMutex::upgrade(Deadline const * deadline) const {
    Guard const guard(mutex_);
    if (upgrading_) return false;
    --count_;
    upgrading_ = true;
    return waitToWrite(guard, deadline, true);
}

void RWRecMutex::upgrade() const {
    if (upgrade(nullptr)) return;
    YON_THROW_AT(YON_LOCATION("src/yon/mt/rwrecmutex", 297, "yon::RWRecMutex::upgrade"), DeadlockException);
}

bool RWRecMutex::timedUpgrade(Time const & time) const {
    Deadline const deadline(time);
    return upgrade(&deadline);
}

void RWRecMutex::downgrade() const {
    Guard const guard(mutex_);
    if (++count_ != 0) return;
    count_ = 1;
    passOn();
}

void RWRecMutex::unlock() const {
    Guard const guard(mutex_);
    if (count_ >= 0) {
        --count_;
    } else if (++count_ != 0) {
        return;
    }
    passOn();
}

}  // namespace yon
