// `BitPos` and `BitsSub`: addresses of bits and of runs of bits in a byte array.
#pragma once

#include "yon/base/types.h"

namespace yon {

/// The position of a bit: a byte number of 16 bits and a bit number of 0 to 7. A plain value.
class BitPos {
public:
    constexpr BitPos() noexcept = default;
    /// The bit number is masked to its low three bits.
    constexpr BitPos(unsigned short byte_no, unsigned char bit_no) noexcept
        : byte_no_(byte_no), bit_no_(bit_no & 7) {}
    constexpr BitPos(ulong total) noexcept { fromTotal(total); }

    /// The position as a count of bits. Byte numbers beyond 16 bits wrap.
    constexpr BitPos & fromTotal(ulong total) noexcept {
        byte_no_ = static_cast<unsigned short>(total / 8);
        bit_no_ = static_cast<unsigned char>(total % 8);
        return *this;
    }
    constexpr ulong toTotal() const noexcept { return ulong{byte_no_} * 8 + bit_no_; }

    constexpr unsigned short byte_no() const noexcept { return byte_no_; }
    constexpr unsigned char bit_no() const noexcept { return bit_no_; }

    friend constexpr bool operator==(BitPos const &, BitPos const &) noexcept = default;

private:
    unsigned short byte_no_ = 0;
    unsigned char bit_no_ = 0;
};

/// A run of `size` bits from `begin` on. A plain value.
class BitsSub {
public:
    constexpr BitsSub(BitPos const & begin, ulong size) noexcept : begin_(begin), size_(size) {}

    constexpr BitPos begin() const noexcept { return begin_; }
    /// The position behind the last bit.
    constexpr BitPos end() const noexcept { return BitPos(begin_.toTotal() + size_); }
    constexpr ulong size() const noexcept { return size_; }

    friend constexpr bool operator==(BitsSub const &, BitsSub const &) noexcept = default;

private:
    BitPos begin_;
    ulong size_;
};

}  // namespace yon
