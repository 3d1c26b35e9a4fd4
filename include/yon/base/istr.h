// `istr`: the read-only view of narrow text that every function of the library takes.
#pragma once

#include <compare>
#include <concepts>
#include <iosfwd>
#include <memory>

#include "yon/base/view_base.h"

namespace yon {

class String;
class Bytes;

/// A length and a pointer; owns nothing, so the text must outlive it. A plain value without shared state.
/// A length of `npos` is counted up to the NUL; a null pointer has size 0, whatever the length.
struct istr : detail::view_base<istr, char> {
    constexpr istr() noexcept = default;
    constexpr istr(std::nullptr_t, ulong = npos) noexcept {}
    istr(char const * s, ulong n = npos) noexcept : view_base(s, n) {}
    istr(unsigned char const * s, ulong n = npos) noexcept : view_base(reinterpret_cast<char const *>(s), n) {}
    /// Of exactly the standard types: `String` brings its own conversion, and two ways would be one too many.
    template <class S>
    requires std::same_as<S, std::string> || std::same_as<S, std::string_view> istr(S const & s)
    noexcept : view_base(s.data(), toLength(s.size())) {}
    /// The first `n` characters of `s`, or all.
    istr(istr const & s, ulong n) noexcept : istr(s.leftstr(n)) {}

    bool endWith(istr const & s) const noexcept { return text().ends_with(s.text()); }

    /// Writes the size, ", " and the text, for diagnostics.
    YON_API std::ostream & dump(std::ostream & os) const;
};

/// Writes the text as it is and flushes; nothing at all for an empty view.
YON_API std::ostream & operator<<(std::ostream & os, istr const & s);

namespace detail {

/// Our own text classes, whose comparisons go through `istr`.
template <class T>
concept OwnText = std::same_as<T, istr> || std::same_as<T, String> || std::same_as<T, Bytes>;

template <class A, class B>
concept ComparableTexts = (OwnText<A> ||
                           OwnText<B>)&&std::convertible_to<A const &, istr> && std::convertible_to<B const &, istr>;

}  // namespace detail

/// Comparisons of `istr`, `String` and `Bytes` with each other, with standard strings and views, and with C strings
/// (null counts as empty), in both orders: by unsigned bytes, then by length.
template <class A, class B>
requires detail::ComparableTexts<A, B>
bool operator==(A const & a, B const & b) noexcept {
    istr const x = a;
    istr const y = b;
    return x.size() == y.size() && MemCmp(x.data(), y.data(), x.size()) == 0;
}
template <class A, class B>
requires detail::ComparableTexts<A, B> std::strong_ordering operator<=>(A const & a, B const & b) noexcept {
    istr const x = a;
    return x.compare(b) <=> 0;
}

}  // namespace yon

template <>
struct std::hash<yon::istr> {
    std::size_t operator()(yon::istr const & s) const noexcept { return std::hash<std::string_view>()(s); }
};
