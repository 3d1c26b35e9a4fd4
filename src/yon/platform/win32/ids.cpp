#include <windows.h>

#include "yon/platform/locks.h"

namespace yon::platform {

unsigned currentThreadId() noexcept { return ::GetCurrentThreadId(); }

unsigned currentProcessId() noexcept { return ::GetCurrentProcessId(); }

std::uintptr_t threadToken() noexcept { return ::GetCurrentThreadId(); }

}  // namespace yon::platform
