// `ByteRef`: takes one byte out of a slice.
#pragma once

#include "yon/string/string_slice.h"

namespace yon {

/// Where a byte goes and which of its bits are wanted: `ByteRef(head, 0x0F)(slice)`. Refers to the target, which must
/// outlive it.
class ByteRef {
public:
    constexpr ByteRef(unsigned char & target, unsigned char mask) noexcept : target_(target), mask_(mask) {}

    /// Stores the byte at the cursor, moves the cursor behind it, keeps the bits of the mask; returns the slice.
    /// Raises `OutOfRangeException` at the end of the slice, before the target is changed.
    StringSlice & operator()(StringSlice & s) const {
        target_ = static_cast<unsigned char>(*s);
        ++s;
        target_ &= mask_;
        return s;
    }

private:
    unsigned char & target_;
    unsigned char mask_;
};

}  // namespace yon
