#include "yon/base/exception.h"

#include <cstdlib>
#include <ostream>

#include "yon/base/location_text.h"
#include "yon/base/spin_lock.h"
#include "yon/platform/fork.h"

namespace yon {

namespace {

CallStack tracedCallStack() {
    CallStack s;
    diagnostics::callStack(s);
    return s;
}

// Guards the decorations of all exceptions while they are stored.
constinit SpinLock decorations;
void lockDecorations() noexcept { decorations.lock(); }
void unlockDecorations() noexcept { decorations.unlock(); }
[[maybe_unused]] bool const survivesFork =
    (platform::onFork(platform::ForkLayer::base, lockDecorations, unlockDecorations, unlockDecorations), true);

}  // namespace

constinit std::atomic<bool> nullHandleAbort{false};

ExceptionBase::ExceptionBase(char const * file, unsigned int line, char const * func, char const * msg)
    : std::logic_error(msg), info_(file, line, func), stack_(tracedCallStack()) {}

ExceptionBase::~ExceptionBase() = default;

std::ostream & operator<<(std::ostream & os, ExceptionBase const & e) {
    static constexpr char const * at = "\n        AT: ";
    static constexpr char const * separator = "\n            ";
    // The text is made without the stored decorations, which another thread may be changing by printing, too.
    std::string text = "{\n EXCEPTION: ";
    text += e.what();
    detail::appendLocation(text, e.info(), at);
    text += "\nCALL STACK: ";
    detail::appendCallStack(text, e.stack(), separator);
    text += "}\n";
    os.write(text.data(), static_cast<std::streamsize>(text.size()));

    SpinGuard const guard(decorations);
    e.info().prefix(at);
    e.stack().separator(separator);
    detail::decorateCallers(e.stack());
    return os;
}

char const * const Exception::name_ = "yon::Exception";
Exception::~Exception() = default;
std::string Exception::yon_name() const { return name_; }
void Exception::yon_print(std::ostream & os) const { os << static_cast<ExceptionBase const &>(*this); }
Exception * Exception::yon_clone() const { return detail::clone(*this, YON_HERE); }
void Exception::yon_throw() const { throw *this; }

std::ostream & operator<<(std::ostream & os, Exception const & e) {
    e.yon_print(os);
    return os;
}

YON_EXCEPTION_DEFINE(NullHandleException, "yon::NullHandleException")

NullHandleException::NullHandleException(char const * file, unsigned int line, char const * func)
    : Exception(file, line, func, name_) {
    if (nullHandleAbort) std::abort();
}

std::ostream & operator<<(std::ostream & os, std::exception const & e) {
    std::string const text = std::string("std::exception: ") + e.what();
    return os.write(text.data(), static_cast<std::streamsize>(text.size()));
}

}  // namespace yon
