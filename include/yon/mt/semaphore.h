#pragma once

#include "yon/base/config.h"
#include "yon/base/time.h"

namespace yon {

/// A counting semaphore of the system, from 0 to 0x7fffffff. Any thread may use it. A count below 0 at the start
/// gives a semaphore whose use fails. Every failure raises `ThreadSyscallException` with the system's error number.
class YON_API Semaphore {
public:
    explicit Semaphore(int count = 0);
    Semaphore(Semaphore const &) = delete;
    Semaphore & operator=(Semaphore const &) = delete;
    ~Semaphore();

    /// Waits for a count and takes it.
    void wait() const;
    /// The same for a limited time, by the monotonic clock and rounded up to the next
    /// millisecond. False: it is over.
    bool timedWait(Time const & time) const;
    /// Adds `count`, 1 or more.
    void post(int count = 1) const;

private:
    mutable ulonglong semaphore_;
};

}  // namespace yon
