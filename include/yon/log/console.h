// `console`: the console of the process, shared by log output and a command prompt.
#pragma once

#include "yon/base/istr.h"
#include "yon/base/string.h"

namespace yon {

/// Queues text for standard output and reads command lines without holding up the printing. All functions may be
/// called from any thread; they let nothing out.
///
/// Text is written by `flush()`, every 100 ms between `open()` and `close()` while the timer service runs, when more
/// than 1 MiB is pending, and at exit if the console is open. A terminal that blocks does not stop those who print.
class YON_API console {
public:
    /// Makes the console if it is missing, as every other function does.
    static void create() noexcept;
    /// Deletes it. The caller sees to it that nobody uses it.
    static void destroy() noexcept;

    /// Starts the timer service if need be, and writing every 100 ms.
    static void open() noexcept;
    static void close() noexcept;
    static void flush() noexcept;

    /// Queues text, `println` with a line feed. An attached debugger gets it at once.
    static void print(istr const & text) noexcept;
    static void println(istr const & text) noexcept;
    static void print(char const * text, ulong length) noexcept;
    static void println(char const * text, ulong length) noexcept;

    /// Polls for a command line: shows the prompt unless it is shown, and takes a line if one is ready; otherwise
    /// sleeps 100 ms and leaves `line` alone. Returns whether a line was taken.
    static bool readline(String & line, char const * prompt) noexcept;
    /// Whether standard input has ended.
    static bool atEnd() noexcept;
};

}  // namespace yon
