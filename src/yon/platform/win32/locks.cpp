#include "yon/platform/locks.h"

#include <windows.h>

namespace yon::platform {

namespace {

static_assert(sizeof(SRWLOCK) == sizeof(std::uintptr_t) && alignof(SRWLOCK) <= alignof(std::uintptr_t));

SRWLOCK * lockOf(std::uintptr_t & word) noexcept { return reinterpret_cast<SRWLOCK *>(&word); }

}  // namespace

void lockWord(std::uintptr_t & word) noexcept { ::AcquireSRWLockExclusive(lockOf(word)); }

bool tryLockWord(std::uintptr_t & word) noexcept { return ::TryAcquireSRWLockExclusive(lockOf(word)) != FALSE; }

void unlockWord(std::uintptr_t & word) noexcept { ::ReleaseSRWLockExclusive(lockOf(word)); }

}  // namespace yon::platform
