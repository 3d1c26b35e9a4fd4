// The seam for crashes: how the system tells of them, and what still works then. Nothing in here raises but
// `programPath`.
#pragma once

#include <cstddef>
#include <string>

namespace yon::platform {

/// Why the process ends.
struct CrashCause {
    char const * name;    ///< "SIGSEGV", "EXCEPTION_ACCESS_VIOLATION"; empty where the code has no name
    unsigned code;        ///< the number of the signal, or the code of the exception
    bool located;         ///< whether `address` means anything
    std::size_t address;  ///< what was accessed, or where the fault is
    unsigned thread;      ///< which crashes; not always the one that calls the handler
};

/// Returns whether the earlier handlers are to be called before the process ends.
using CrashHandler = bool (*)(CrashCause const & cause) noexcept;

/// Calls the handler when a thread crashes, perhaps for several threads at once, and then lets happen what would have
/// happened without it: the earlier handlers and the default action of the system, with its exit status and core
/// dump. A crash within the handler ends the process or calls it again. What the process ignores stays ignored. The
/// handler calls only what is safe in a signal handler. One thread at a time.
void watchCrashes(CrashHandler handler) noexcept;
/// The same where nobody else has anything to do when a thread crashes, and for signals that nobody else handles yet;
/// not for threads that have used up their stack. Nothing when crashes are watched already.
void watchUnclaimedCrashes(CrashHandler handler) noexcept;
/// Puts back what was there before, as far as nobody else has put something in its place.
void unwatchCrashes() noexcept;

/// Pauses the calling thread. Safe in a signal handler.
void pauseInCrash(unsigned milliseconds) noexcept;

/// Opens the file for the report beforehand, so that only writing is left to do. It gets its name with the first text
/// and then replaces an older one; until then it vanishes with the process. Where the system has no such files it is
/// made with the first text. Names are in UTF-8 or, where they are no UTF-8, in the system's code page; relative ones
/// are relative to the present directory. Not inherited by child processes. Returns 0, or the system's error if the
/// file could not be written now. One thread at a time.
int prepareCrashFile(std::string const & name) noexcept;
/// Returns whether all was written. Safe in a signal handler.
bool writeCrashFile(char const * data, std::size_t size) noexcept;
/// Closes the file.
void closeCrashFile() noexcept;
/// In a forked process: leaves the file to the parent. A file of its own has the name with "." and the process id
/// behind it. Safe in a signal handler.
void leaveCrashFile() noexcept;

/// The file of the running program, with its directory where the system knows it.
std::string programPath();

}  // namespace yon::platform
