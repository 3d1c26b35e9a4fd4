// The throw statement of the library: YON_THROW and YON_THROW_AT.
//
//     YON_THROW(OutOfRangeException);
//     YON_THROW(yon::InvalidDataException, "no digits");
//     YON_THROW_AT(YON_LOCATION("src/yon/log/log_dumper", 0, "yon::dumper::str"), UnsupportedFunctionException);
#pragma once

#include <concepts>
#include <type_traits>

#include "yon/base/exception.h"
#include "yon/base/here.h"

namespace yon::detail {

/// Tells the logging layer of a throw; returns the message "className: detail".
[[gnu::cold]] YON_API String reportThrow(diagnostics::Location const & where, char const * className, istr detail);

template <class X>
[[noreturn, gnu::cold, gnu::noinline]] void raise(diagnostics::Location const & where, char const * className,
                                                  istr detail) {
    String const message = reportThrow(where, className, detail);
    if constexpr (std::is_constructible_v<X, char const *, unsigned int, char const *, char const *>) {
        throw X(where.file, where.line, where.func, message.c_str());
    } else {
        throw X(where.file, where.line, where.func);
    }
}

template <class X>
[[noreturn]] void raise(diagnostics::Location const & where, char const * className) {
    raise<X>(where, className, istr(className));
}

/// For a class that keeps a code in place of a message.
template <class X, class Code>
requires(!std::convertible_to<Code const &, istr>)  //
    [[noreturn, gnu::cold, gnu::noinline]] void raise(diagnostics::Location const & where, char const * className,
                                                      Code const & code) {
    reportThrow(where, className, className);
    throw X(where.file, where.line, where.func, code);
}

}  // namespace yon::detail

/// YON_THROW(X), YON_THROW(X, detail): throws an `X` located here, after the logging layer was told. The message is
/// the class as it is spelled, ": " and the detail: any text, the spelled class when there is none. A class without a
/// message argument keeps its own message; one that takes a code gets the detail as its code.
#define YON_THROW(...) YON_THROW_AT(YON_HERE, __VA_ARGS__)

/// The same with a given location.
#define YON_THROW_AT(location, X, ...) (::yon::detail::raise<X>(location, #X __VA_OPT__(, ) __VA_ARGS__))
