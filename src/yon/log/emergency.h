// What is left to do for the log in a process that crashes.
#pragma once

namespace yon {

/// Writes the cached lines of all loggers to their files, with direct calls of the system and without memory. Waits
/// a tenth of a second at most for each lock that somebody holds, and leaves out what it does not get. Callable from
/// a signal handler.
void emergencyFlush() noexcept;

}  // namespace yon
