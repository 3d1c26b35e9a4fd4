// Numbers to text and back, exactly as a stream of the classic locale does it, without the stream.
//
// The library's number texts follow the standard streams with default flags, whatever locale the process has set.
// These functions give the same bytes, values and verdicts at the speed of std::to_chars and std::from_chars: no
// stream, no locale, no allocation, no terminator needed. Reentrant.
#pragma once

#include <algorithm>
#include <charconv>
#include <cmath>
#include <concepts>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <type_traits>

#include "yon/base/builtin_scalar.h"
#include "yon/base/istr.h"

namespace yon::detail {

/// The room that `formatNumber` may use.
inline constexpr std::size_t numberRoom = 32;

inline char * formatReal(char * first, double value) noexcept {
    // Small whole numbers are the usual case and need no floating-point printing. A negative zero keeps its sign.
    if (value > -1e6 && value < 1e6) {
        int const whole = static_cast<int>(value);
        if (whole == value && (whole != 0 || !std::signbit(value))) {
            return std::to_chars(first, first + numberRoom, whole).ptr;
        }
    }
    // The C library beneath the stream decides whether a NaN shows its sign. No locale has a part in this.
    if (!std::isfinite(value)) return first + std::snprintf(first, numberRoom, "%g", value);
    return std::to_chars(first, first + numberRoom, value, std::chars_format::general, 6).ptr;
}

/// Writes `value` as `std::ostream <<` with default flags does: integers in decimal, `bool` as 0 or 1, floating point
/// with six significant digits, character types as the character. No terminator. Returns the end of the text.
/// REQUIRES: `numberRoom` bytes at `first`.
template <class T>
char * formatNumber(char * first, T value) noexcept {
    static_assert(std::is_arithmetic_v<T> && sizeof(T) <= sizeof(double));
    if constexpr (CharacterType<T>) {
        *first = static_cast<char>(value);
        return first + 1;
    } else if constexpr (std::same_as<T, bool>) {
        *first = value ? '1' : '0';
        return first + 1;
    } else if constexpr (std::integral<T>) {
        return std::to_chars(first, first + numberRoom, value).ptr;
    } else {
        return formatReal(first, value);
    }
}

inline char const * skipBlanks(char const * p, char const * end) noexcept {
    while (p != end && (*p == ' ' || (*p >= '\t' && *p <= '\r'))) ++p;
    return p;
}

/// The value of a decimal digit; 10 or more for anything else.
inline unsigned digitOf(char c) noexcept { return static_cast<unsigned char>(c - '0'); }
inline bool isDigit(char c) noexcept { return digitOf(c) < 10; }

/// Behind the sign, if there is one. REQUIRES: `p != end`.
inline char const * skipSign(char const * p) noexcept { return p + (*p == '-' || *p == '+'); }

inline bool isE(char c) noexcept { return (c | 0x20) == 'e'; }

/// The general case of an integer. REQUIRES: no leading blanks, not empty.
template <class T>
bool parseInteger(char const * p, char const * end, T & value) noexcept {
    using Limits = std::numeric_limits<T>;
    char const * const digits = skipSign(p);
    if (digits == end || !isDigit(*digits)) {
        value = 0;
        return false;
    }
    // The minus of a signed type is read with the number.
    bool const negative = *p == '-';
    char const * const first = std::is_signed_v<T> && negative ? p : digits;
    if (std::from_chars(first, end, value).ec != std::errc()) {
        value = std::is_signed_v<T> && negative ? Limits::min() : Limits::max();
        return false;
    }
    // A negated unsigned number wraps, as the stream has it.
    if (std::is_unsigned_v<T> && negative) value = static_cast<T>(0 - value);
    return true;
}

/// Whether a number that no floating-point type holds is too large (otherwise it is too small): the sign of its
/// decimal exponent tells. REQUIRES: `p` at the first digit or point of such a number.
inline bool isTooLarge(char const * p, char const * end) noexcept {
    while (p != end && *p == '0') ++p;
    char const * const whole = p;
    while (p != end && isDigit(*p)) ++p;
    std::int64_t exponent = p - whole;
    if (p != end && *p == '.') {
        char const * const fraction = ++p;
        if (exponent == 0) {
            while (p != end && *p == '0') ++p;
            exponent = fraction - p;
        }
        while (p != end && isDigit(*p)) ++p;
    }
    if (p == end || (*p | 0x20) != 'e') return exponent > 0;
    bool const negative = *++p == '-';
    std::uint32_t written = 0;
    if (std::from_chars(skipSign(p), end, written).ec != std::errc()) return !negative;
    return exponent + (negative ? -std::int64_t{written} : std::int64_t{written}) > 0;
}

/// The general case of a floating-point number. REQUIRES: no leading blanks, not empty.
template <class T>
bool parseReal(char const * p, char const * end, T & value) noexcept {
    value = 0;
    char const * const digits = skipSign(p);
    // Neither names nor a second sign.
    if (digits == end || (!isDigit(*digits) && *digits != '.')) return false;
    T magnitude = 0;
    auto const [stop, error] = std::from_chars(digits, end, magnitude);
    if (error == std::errc::invalid_argument) return false;
    // The stream takes an "e" for good: without digits behind it there is no number at all.
    if (stop != end && isE(*stop) && std::find_if(digits, stop, isE) == stop) return false;
    bool const overflow = error != std::errc() && isTooLarge(digits, end);
    if (overflow) magnitude = std::numeric_limits<T>::max();
    value = *p == '-' ? -magnitude : magnitude;
    return !overflow;
}

// The usual case: text that is a plain number from its first character on, which these read at once. False leaves it
// to the general case.

template <std::integral T>
bool parsePlain(istr text, T & value) noexcept {
    bool const negative = std::is_signed_v<T> && !text.empty() && text[0] == '-';
    istr const digits = text.removeLeft(ulong{negative});
    if (digits.empty() || !isDigit(digits[0])) return false;
    std::uint64_t number = digitOf(digits[0]);
    ulong n = 1;
    for (unsigned digit; n < digits.size() && (digit = digitOf(digits[n])) < 10; ++n) number = number * 10 + digit;
    constexpr ulong safeDigits = std::numeric_limits<std::uint64_t>::digits10;
    std::uint64_t const greatest = static_cast<std::uint64_t>(std::numeric_limits<T>::max()) + negative;
    if (n > safeDigits || number > greatest) return false;
    value = static_cast<T>(negative ? 0 - number : number);
    return true;
}

template <std::floating_point T>
bool parsePlain(istr text, T & value) noexcept {
    auto const [stop, error] = std::from_chars(text.begin(), text.end(), value);
    return error == std::errc() && (stop == text.end() || !isE(*stop)) && std::isfinite(value);
}

/// Everything that is not plain: blanks, a plus, other signs, limits, no number at all.
template <class T>
[[gnu::noinline]] bool parseGeneral(istr text, T & value) noexcept {
    char const * const end = text.end();
    char const * const p = skipBlanks(text.begin(), end);
    if (p == end) return false;
    if constexpr (CharacterType<T>) {
        value = static_cast<T>(*p);
        return true;
    } else if constexpr (std::same_as<T, bool>) {
        long number = 0;
        bool const parsed = parseInteger(p, end, number);
        value = number != 0;
        return parsed && (number == 0 || number == 1);
    } else if constexpr (std::integral<T>) {
        return parseInteger(p, end, value);
    } else {
        return parseReal(p, end, value);
    }
}

/// Reads `value` as `std::istream >>` with default flags does, and tells whether the stream would not have failed.
/// Leading white space is skipped and text after the number ignored. Without any text `value` stays; without a number
/// it becomes 0; beyond the limits it becomes the limit; both fail. An unsigned type takes a minus and wraps. `bool`
/// knows 0 and 1, any other number fails with true. Character types take the first character that is no blank.
template <class T>
bool parseNumber(istr text, T & value) noexcept {
    static_assert(std::is_arithmetic_v<T> && sizeof(T) <= sizeof(double));
    if constexpr (!CharacterType<T> && !std::same_as<T, bool>) {
        if (parsePlain(text, value)) [[likely]]
            return true;
    }
    return parseGeneral(text, value);
}

}  // namespace yon::detail
