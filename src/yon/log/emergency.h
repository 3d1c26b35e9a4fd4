// What is left to do for the log in a process that crashes.
#pragma once

namespace yon {

/// Writes the cached lines of all loggers to their files, with direct calls of the system and without memory. Waits
/// a tenth of a second at most for each lock that somebody holds, perhaps the thread that has crashed; those caches
/// come last, as they stand. Callable from a signal handler.
void emergencyFlush() noexcept;

/// Has the lines written when the process crashes, also without a crash report: then as far as the program has no
/// handler of its own for the signal. Called when a file gets its name, by any thread.
void saveLinesInCrashes() noexcept;
/// The process ends, or the library goes.
void endSavingLines() noexcept;

}  // namespace yon
