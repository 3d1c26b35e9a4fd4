// `PatientGuard`: holds a lock, but does not wait for ever while the process ends.
#pragma once

#include <atomic>
#include <chrono>
#include <thread>

#include "yon/mt/rec_mutex.h"
#include "yon/platform/process_end.h"

namespace yon {

/// Set when the process, or the library, is about to go. From then on lines are written at once.
inline constinit std::atomic<bool> logIsEnding{false};

/// Waits for a lock a little while. Callable from a signal handler.
inline bool tryLockFor(detail::SystemLock & lock, std::chrono::milliseconds patience) noexcept {
    for (auto left = patience.count(); !lock.tryLock(); --left) {
        if (left <= 0) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

/// Holds a lock if `owns()`: at the end of the process the owner of a lock may be gone for good, so the wait has an
/// end then.
class PatientGuard {
public:
    explicit PatientGuard(detail::SystemLock & lock) noexcept : PatientGuard(lock, [] { return false; }) {}
    /// Does without the lock when the work has been done by somebody else meanwhile.
    template <class Done>
    PatientGuard(detail::SystemLock & lock, Done done) noexcept : lock_(lock), owns_(lock.tryLock() || wait(done)) {}
    PatientGuard(PatientGuard const &) = delete;
    PatientGuard & operator=(PatientGuard const &) = delete;
    ~PatientGuard() {
        if (owns_) lock_.unlock();
    }

    bool owns() const noexcept { return owns_; }

private:
    /// The locks of the log are held for some microseconds, while sleeping and waking take longer: others get the
    /// processor a few times first.
    static constexpr int yields = 20;

    template <class Done>
    [[gnu::noinline]] bool wait(Done done) noexcept {
        if (platform::othersAreGone()) return false;
        for (int i = 0; i < yields; ++i) {
            std::this_thread::yield();
            if (done()) return false;
            if (lock_.tryLock()) return true;
        }
        if (logIsEnding.load(std::memory_order_relaxed)) return tryLockFor(lock_, std::chrono::seconds(5));
        lock_.lock();
        return true;
    }

    detail::SystemLock & lock_;
    bool const owns_;
};

}  // namespace yon
