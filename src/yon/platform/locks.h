// The seam for locks, semaphores, handles and the ids of threads and processes. Nothing in here raises.
#pragma once

#include <cstdint>

#include "yon/base/types.h"

namespace yon::platform {

// --- locks: one word, free when it is 0, with nothing to set up or to destroy; not recursive ---

bool tryLockWord(std::uintptr_t & word) noexcept;
void lockWord(std::uintptr_t & word) noexcept;
/// Does not touch the word any more once another thread can have the lock, so the lock's next owner may destroy it.
void unlockWord(std::uintptr_t & word) noexcept;

// --- counting semaphores, in 64 bits of storage ---

/// The error number of a call that has succeeded, and what a wait gives whose time has run out.
inline constexpr int done = 0;
inline constexpr int timedOut = -1;

/// Makes a semaphore that counts to 0x7fffffff. Fails only where the system gives its value for an invalid handle;
/// in place of one that it refuses otherwise there is a semaphore whose use fails.
int createSemaphore(ulonglong & semaphore, int count) noexcept;
void destroySemaphore(ulonglong & semaphore) noexcept;
/// All return `done` or the system's error number.
int postSemaphore(ulonglong & semaphore, int count) noexcept;
int waitSemaphore(ulonglong & semaphore) noexcept;
/// Waits about so long; may come back with `timedOut` early.
int waitSemaphore(ulonglong & semaphore, unsigned milliseconds) noexcept;

// --- handles ---

/// What a handle points to where the system has none that would fit.
class HandleObject {
public:
    virtual ~HandleObject() = default;
};

/// Closes a handle of the system, or deletes the `HandleObject` that stands for one.
void closeHandle(void * handle) noexcept;

// --- ids ---

unsigned currentThreadId() noexcept;
unsigned currentProcessId() noexcept;

/// Tells the threads that run apart, is never 0, and stays what it is when the process forks.
std::uintptr_t threadToken() noexcept;

}  // namespace yon::platform

#if !defined(_WIN32)
#include "yon/platform/posix/fast_locks.h"
#endif
