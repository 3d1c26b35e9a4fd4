// The seam for crashes: how the system tells of them, and what still works then.
#pragma once

#include <cstddef>
#include <string>

#include "yon/base/types.h"

namespace yon::platform {

// --- the end of the process ---

/// Why the process ends.
struct CrashCause {
    char const * name;  ///< "SIGSEGV", "EXCEPTION_ACCESS_VIOLATION"; empty where the code has no name
    unsigned code;      ///< the number of the signal, or the code of the exception
    bool located;       ///< whether `address` means anything
    std::size_t address;  ///< what was accessed, or where the fault is
};

/// Returns whether the earlier handlers are to be called before the process ends.
using CrashHandler = bool (*)(CrashCause const & cause) noexcept;

/// Calls the handler in the thread that crashes, perhaps in several threads at once, and then lets happen what would
/// have happened without it: the earlier handlers and the default action of the system, with its exit status and core
/// dump. A crash within the handler ends the process at once or calls it again. What the process ignores stays ignored.
/// The handler may call what is safe in a signal handler only.
void watchCrashes(CrashHandler handler) noexcept;
/// Puts back what was there before, as far as nobody else has put something in its place.
void unwatchCrashes() noexcept;

/// Pauses the calling thread. Safe in a signal handler.
void pauseInCrash(unsigned milliseconds) noexcept;

// --- the file of the report ---

/// A file that is opened beforehand, so that only writing is left to do, and that gets its name with the first text
/// that is written; it then replaces an older one. Where the system has no such files it is made in that moment. One
/// for the process, constant-initialised and never destroyed; `write` and `abandon` are safe in a signal handler. Not
/// inherited by child processes.
class CrashFile {
public:
    /// The name stays the caller's. Returns 0, or the system's error if the file could not be written now.
    int prepare(char const * name) noexcept;
    /// Whether it could be opened and everything was written so far.
    bool write(char const * data, std::size_t size) noexcept;
    /// Closes the file, which vanishes if nothing was written.
    void abandon() noexcept;
    /// For a forked process: leaves the file to the parent and makes one of this name when it is needed.
    void rename(char const * name) noexcept;

private:
    void appear() noexcept;

    char const * name_ = nullptr;
    bool visible_ = false;
    std::intptr_t handle_ = -1;
};

// --- the program ---

/// The file of the running program, with its directory where the system knows it.
std::string programPath();

}  // namespace yon::platform
