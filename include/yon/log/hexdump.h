// Bytes in hexadecimal, in one line or as a table with sixteen bytes a row, through manipulator objects:
//
//     os << yon::write_hex(data, size);              01 02 FF
//     os << yon::dump_hex<yon::show_printable>(s);   offsets, byte columns and the text
//     d << yon::hexdata(bytes);                      the table, or one line when the dumper is compact
//
// All show at most 256 bytes and tell the length when they cut, and leave the stream decimal, lower case and filled
// with blanks. They own nothing: the bytes must outlive them.
#pragma once

#include <iosfwd>

#include "yon/base/config.h"
#include "yon/base/istr.h"

namespace yon {

class dumper;

namespace detail {

/// The bytes that a manipulator shows.
class hex_source {
public:
    explicit hex_source(istr data) noexcept : data_(data) {}
    hex_source(std::nullptr_t, unsigned long) noexcept {}
    hex_source(unsigned char const * data, unsigned long size) noexcept : data_(data, length(size)) {}
    hex_source(char const * data, unsigned long size) noexcept : data_(data, length(size)) {}

protected:
    static ulong length(unsigned long n) noexcept { return n == npos ? npos : toLength(n); }

    istr data_;
};

}  // namespace detail

/// One line of byte pairs with a blank between them.
class YON_API write_hex : public detail::hex_source {
public:
    using hex_source::hex_source;
    std::ostream & operator()(std::ostream & os) const;
    dumper & operator()(dumper & d) const;
};

/// The table without its text column, which derived classes write.
class YON_API dump_hex_base : public detail::hex_source {
public:
    using hex_source::hex_source;
    dump_hex_base(dump_hex_base const &) = default;
    dump_hex_base & operator=(dump_hex_base const &) = default;
    virtual ~dump_hex_base();
    std::ostream & operator()(std::ostream & os) const;

private:
    /// Writes one character of the text column; the base class writes nothing.
    virtual void writeText(std::ostream & os, char c) const;
};

/// The table, its text column written as `os << Shown(c)`.
template <class Shown>
class dump_hex : public dump_hex_base {
public:
    using dump_hex_base::dump_hex_base;

private:
    void writeText(std::ostream & os, char c) const override { os << Shown(c); }
};

/// A character of a text column: itself when it is printable, otherwise ".".
class YON_API show_printable {
public:
    explicit show_printable(char c) noexcept : c_(c) {}
    friend YON_API std::ostream & operator<<(std::ostream & os, show_printable const & s);

private:
    char c_;
};

/// The table for a dumper that writes lines, one line for a compact one and for a stream.
class YON_API hexdata : public detail::hex_source {
public:
    using hex_source::hex_source;
    /// At most the first `maxLength` bytes.
    hexdata(istr data, unsigned long maxLength) noexcept : hex_source(data.leftstr(length(maxLength))) {}
    dumper & operator()(dumper & d) const;
    std::ostream & operator()(std::ostream & os) const;
};

/// Text that a dumper writes as it is, without quotes.
class YON_API rawstring {
public:
    explicit rawstring(istr text) noexcept : text_(text) {}
    dumper & operator()(dumper & d) const;

private:
    istr text_;
};

inline std::ostream & operator<<(std::ostream & os, write_hex const & hex) { return hex(os); }
inline std::ostream & operator<<(std::ostream & os, dump_hex_base const & hex) { return hex(os); }
inline std::ostream & operator<<(std::ostream & os, hexdata const & hex) { return hex(os); }

}  // namespace yon
