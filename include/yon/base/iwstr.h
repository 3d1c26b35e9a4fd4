// `iwstr`: the read-only view of UTF-16 text.
#pragma once

#include <compare>
#include <concepts>
#include <iosfwd>

#include "yon/base/view_base.h"

namespace yon {

/// As `istr`, over 16-bit characters; sizes count characters. Comparisons order by the bytes in memory, not by
/// character value.
struct iwstr : detail::view_base<iwstr, wchar> {
    constexpr iwstr() noexcept = default;
    constexpr iwstr(std::nullptr_t, ulong = npos) noexcept {}
    iwstr(wchar const * s, ulong n = npos) noexcept : view_base(s, n) {}
    iwstr(wstring const & s) noexcept : view_base(s.data(), toLength(s.size())) {}
    iwstr(std::basic_string_view<wchar> s) noexcept : view_base(s.data(), toLength(s.size())) {}
    /// The first `n` characters of `s`, or all.
    iwstr(iwstr const & s, ulong n) noexcept : iwstr(s.leftstr(n)) {}

    /// Writes the size, ", " and the text in the system code page, for diagnostics.
    YON_API std::ostream & dump(std::ostream & os) const;
};

/// Writes the text in the system code page and flushes; nothing at all for an empty view.
YON_API std::ostream & operator<<(std::ostream & os, iwstr const & s);

namespace detail {

template <class A, class B>
concept ComparableWideTexts =
    (std::same_as<A, iwstr> ||
     std::same_as<B, iwstr>)&&std::convertible_to<A const &, iwstr> && std::convertible_to<B const &, iwstr>;

}  // namespace detail

template <class A, class B>
requires detail::ComparableWideTexts<A, B>
bool operator==(A const & a, B const & b) noexcept { return iwstr(a).compare(iwstr(b)) == 0; }
template <class A, class B>
requires detail::ComparableWideTexts<A, B> std::strong_ordering operator<=>(A const & a, B const & b) noexcept {
    return iwstr(a).compare(iwstr(b)) <=> 0;
}

}  // namespace yon

template <>
struct std::hash<yon::iwstr> {
    std::size_t operator()(yon::iwstr const & s) const noexcept {
        return std::hash<std::basic_string_view<yon::wchar>>()(s);
    }
};
