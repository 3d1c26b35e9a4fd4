// Looking for bytes a block at a time: sixteen where the processor is known to have SSE2, otherwise eight in a word.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace yon {

namespace detail {

#if defined(__SSE2__)

class ByteBlock {
public:
    static constexpr std::ptrdiff_t size = 16;

    explicit ByteBlock(char const * p) noexcept : bytes_(_mm_loadu_si128(reinterpret_cast<__m128i const *>(p))) {}

    /// A set of bytes of the block.
    class Hits {
    public:
        explicit Hits(__m128i bytes) noexcept : bytes_(bytes) {}
        Hits operator|(Hits o) const noexcept { return Hits(_mm_or_si128(bytes_, o.bytes_)); }
        unsigned bits() const noexcept { return static_cast<unsigned>(_mm_movemask_epi8(bytes_)); }
        static std::ptrdiff_t first(unsigned bits) noexcept { return std::countr_zero(bits); }

    private:
        __m128i bytes_;
    };
    Hits equal(char c) const noexcept { return Hits(_mm_cmpeq_epi8(bytes_, _mm_set1_epi8(c))); }

private:
    __m128i bytes_;
};

#else

class ByteBlock {
public:
    static constexpr std::ptrdiff_t size = 8;

    explicit ByteBlock(char const * p) noexcept {
        std::memcpy(&bytes_, p, sizeof bytes_);
        if constexpr (std::endian::native == std::endian::big) bytes_ = __builtin_bswap64(bytes_);
    }

    /// A set of bytes of the block: the lowest bit tells the first one, bits behind it may be wrong.
    class Hits {
    public:
        explicit Hits(std::uint64_t bits) noexcept : bits_(bits) {}
        Hits operator|(Hits o) const noexcept { return Hits(bits_ | o.bits_); }
        std::uint64_t bits() const noexcept { return bits_; }
        static std::ptrdiff_t first(std::uint64_t bits) noexcept { return std::countr_zero(bits) / 8; }

    private:
        std::uint64_t bits_;
    };
    Hits equal(char c) const noexcept {
        constexpr std::uint64_t ones = 0x0101010101010101u;
        // Subtracting one reaches the high bit of a byte that was zero; it may carry into the bytes behind it.
        std::uint64_t const different = bytes_ ^ (ones * static_cast<unsigned char>(c));
        return Hits((different - ones) & ~different & (ones << 7));
    }

private:
    std::uint64_t bytes_;
};

#endif

/// The first place in [p, end) that is in `hits(block)`, or `end`. `hits` must not look for NUL.
template <class Hits>
char const * findByte(char const * p, char const * end, Hits hits) noexcept {
    for (; end - p >= ByteBlock::size; p += ByteBlock::size) {
        if (auto const bits = hits(ByteBlock(p)).bits()) return p + ByteBlock::Hits::first(bits);
    }
    char rest[ByteBlock::size] = {};
    for (std::ptrdiff_t i = 0; i < end - p; ++i) rest[i] = p[i];
    auto const bits = hits(ByteBlock(rest)).bits();
    return bits != 0 ? p + ByteBlock::Hits::first(bits) : end;
}

}  // namespace detail

/// The first place of `a` or `b`, neither of them NUL, in [p, end), or `end`.
inline char const * findEither(char const * p, char const * end, char a, char b) noexcept {
    return detail::findByte(p, end, [=](detail::ByteBlock block) { return block.equal(a) | block.equal(b); });
}

/// The first parenthesis, colon or quote in [p, end), or `end`.
inline char const * findTagOrQuote(char const * p, char const * end) noexcept {
    return detail::findByte(p, end, [](detail::ByteBlock block) {
        return block.equal('(') | block.equal(')') | block.equal(':') | block.equal('\'') | block.equal('"');
    });
}

/// The first place in [p, end) that is no blank, or `end`.
inline char const * blanksEnd(char const * p, char const * end) noexcept {
    constexpr std::uint64_t blanks = 0x2020202020202020u;
    for (std::uint64_t word; end - p >= 8; p += 8) {
        std::memcpy(&word, p, sizeof word);
        if (word != blanks) break;
    }
    while (p != end && *p == ' ') ++p;
    return p;
}

}  // namespace yon
