// The exception family of the library.
//
// Every exception carries its message, the location where it was raised and a copy of the raising thread's traced
// call stack, and prints them in one layout:
//
//     {
//      EXCEPTION: yon::OutOfRangeException: yon::OutOfRangeException
//             AT: yon::CharAt(chars.cpp:120)
//     CALL STACK: yon::Parser::parse(parser.cpp:88)
//                 yon::run(app.cpp:12)}
//
// Files and functions are literals, messages must not be null. Exceptions are values; two threads may print the same
// one at the same time.
#pragma once

#include <atomic>
#include <stdexcept>

#include "yon/base/call_stack.h"
#include "yon/base/located_new.h"

namespace yon {

/// The root of the family.
struct YON_API ExceptionBase : public std::logic_error {
    ExceptionBase(char const * file, unsigned int line, char const * func, char const * msg);
    ExceptionBase(ExceptionBase const &) = default;
    ExceptionBase & operator=(ExceptionBase const &) = default;
    ~ExceptionBase() override;

    char const * file() const noexcept { return info_.file(); }
    unsigned int line() const noexcept { return info_.line(); }
    char const * func() const noexcept { return info_.func(); }
    char const * msg() const noexcept { return what(); }
    Current const & info() const noexcept { return info_; }
    CallStack const & stack() const noexcept { return stack_; }

private:
    Current info_;
    CallStack stack_;
};

/// Writes the text above. The decorations that it needs stay with the exception.
YON_API std::ostream & operator<<(std::ostream & os, ExceptionBase const & e);

/// An index or a value outside what is allowed.
struct YON_API OutOfRangeException : public ExceptionBase {
    using ExceptionBase::ExceptionBase;
};
/// Data is needed and there is none.
struct YON_API EmptyDataException : public ExceptionBase {
    using ExceptionBase::ExceptionBase;
};
/// Data that does not mean anything.
struct YON_API InvalidDataException : public ExceptionBase {
    using ExceptionBase::ExceptionBase;
};
/// The object cannot do this.
struct YON_API UnsupportedFunctionException : public ExceptionBase {
    using ExceptionBase::ExceptionBase;
};
/// Not written yet.
struct YON_API ToBeDoneException : public ExceptionBase {
    using ExceptionBase::ExceptionBase;
};
/// A pointer must not be null.
struct YON_API NullPointerException : public ExceptionBase {
    using ExceptionBase::ExceptionBase;
};
/// A unit of this name is there already.
struct YON_API DuplicatedUnitException : public ExceptionBase {
    using ExceptionBase::ExceptionBase;
};

/// Bytes that no binary stream can have written.
struct YON_API BinaryDecodeException : public ExceptionBase {
    using ExceptionBase::ExceptionBase;
};

namespace nbr {

/// Bytes that are no nbr value.
struct YON_API DecodeException : public ExceptionBase {
    using ExceptionBase::ExceptionBase;
};

}  // namespace nbr

/// What a class derived from `Exception` declares in its public part to be kept and raised again with its own type.
/// In the source file YON_EXCEPTION_DEFINE(X, "yon::X") defines it.
#define YON_EXCEPTION_DECLARE                      \
    static char const * const name_;               \
    std::string yon_name() const override;         \
    ::yon::Exception * yon_clone() const override; \
    [[noreturn]] void yon_throw() const override;

#define YON_EXCEPTION_DEFINE(X, name)                                                         \
    char const * const X::name_ = name;                                                       \
    std::string X::yon_name() const { return name_; }                                         \
    ::yon::Exception * X::yon_clone() const { return ::yon::detail::clone(*this, YON_HERE); } \
    void X::yon_throw() const { throw *this; }

/// An exception that knows its name and can be kept and raised again in another thread.
class YON_API Exception : public ExceptionBase {
public:
    using ExceptionBase::ExceptionBase;
    ~Exception() override;

    char const * yon_file() const noexcept { return file(); }
    unsigned int yon_line() const noexcept { return line(); }
    char const * yon_func() const noexcept { return func(); }

    static char const * const name_;
    /// The name of the object's class.
    virtual std::string yon_name() const;
    /// Writes the exception text.
    virtual void yon_print(std::ostream & os) const;
    /// A copy with the same class, for the caller to YON_DELETE; null when the memory is used up.
    virtual Exception * yon_clone() const;
    /// Throws a copy with the same class.
    [[noreturn]] virtual void yon_throw() const;
};

/// Writes with the object's own `yon_print`.
YON_API std::ostream & operator<<(std::ostream & os, Exception const & e);

/// While true, making a `NullHandleException` aborts the process, so that a debugging run stops at the faulty spot.
extern YON_API std::atomic<bool> nullHandleAbort;

/// A handle without an object was used.
class YON_API NullHandleException : public Exception {
public:
    NullHandleException(char const * file, unsigned int line, char const * func);
    YON_EXCEPTION_DECLARE
};

/// Writes "std::exception: " and `what()`.
YON_API std::ostream & operator<<(std::ostream & os, std::exception const & e);

namespace detail {

template <class X>
Exception * clone(X const & e, diagnostics::Location const & where) {
    try {
        return LocatedNew<X>{where}(e);
    } catch (std::bad_alloc const &) {
        return nullptr;
    }
}

}  // namespace detail

}  // namespace yon
