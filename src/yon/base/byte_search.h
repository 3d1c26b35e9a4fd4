// Looking for either of two bytes, a machine word at a time.
#pragma once

#include <cstddef>
#include <cstring>

namespace yon {

/// The first place of `a` or `b` in [p, end), or `end`. Subtracting one from every byte of a word carries into a high
/// bit only at, or behind, a byte that was zero; so a word without such a bit holds neither byte.
inline char const * findEither(char const * p, char const * end, char a, char b) noexcept {
    constexpr std::size_t ones = ~std::size_t{0} / 0xFF;
    constexpr std::size_t highs = ones << 7;
    std::size_t const as = ones * static_cast<unsigned char>(a);
    std::size_t const bs = ones * static_cast<unsigned char>(b);
    while (static_cast<std::size_t>(end - p) >= sizeof(std::size_t)) {
        std::size_t word;
        std::memcpy(&word, p, sizeof word);
        std::size_t const x = word ^ as;
        std::size_t const y = word ^ bs;
        if ((((x - ones) & ~x) | ((y - ones) & ~y)) & highs) break;
        p += sizeof word;
    }
    while (p != end && *p != a && *p != b) ++p;
    return p;
}

}  // namespace yon
