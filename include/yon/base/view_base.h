// What the narrow and the wide read-only view share.
#pragma once

#include <algorithm>
#include <string_view>

#include "yon/base/chars.h"

namespace yon::detail {

/// Up to this length, texts are looked for in the plain way.
inline constexpr std::size_t longestShort = 16;
/// The position of a longer text at or after `pos`, in linear time.
YON_API std::size_t findLong(std::string_view text, std::string_view s, std::size_t pos) noexcept;
YON_API std::size_t findLong(std::basic_string_view<wchar> text, std::basic_string_view<wchar> s,
                             std::size_t pos) noexcept;

/// A length and a pointer to constant characters. `View` is the class that derives from this one.
template <class View, class Char>
struct view_base {
    using value_type = Char;

    constexpr view_base() noexcept = default;
    view_base(Char const * s, ulong n) noexcept : size_(StrLen(s, n)), data_(s) {}

    /// No data, or no characters.
    constexpr bool empty() const noexcept { return data_ == nullptr || size_ == 0; }
    constexpr bool is_null() const noexcept { return data_ == nullptr; }
    /// The data as it is: a terminator is not guaranteed.
    constexpr Char const * c_str() const noexcept { return data_; }
    constexpr Char const * data() const noexcept { return data_; }
    constexpr Char const * begin() const noexcept { return data_; }
    constexpr Char const * end() const noexcept { return data_ + size_; }
    constexpr ulong size() const noexcept { return size_; }
    /// Unchecked.
    constexpr Char const & operator[](ulong i) const noexcept { return data_[i]; }

    operator std::basic_string<Char>() const { return std::basic_string<Char>(data_, size_); }
    constexpr operator std::basic_string_view<Char>() const noexcept { return {data_, size_}; }

    /// -1, 0 or 1 by the bytes in memory; of two texts of which one begins the other the shorter one is less.
    int compare(View const & s) const noexcept {
        std::size_t const common = std::min(size_, s.size_);
        int const r = data_ == s.data_ || common == 0 ? 0 : std::memcmp(data_, s.data_, common * sizeof(Char));
        return r != 0 ? (r > 0) - (r < 0) : (size_ > s.size_) - (size_ < s.size_);
    }

    /// At most `n` characters from `pos`; a `pos` beyond the end gives an empty view at the end.
    View substr(ulong pos, ulong n = npos) const noexcept {
        ulong const p = std::min(pos, size_);
        return View(data_ + p, std::min(size_ - p, n));
    }
    /// The first `n` characters, or all.
    View leftstr(ulong n) const noexcept { return View(data_, std::min(size_, n)); }
    /// The last `n` characters, or all.
    View rightstr(ulong n) const noexcept { return substr(n < size_ ? size_ - n : 0, n); }
    /// Drop `n` characters. REQUIRES: `n <= size()`.
    View removeLeft(ulong n) const noexcept { return View(data_ + n, size_ - n); }
    View removeRight(ulong n) const noexcept { return View(data_, size_ - n); }
    /// Drop `s.size()` characters without looking at them. REQUIRES: `s.size() <= size()`.
    View removeLeft(View const & s) const noexcept { return removeLeft(s.size_); }
    View removeRight(View const & s) const noexcept { return removeRight(s.size_); }

    bool beginWith(View const & s) const noexcept { return text().starts_with(s.text()); }

    /// The position of the first occurrence at or after `pos`, or `npos`. Takes linear time.
    ulong find(View const & s, ulong pos = 0) const noexcept {
        return position(s.size_ <= longestShort ? text().find(s.text(), pos) : findLong(text(), s.text(), pos));
    }
    ulong find(Char c, ulong pos = 0) const noexcept { return position(text().find(c, pos)); }
    /// The position of the last occurrence, or `npos`.
    ulong rfind(View const & s) const noexcept { return position(text().rfind(s.text())); }
    ulong rfind(Char c) const noexcept { return position(text().rfind(c)); }

    /// The view without its leading white space.
    View trimLeft() const noexcept {
        ulong n = 0;
        while (n < size_ && CharIsSpace(data_[n])) ++n;
        return removeLeft(n);
    }

protected:
    constexpr std::basic_string_view<Char> text() const noexcept { return {data_, size_}; }

    ulong size_ = 0;
    Char const * data_ = nullptr;

private:
    static ulong position(std::size_t p) noexcept { return static_cast<ulong>(p); }
};

}  // namespace yon::detail
