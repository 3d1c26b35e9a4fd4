// `CrashWriter`: writes pml from within a crash handler.
#pragma once

#include <cstddef>

#include "yon/base/diagnostics.h"
#include "yon/base/types.h"

namespace yon {

/// Writes a tree of nodes in the simple layout through a function. Neither allocates nor locks, and keeps what it
/// writes in a buffer of its own up to `flush`. Names and types are free words; values are escaped. Null texts are
/// empty.
class CrashWriter {
public:
    using Output = void (*)(char const * data, std::size_t size) noexcept;

    constexpr explicit CrashWriter(Output output) noexcept : output_(output) {}
    CrashWriter(CrashWriter const &) = delete;
    CrashWriter & operator=(CrashWriter const &) = delete;

    /// Opens a node that holds nodes.
    void open(char const * name, char const * type = "") noexcept;
    void close() noexcept;

    /// A node with a text.
    void text(char const * name, char const * value, char const * type = "") noexcept;
    void number(char const * name, ulonglong value) noexcept;
    /// A number as "0x" and hexadecimal digits.
    void hex(char const * name, ulonglong value) noexcept;
    /// A moment in microseconds since 1970 as a date-time in UTC.
    void time(char const * name, longlong microseconds) noexcept;
    /// A node with "func(file:line)".
    void call(diagnostics::Location const & where, char const * name = "", char const * type = "call") noexcept;

    void flush() noexcept;

private:
    void begin(char const * name, char const * type) noexcept;
    void put(char c) noexcept;
    void put(char const * s) noexcept;
    void escaped(char const * s) noexcept;
    void digits(ulonglong value, unsigned base = 10, unsigned width = 1) noexcept;

    Output output_;
    unsigned depth_ = 0;
    std::size_t used_ = 0;
    char buffer_[2048] = {};
};

}  // namespace yon
