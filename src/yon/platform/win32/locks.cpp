#include "yon/platform/locks.h"

#include <windows.h>

#include <atomic>

#include "yon/platform/process_end.h"

namespace yon::platform {

namespace {

static_assert(sizeof(SRWLOCK) == sizeof(std::uintptr_t) && alignof(SRWLOCK) <= alignof(std::uintptr_t));

/// Set before the library's exit hooks run in a process that ends: the system has taken all other threads away. One
/// of them may have been within the system's own queue of waiting threads, so nobody must be woken any more.
constinit std::atomic<bool> alone{false};

void WINAPI watchProcess(PVOID, DWORD reason, PVOID) {
    if (reason == DLL_PROCESS_DETACH && othersAreGone()) alone.store(true, std::memory_order_relaxed);
}

SRWLOCK * lockOf(std::uintptr_t & word) noexcept { return reinterpret_cast<SRWLOCK *>(&word); }

}  // namespace

// The loader calls what stands in this section before the entry point of the library.
extern "C" __attribute__((section(".CRT$XLY"), used)) PIMAGE_TLS_CALLBACK const yonProcessCallback = watchProcess;

void lockWord(std::uintptr_t & word) noexcept {
    // A holder that is gone gives nothing back.
    if (alone.load(std::memory_order_relaxed)) {
        tryLockWord(word);
    } else {
        ::AcquireSRWLockExclusive(lockOf(word));
    }
}

bool tryLockWord(std::uintptr_t & word) noexcept { return ::TryAcquireSRWLockExclusive(lockOf(word)) != FALSE; }

void unlockWord(std::uintptr_t & word) noexcept {
    if (alone.load(std::memory_order_relaxed)) {
        word = 0;
    } else {
        ::ReleaseSRWLockExclusive(lockOf(word));
    }
}

}  // namespace yon::platform
