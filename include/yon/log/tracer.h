// The call-stack tracer: which traced functions a thread is in.
//
//     void Parser::parse() {
//         YON_TRACE(log);
#pragma once

#include <iosfwd>
#include <string>

#include "yon/base/call_stack.h"
#include "yon/base/config.h"

namespace yon {

class dumper;
class logger;

/// The traced call stacks of all threads; each call concerns the calling thread's. A fixed mirror of each stack
/// (pointers to the literals) is kept where a crash handler can read it without a lock.
class YON_API tracer {
public:
    /// The one tracer, made on first use. After `destroy` the next call makes a new one.
    static tracer *& instance();
    /// Deletes the stacks of all threads, too. The caller sees to it that no other thread uses its own meanwhile.
    static void destroy();

    CallStack & callStack();
    CallStack const & callStack() const;
    stack<Current> & container() { return callStack().container(); }
    stack<Current> const & container() const { return callStack().container(); }

    /// The three must be literals.
    void push(char const * file, unsigned line, char const * func);
    /// Nothing when the stack is empty.
    void pop() noexcept;

    tracer const & separator(char const * text) const;
    istr separator() const;

    /// Top first, joined by the separator. Prints a copy: the entries' own decorations stay as they are.
    std::ostream & dump(std::ostream & os) const;
    dumper & dump(dumper & d) const;

    /// For a thread that ends.
    void destroy_current_stack() noexcept;
};

/// Writes the calling thread's stack.
YON_API void printTraceStack(std::ostream & os);

/// Keeps a location on the calling thread's stack for as long as it lives, and writes a line on entry and one on exit
/// when the logger's trace switch is on. Made and destroyed in one thread, in the order of scopes.
class YON_API TraceEntry {
public:
    enum LogType : unsigned { none = 0, entry = 1, exit = 2, both = 3 };

    /// The location must be literals; a null info is empty.
    TraceEntry(logger & log, char const * file, unsigned line, char const * func, LogType type, char const * info);
    TraceEntry(TraceEntry const &) = delete;
    TraceEntry & operator=(TraceEntry const &) = delete;
    ~TraceEntry();

    LogType & logType() noexcept { return type_; }
    LogType logType() const noexcept { return type_; }
    void addType(LogType bits) noexcept { type_ = static_cast<LogType>(type_ | bits); }
    std::string & info() noexcept { return info_; }
    std::string const & info() const noexcept { return info_; }

    /// Appends 4 * `depth` times `c`.
    static void indentString(std::string & s, unsigned long depth, char c);

private:
    void writeLog(bool isEntry, char const * func, char fill, unsigned long depth) noexcept;

    logger & log_;
    LogType type_;
    std::string info_;
};

}  // namespace yon
