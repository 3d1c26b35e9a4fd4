#include "yon/platform/posix/libc_lock.h"

#include <cstdint>

#include "yon/platform/fork.h"
#include "yon/platform/locks.h"

namespace yon::platform {

namespace {

constinit std::uintptr_t word = 0;

void lock() noexcept { lockWord(word); }
void unlock() noexcept { unlockWord(word); }
[[maybe_unused]] bool const survivesFork = (onFork(ForkLayer::base, lock, unlock, unlock), true);

}  // namespace

LibcLock::LibcLock() noexcept { lock(); }
LibcLock::~LibcLock() { unlock(); }

}  // namespace yon::platform
