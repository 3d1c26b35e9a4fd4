// `dumper`: turns objects into indented, brace-nested text for logs and diagnostics.
//
//     yon::dumper d;
//     d << object;
//     log(d.str());
//
// A class describes itself like this:
//
//     yon::dumper & Point::dump(yon::dumper & d) const {
//         d.push("app::Point", "@");
//         d.field("x_", x_).field("y_", y_);
//         d.pop();
//         return d;
//     }
//
// and reads "@app::Point {", one indented "name = value" a line, and "}"; in the compact layout "{1, 2}". Standard
// containers are written once "yon/log/dumper_stl.h" is included.
#pragma once

#include <concepts>
#include <ostream>
#include <type_traits>

#include "yon/base/config.h"
#include "yon/base/iwstr.h"
#include "yon/base/scalars.h"
#include "yon/base/string.h"

namespace yon {

class Time;

namespace detail {

/// Has a `dumper & dump(dumper &) const`.
template <class T>
concept DumpsItself = requires(T const & value, dumper & d) {
    { value.dump(d) } -> std::same_as<dumper &>;
};
/// Is called with the dumper.
template <class T>
concept DumpManipulator = requires(T const & value, dumper & d) {
    { value(d) } -> std::same_as<dumper &>;
};
template <class T>
concept DumpableText = std::convertible_to<T const &, istr> || std::convertible_to<T const &, iwstr>;
template <class T>
concept PrintableToStream = requires(std::ostream & os, T const & value) {
    os << value;
};
/// A built-in scalar; wide characters are none, since no narrow stream takes them.
template <class T>
concept DumpableScalar = std::is_arithmetic_v<T> && PrintableToStream<T>;
/// Anything else that a stream prints, enumerations among it. Pointers have a form of their own.
template <class T>
concept PrintableAsSuch =
    PrintableToStream<T> && !DumpableText<T> && !std::is_array_v<T> && (!std::is_scalar_v<T> || std::is_enum_v<T>);

}  // namespace detail

/// The dump writer: over a stream of the caller's, which must outlive it, or with a string stream of its own, whose
/// text `str()` returns. Two layouts: one field a line, or everything in one line (compact). One thread at a time.
class YON_API dumper {
public:
    /// The layout of a dump.
    struct Config {
        bool compact = false;             ///< all in one line, without names
        String lineSeparator = "\n";      ///< begins every indented line
        String indentSeparator = "    ";  ///< once for each nesting level, after the line separator
        unsigned level = 0;               ///< the nesting depth
        String eolSeparator;              ///< ends a line and follows an opening brace
    };

    dumper(std::ostream & os, bool compact, char const * lineSeparator = "\n", char const * indentSeparator = "    ",
           unsigned level = 0, char const * eolSeparator = "");
    dumper(std::ostream & os, Config const & cfg);
    explicit dumper(bool compact = false, char const * lineSeparator = "\n", char const * indentSeparator = "    ",
                    unsigned level = 0, char const * eolSeparator = "");
    explicit dumper(Config const & cfg);
    dumper(dumper const &) = delete;
    dumper & operator=(dumper const &) = delete;
    ~dumper();

    bool compact() const noexcept { return cfg_.compact; }
    dumper & compact(bool compact) noexcept;
    String const & lineSeparator() const noexcept { return cfg_.lineSeparator; }
    dumper & lineSeparator(String const & text);
    String const & indentSeparator() const noexcept { return cfg_.indentSeparator; }
    dumper & indentSeparator(String const & text);
    String const & eolSeparator() const noexcept { return cfg_.eolSeparator; }
    dumper & eolSeparator(String const & text);
    unsigned level() const noexcept { return cfg_.level; }
    dumper & level(unsigned level) noexcept;
    Config const & cfg() const noexcept { return cfg_; }
    std::ostream & internal_stream() noexcept { return *os_; }

    /// Begins a field or an element: a new indented line, or ", " in front of every element but the first.
    dumper & indent();
    /// Ends a field or an element.
    dumper & endline();
    /// Writes a newline and flushes, in both layouts.
    dumper & nl();
    /// Writes the text as it is, in both layouts.
    dumper & raw(istr text);

