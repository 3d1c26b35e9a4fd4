// How a tree is printed as pml.
#pragma once

#include <iosfwd>

#include "yon/base/config.h"

namespace yon::pml {

/// The layout. A plain value; any number may be held, and a number that is no layout prints nothing.
class ShowMode {
public:
    enum Value : int {
        COMPACT = 1,    ///< everything on one line, no blanks
        SIMPLE = 2,     ///< one node a line, indented
        MIXED = 3,      ///< nodes run on inside their parent; lists of unnamed typed elements are broken into lines
        FORMATTED = 4,  ///< as SIMPLE; the node's path may be shown in a comment
    };

    constexpr ShowMode(int value) noexcept : value_(value) {}
    constexpr int value() const noexcept { return value_; }
    /// Whether the number is one of the four layouts.
    constexpr bool known() const noexcept { return value_ >= COMPACT && value_ <= FORMATTED; }
    /// "COMPACT" and so on, or "<UnknownShowMode>".
    YON_API char const * name() const noexcept;
    friend constexpr bool operator==(ShowMode, ShowMode) noexcept = default;

private:
    int value_;
};

/// Which parts of each node are printed: a mask of bits. A plain value.
class ShowPattern {
public:
    enum Bit : int {
        VALUE = 1,  ///< the text of single values
        TYPE = 2,   ///< ":" and the type, when there is one
        NAME = 4,
        PATH = 8,          ///< in FORMATTED, a comment with the node's path before the node
        QUOTE_BLANKS = 16  ///< quotes round text that begins or ends with a blank, so that it is read back whole
    };
    static constexpr int usual = NAME | TYPE | VALUE;

    constexpr ShowPattern(int bits = usual) noexcept : bits_(bits) {}
    constexpr int value() const noexcept { return bits_; }
    constexpr bool has(Bit bit) const noexcept { return (bits_ & bit) != 0; }
    friend constexpr bool operator==(ShowPattern, ShowPattern) noexcept = default;

private:
    int bits_;
};

/// Writes the layout's name.
YON_API std::ostream & operator<<(std::ostream & os, ShowMode mode);
/// Writes the mask in decimal.
YON_API std::ostream & operator<<(std::ostream & os, ShowPattern pattern);

}  // namespace yon::pml
