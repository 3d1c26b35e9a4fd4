// `Mem`: a view of a caller's memory block with copy, compare and fill.
#pragma once

#include "yon/base/istr.h"

namespace yon {

/// A pointer and a length; owns nothing. Copying copies the pair.
class YON_API Mem {
public:
    constexpr Mem() noexcept = default;
    constexpr Mem(void * data, ulong size) noexcept : data_(data), size_(size) {}
    Mem(Mem const &) noexcept = default;
    Mem & operator=(Mem const &) noexcept = default;

    void * data() const noexcept { return data_; }
    ulong size() const noexcept { return size_; }
    operator istr() const noexcept { return istr(static_cast<char const *>(data_), size_); }

    /// Copy what fits; the rest of the block stays.
    Mem & copy(istr const & s) noexcept;
    Mem & operator=(istr const & s) noexcept { return copy(s); }
    /// Copies what fits before a terminating NUL. Nothing for a block of size 0.
    Mem & copyZ(istr const & s) noexcept;
    /// The first differing byte decides (-1 or 1); otherwise the difference of the lengths.
    int cmp(istr const & s) const noexcept;
    Mem & fill(int c) noexcept;
    /// As `istr::dump`.
    std::ostream & dump(std::ostream & os) const { return istr(*this).dump(os); }

private:
    void * data_ = nullptr;
    ulong size_ = 0;
};

}  // namespace yon