    /// Opens a nested block: `prefix`, `name` and a brace; without a name, and in the compact layout, just the brace.
    void push(istr name, istr prefix);
    /// Closes it. One too many leaves the level at 0.
    void pop();
    /// One field of a block, with its line.
    template <class T>
    dumper & field(istr name, T const & value) {
        beginField(name) << value;
        return endline();
    }

    /// The text so far of the own stream. Raises `UnsupportedFunctionException` when the stream is the caller's.
    String str() const;
    /// Dumps the state of this dumper into another one; without an own stream its text is empty.
    dumper & dump(dumper & other) const;

    dumper & operator<<(dumper & (*manipulator)(dumper &)) { return manipulator(*this); }
    dumper & operator<<(std::nullptr_t) { return write(nullptr); }
    template <detail::DumpManipulator M>
    dumper & operator<<(M const & manipulator) {
        return manipulator(*this);
    }

    // The decorated forms.

    /// `bool` as a word, characters through `Print` in single quotes, numbers in the form of the stream.
    template <detail::DumpableScalar T>
    dumper & operator<<(T value) {
        if constexpr (std::same_as<T, bool>) {
            return raw(value ? "true" : "false");
        } else if constexpr (sizeof(T) == 1) {
            return quoted(static_cast<char>(value));
        } else {
            return write(value);
        }
    }
    /// Text in quotes, what is not printable as "\x{…}" in hexadecimal; nothing for empty text. A line feed goes on
    /// in a new indented line. At most 256 bytes are shown, then the length is told. Leaves the stream decimal.
    dumper & operator<<(istr const & text);
    /// Wide text in the system code page, in quotes. May raise `UTFConversionException`.
    dumper & operator<<(iwstr const & text);
    /// The time as its quoted date-time text.
    dumper & operator<<(Time const & time);
    /// A pointer that is no text, in the form of the stream.
    template <class P>
    requires(!detail::DumpableText<P *>) dumper & operator<<(P * pointer) { return write(pointer); }
    template <detail::DumpsItself T>
    requires(!detail::DumpManipulator<T>) dumper & operator<<(T const & value) { return value.dump(*this); }
    template <detail::PrintableAsSuch T>
    requires(!detail::DumpsItself<T> && !detail::DumpManipulator<T>) dumper & operator<<(T const & value) {
        return write(value);
    }

    // The plain forms.

    /// As the stream has it: `bool` as 1 or 0, a character as such.
    template <detail::DumpableScalar T>
    dumper & write(T value) {
        *os_ << value;
        return *this;
    }
    /// The bytes unchanged.
    dumper & write(istr const & text) { return raw(text); }
    /// In the system code page. May raise `UTFConversionException`.
    dumper & write(iwstr const & text);
    /// Its date-time text.
    dumper & write(Time const & time);
    template <class P>
    requires(!detail::DumpableText<P *>) dumper & write(P * pointer) {
        *os_ << static_cast<void const *>(pointer);
        return *this;
    }
    dumper & write(std::nullptr_t) { return write(static_cast<void const *>(nullptr)); }
    template <detail::PrintableAsSuch T>
    dumper & write(T const & value) {
        *os_ << value;
        return *this;
    }

private:
    dumper & beginField(istr name);
    dumper & quoted(char c);
    String text() const;
    void writeIndent();

    Config cfg_;
    std::ostream * os_;
    bool owned_;
    bool first_ = true;
    // Of the enclosing block. One is enough: before a block is opened as an element, `indent()` has cleared it.
    bool savedFirst_ = true;
};

/// The layout operations as manipulators: `d << indent`.
inline dumper & indent(dumper & d) { return d.indent(); }
inline dumper & endline(dumper & d) { return d.endline(); }
inline dumper & nl(dumper & d) { return d.nl(); }

template <class Self, class V, class P>
dumper & detail::scalar<Self, V, P>::dump(dumper & d) const {
    return d << value_;
}

}  // namespace yon
