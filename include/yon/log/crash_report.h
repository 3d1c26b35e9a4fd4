// `CrashReport`: what a program that crashes leaves behind.
//
//     int main() {
//         yon::CrashReport::install();
#pragma once

#include "yon/base/config.h"
#include "yon/base/istr.h"

namespace yon {

/// Writes a report when the process ends by SIGSEGV, SIGBUS, SIGFPE, SIGILL or SIGABRT (on Windows by an unhandled
/// structured exception or `abort`), or by `std::terminate`: the reason, the time in UTC, the process and thread, the
/// exception that nobody caught, and the traced call stack of each thread, as pml. Then the cached lines of all
/// loggers go to their files, and what would have happened otherwise happens: the earlier handlers and the default
/// action, with the same exit status and core dump. Signals that the process ignores stay ignored.
///
/// The handler neither allocates nor waits for a lock for long; when it crashes itself the process ends at once. The
/// first of several threads that crash writes the report, the others wait. A stack overflow is reported for the
/// thread that has called `install` and for threads of the library.
///
/// The file is opened beforehand. It gets its name with the report and replaces an older one. A forked process
/// reports to the same name with "." and its process id behind it.
class YON_API CrashReport {
public:
    /// Safe in a signal handler: called with the signals of a crash blocked, perhaps on a small stack.
    using Hook = void (*)(void * arg) noexcept;

    /// Begins, or changes the file. The name is in UTF-8 or the code page, and relative to the present directory; an
    /// empty one means "<program>.<process id>.crash.pml" beside the file of the logger "YON", or in the present
    /// directory when that has none. Returns false when the file cannot be written: then the rest is done all the
    /// same. One thread at a time, early in `main`.
    static bool install(istr filename = {});
    /// Puts the earlier handlers back. The lines of loggers are saved as they are without a report. Called before the
    /// library is unloaded, by one thread at a time.
    static void uninstall() noexcept;

    /// Has a function called after the report and the lines of the log are written, before the process ends. The
    /// hooks stay for good, and are called in the order in which they were given, while this is installed. Returns
    /// false when there are 16 already. Callable from any thread.
    static bool onCrash(Hook hook, void * arg) noexcept;
};

}  // namespace yon
