// `nbr::parser`: from bytes to a tree of values.
#pragma once

#include "yon/base/exception.h"
#include "yon/nbr/value.h"

namespace yon::nbr {

/// Reads values one after the other from bytes that it does not own; they must outlive the parser and the values.
///
/// Null and empty items give no value, and what is cut off gives a shorter value or none; with the debug category
/// "TRACE" switched on the log tells why. A head whose low four bits exceed 4 raises `DecodeException`. `verify` is
/// the strict reader. Depth is limited by memory only. One object belongs to one thread at a time.
class YON_API parser {
public:
    explicit parser(istr bytes) noexcept : at_(bytes.begin()), end_(bytes.end()) {}
    template <yon::detail::OwnedText S>
    explicit parser(S const & bytes YON_LIFETIMEBOUND) noexcept : parser(istr(bytes)) {}

    /// The first value of the bytes, which the caller owns; null when there is none.
    static ValueBase * from(istr bytes) { return parser(bytes).parse(); }
    template <yon::detail::OwnedText S>
    static ValueBase * from(S const & bytes YON_LIFETIMEBOUND) {
        return from(istr(bytes));
    }

    /// The next value, which the caller owns; null when there is none, or a null or empty item.
    ValueBase * parse() { return parseValue(); }
    bool eof() const noexcept { return at_ == end_; }

private:
    ValueBase * parseValue();
    SimpleValue * readSimple();
    std::size_t left() const noexcept { return static_cast<std::size_t>(end_ - at_); }
    bool atMarker(char bracket) const noexcept;

    char const * at_;
    char const * end_;
};

}  // namespace yon::nbr
