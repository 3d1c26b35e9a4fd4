// The port through which lower layers talk to the logging layer.
//
// Exceptions report to the log, the log needs timers, timers need threads, threads log: the layers below the log
// call the functions of this header, and the logging layer installs itself behind them when the library is loaded.
// Until then the port is silent and the stack is empty. All functions may be called from any thread at any time.
#pragma once

#include "yon/base/config.h"
#include "yon/base/istr.h"

namespace yon {

class CallStack;

namespace diagnostics {

/// The kind of a record.
enum class Level { data, debug, info, warning, error };

/// A source location as literals; `file` and `func` must live as long as the process.
struct Location {
    char const * file;
    unsigned int line;
    char const * func;
};

/// What the logging layer provides. One object for the life of the process; its functions may be called from any
/// thread, let nothing out, and are never called from within a report of the same thread.
class YON_API Sink {
public:
    virtual void exceptionThrown(Location const & where, istr message) noexcept = 0;
    virtual void record(Level level, istr tag, Location const & where, istr message) noexcept = 0;
    virtual bool categoryOn(istr category) noexcept = 0;
    virtual void enter(Location const & where) noexcept = 0;
    virtual void leave(Location const & where) noexcept = 0;
    /// The calling thread's traced call stack, outermost call first.
    virtual void callStack(CallStack & out) noexcept = 0;

protected:
    ~Sink() = default;
};

/// Puts a sink behind the port (null: silent again); returns the one before.
YON_API Sink * install(Sink * sink) noexcept;

/// Tells of a throw. Dropped when made while the same thread is reporting.
YON_API void exceptionThrown(Location const & where, istr message) noexcept;
/// Writes a record to the logger "YON". Dropped when made while the same thread is reporting.
YON_API void record(Level level, istr tag, Location const & where, istr message) noexcept;
/// Whether records of a debug category are wanted.
YON_API bool categoryOn(istr category) noexcept;
/// A traced function is entered and left.
YON_API void enter(Location const & where) noexcept;
YON_API void leave(Location const & where) noexcept;
/// Fills `out` with the calling thread's traced call stack.
YON_API void callStack(CallStack & out) noexcept;

}  // namespace diagnostics
}  // namespace yon
