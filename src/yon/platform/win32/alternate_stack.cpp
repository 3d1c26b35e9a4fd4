#include "yon/platform/alternate_stack.h"

#include <windows.h>

namespace yon::platform {

// Part of the thread's own stack is set aside, and goes with the thread.
AlternateStack::AlternateStack() noexcept {
    ULONG size = 64 << 10;
    ::SetThreadStackGuarantee(&size);
}

AlternateStack::~AlternateStack() = default;

}  // namespace yon::platform
