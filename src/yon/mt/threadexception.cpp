#include "yon/mt/threadexception.h"

#include <ostream>

#include "yon/platform/platform.h"

namespace yon {

YON_EXCEPTION_DEFINE(ThreadSyscallException, "yon::ThreadSyscallException")
YON_EXCEPTION_DEFINE(ThreadLockedException, "yon::ThreadLockedException")
YON_EXCEPTION_DEFINE(ThreadStartedException, "yon::ThreadStartedException")
YON_EXCEPTION_DEFINE(ThreadNotStartedException, "yon::ThreadNotStartedException")
YON_EXCEPTION_DEFINE(DeadlockException, "yon::DeadlockException")

namespace {

constexpr char const * unknownError = "unknown thread error";

}  // namespace

ThreadSyscallException::ThreadSyscallException(char const * file, unsigned int line, char const * func, int error)
    : Exception(file, line, func, name_), error_(error) {}

String ThreadSyscallException::errorText() const {
    std::string const text = platform::failureText(error_);
    return text.empty() ? String(unknownError) : String(text);
}

void ThreadSyscallException::yon_print(std::ostream & os) const {
    Exception::yon_print(os);
    if (error_ == 0) return;
    os << ":\nthread syscall exception: ";
    std::string const text = platform::failureText(error_);
    // The address and not the text: that is how this exception has always printed.
    if (text.empty()) {
        os << unknownError;
    } else {
        os << static_cast<void const *>(text.c_str());
    }
}

ThreadLockedException::ThreadLockedException(char const * file, unsigned int line, char const * func)
    : Exception(file, line, func, name_) {}
ThreadStartedException::ThreadStartedException(char const * file, unsigned int line, char const * func)
    : Exception(file, line, func, name_) {}
ThreadNotStartedException::ThreadNotStartedException(char const * file, unsigned int line, char const * func)
    : Exception(file, line, func, name_) {}
DeadlockException::DeadlockException(char const * file, unsigned int line, char const * func)
    : Exception(file, line, func, name_) {}

}  // namespace yon
