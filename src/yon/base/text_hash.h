// A keyed hash of short texts, for tables whose keys come from outside.
#pragma once

#include <cstdint>
#include <cstring>

#include "yon/base/istr.h"

namespace yon {

namespace detail {

/// Both halves of the 128-bit product, folded.
inline std::uint64_t foldedProduct(std::uint64_t a, std::uint64_t b) noexcept {
#if defined(__SIZEOF_INT128__)
    __extension__ using Wide = unsigned __int128;
    Wide const r = static_cast<Wide>(a) * b;
    return static_cast<std::uint64_t>(r) ^ static_cast<std::uint64_t>(r >> 64);
#else
    std::uint64_t const al = a & 0xFFFFFFFFu, ah = a >> 32, bl = b & 0xFFFFFFFFu, bh = b >> 32;
    std::uint64_t const low = al * bl;
    std::uint64_t const mid = ah * bl + (low >> 32);
    std::uint64_t const mid2 = al * bh + (mid & 0xFFFFFFFFu);
    return (mid2 << 32 | (low & 0xFFFFFFFFu)) ^ (ah * bh + (mid >> 32) + (mid2 >> 32));
#endif
}

template <class Word>
std::uint64_t load(char const * p) noexcept {
    Word v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

/// One to eight bytes as a number; with the length known, different texts give different numbers.
inline std::uint64_t loadTail(char const * p, std::size_t n) noexcept {
    if (n == 8) return load<std::uint64_t>(p);
    if (n >= 4) return load<std::uint32_t>(p) | load<std::uint32_t>(p + n - 4) << 32;
    return load<std::uint8_t>(p) | load<std::uint8_t>(p + n / 2) << 8 | load<std::uint8_t>(p + n - 1) << 16;
}

}  // namespace detail

/// A number of this process that nobody outside can know.
std::uint64_t textHashSeed() noexcept;

/// Hashes by multiplying eight-byte words of text, mixed with the process's secret seed, so that hostile keys cannot
/// be made to collide. Differs from process to process.
inline std::uint32_t textHash(istr text, std::uint64_t seed) noexcept {
    char const * p = text.data();
    std::size_t n = text.size();
    std::uint64_t h = seed ^ (n * 0x9E3779B97F4A7C15u);
    for (; n > 8; p += 8, n -= 8) h = detail::foldedProduct(h ^ detail::load<std::uint64_t>(p), seed | 1);
    if (n != 0) h ^= detail::loadTail(p, n);
    h = detail::foldedProduct(h ^ 0xD6E8FEB86659FD93u, (seed >> 7) | 0xA0761D6478BD642Fu);
    return static_cast<std::uint32_t>(h ^ (h >> 32));
}

}  // namespace yon
