// The exceptions of threads and locks. Each knows its name, and can be kept and raised again in another thread.
#pragma once

#include "yon/base/exception.h"

namespace yon {

/// A call of the operating system failed.
class YON_API ThreadSyscallException : public Exception {
public:
    ThreadSyscallException(char const * file, unsigned int line, char const * func, int error);

    /// The error number of the operating system.
    int error() const noexcept { return error_; }
    /// The operating system's text for it; "unknown thread error" when it has none.
    String errorText() const;

    /// Writes the exception text and, for an error other than 0, ":\nthread syscall exception: " and the address of
    /// the system's message, or "unknown thread error". The text itself is given by `errorText()`.
    void yon_print(std::ostream & os) const override;
    YON_EXCEPTION_DECLARE

private:
    int error_;
};

/// A wait on a condition through a guard that does not hold its lock.
class YON_API ThreadLockedException : public Exception {
public:
    ThreadLockedException(char const * file, unsigned int line, char const * func);
    YON_EXCEPTION_DECLARE
};

/// A thread is started twice.
class YON_API ThreadStartedException : public Exception {
public:
    ThreadStartedException(char const * file, unsigned int line, char const * func);
    YON_EXCEPTION_DECLARE
};

/// A thread that has not been started has no id and no control.
class YON_API ThreadNotStartedException : public Exception {
public:
    ThreadNotStartedException(char const * file, unsigned int line, char const * func);
    YON_EXCEPTION_DECLARE
};

/// Two threads would wait for each other for ever.
class YON_API DeadlockException : public Exception {
public:
    DeadlockException(char const * file, unsigned int line, char const * func);
    YON_EXCEPTION_DECLARE
};

}  // namespace yon
