#include "yon/platform/debugger.h"

#include <windows.h>

namespace yon::platform {

bool debuggerListens() noexcept { return ::IsDebuggerPresent() != FALSE; }
void tellDebugger(char const * text) noexcept { ::OutputDebugStringA(text); }

}  // namespace yon::platform
