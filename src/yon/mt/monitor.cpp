#include "yon/mt/monitor.h"

#include <utility>

namespace yon {

namespace {

/// The monitor's own mutex as the guard that a condition asks for.
struct Held {
    RecMutex const & mutex_;
    bool acquired() const noexcept { return true; }
    RecMutex const & mutex() const noexcept { return mutex_; }
};

}  // namespace

void Monitor::lock() const noexcept {
    mutex_.lock();
    if (mutex_.willUnlock()) pending_ = 0;
}

bool Monitor::tryLock() const noexcept {
    if (!mutex_.tryLock()) return false;
    if (mutex_.willUnlock()) pending_ = 0;
    return true;
}

void Monitor::unlock() const {
    struct AtEnd {
        RecMutex const & mutex;
        ~AtEnd() { mutex.unlock(); }
    } const release{mutex_};
    if (mutex_.willUnlock()) deliver();
}

void Monitor::notify() const noexcept {
    if (pending_ != toAll) ++pending_;
}

void Monitor::notifyAll() const noexcept { pending_ = toAll; }

void Monitor::wait() const {
    deliver();
    cond_.wait(Held{mutex_});
    pending_ = 0;
}

bool Monitor::timedWait(Time const & time) const {
    deliver();
    bool const woken = cond_.timedWait(Held{mutex_}, time);
    pending_ = 0;
    return woken;
}

void Monitor::deliver() const {
    int const pending = std::exchange(pending_, 0);
    if (pending == toAll) cond_.broadcast();
    for (int i = 0; i < pending; ++i) cond_.signal();
}

}  // namespace yon
