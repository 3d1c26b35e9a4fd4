// Looking for bytes eight at a time.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace yon {

namespace detail {

/// Eight bytes as a number whose lowest byte is the first one.
inline std::uint64_t loadWord(char const * p) noexcept {
    std::uint64_t word;
    std::memcpy(&word, p, sizeof word);
    if constexpr (std::endian::native == std::endian::big) word = __builtin_bswap64(word);
    return word;
}

inline constexpr std::uint64_t ones = 0x0101010101010101u;
inline constexpr std::uint64_t highs = 0x8080808080808080u;

constexpr std::uint64_t everywhere(char c) noexcept { return ones * static_cast<unsigned char>(c); }

/// The high bits of the bytes that are zero. Subtracting may carry into bytes behind a zero one, so the lowest bit is
/// always right, and there is none when there is no zero.
constexpr std::uint64_t zeros(std::uint64_t word) noexcept { return (word - ones) & ~word & highs; }

/// The index of the byte that the lowest bit belongs to. REQUIRES: not 0.
inline std::ptrdiff_t firstByte(std::uint64_t bits) noexcept { return std::countr_zero(bits) / 8; }

/// The first place in [p, end) whose byte `hits` marks in a word, or `end`. `hits` must not mark a zero byte.
template <class Hits>
char const * findByte(char const * p, char const * end, Hits hits) noexcept {
    for (; end - p >= 8; p += 8) {
        if (std::uint64_t const found = hits(loadWord(p))) return p + firstByte(found);
    }
    if (p == end) return end;
    char rest[8] = {};
    for (std::ptrdiff_t i = 0; i < end - p; ++i) rest[i] = p[i];
    std::uint64_t const found = hits(loadWord(rest));
    return found != 0 ? p + firstByte(found) : end;
}

}  // namespace detail

/// The first place of `a` or `b`, neither of them NUL, in [p, end), or `end`.
inline char const * findEither(char const * p, char const * end, char a, char b) noexcept {
    return detail::findByte(p, end, [as = detail::everywhere(a), bs = detail::everywhere(b)](std::uint64_t word) {
        return detail::zeros(word ^ as) | detail::zeros(word ^ bs);
    });
}

/// The first parenthesis, colon or quote in [p, end), or `end`.
inline char const * findTagOrQuote(char const * p, char const * end) noexcept {
    return detail::findByte(p, end, [](std::uint64_t word) {
        // The parentheses differ in their last bit only.
        using detail::everywhere, detail::zeros;
        return zeros((word | detail::ones) ^ everywhere(')')) | zeros(word ^ everywhere(':')) |
               zeros(word ^ everywhere('\'')) | zeros(word ^ everywhere('"'));
    });
}

/// The first place in [p, end) that is no blank, or `end`.
inline char const * blanksEnd(char const * p, char const * end) noexcept {
    if (p == end || *p != ' ') return p;
    for (; end - p >= 8; p += 8) {
        if (std::uint64_t const other = detail::loadWord(p) ^ detail::everywhere(' ')) return p + detail::firstByte(other);
    }
    while (p != end && *p == ' ') ++p;
    return p;
}

}  // namespace yon
