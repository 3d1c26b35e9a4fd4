// The seam for debuggers.
#pragma once

namespace yon::platform {

/// Whether a debugger is attached that takes texts from the process. Never on POSIX, whose debuggers take none.
bool debuggerListens() noexcept;
/// Gives it a NUL-terminated text.
void tellDebugger(char const * text) noexcept;

}  // namespace yon::platform
