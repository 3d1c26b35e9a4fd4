// `StringRef`: a writer over a buffer that somebody else owns.
#pragma once

#include <concepts>

#include "yon/base/bytes.h"
#include "yon/base/ostr.h"
#include "yon/base/scalars.h"

namespace yon {

class dumper;

/// A start address, a capacity and a cursor. Appends at the cursor, cut at the capacity, with a NUL behind it while
/// there is room, and lays text out in fields over the whole buffer. Owns nothing; copies share the buffer. A plain
/// value. Only the checked moves of the cursor raise anything.
class YON_API StringRef {
public:
    constexpr StringRef() noexcept = default;
    constexpr StringRef(unsigned char * buffer, ulong size, ulong cursor = 0) noexcept
        : addr_(buffer), cursor_(cursor), size_(size) {}
    StringRef(char * buffer, ulong size, ulong cursor = 0) noexcept
        : StringRef(reinterpret_cast<unsigned char *>(buffer), size, cursor) {}
    constexpr StringRef(std::nullptr_t, ulong size, ulong cursor = 0) noexcept
        : StringRef(static_cast<unsigned char *>(nullptr), size, cursor) {}
    /// Over the room; the cursor stands at the end of the text.
    explicit StringRef(ostr const & s) noexcept : StringRef(s.buffer(), s.max_size(), s.size()) {}
    /// Over the capacity; the cursor stands at the fill size, which writing does not change.
    explicit StringRef(Bytes & b) noexcept : StringRef(b.buffer(), b.max_size(), b.size()) {}
    StringRef(StringRef const &) noexcept = default;
    StringRef & operator=(StringRef const &) noexcept = default;

    /// Replace the text: the cursor goes to 0, then they append.
    StringRef & operator=(istr const & s) noexcept { return assign(s.data(), s.size()); }
    StringRef & assign(unsigned char const * s, ulong n = npos) noexcept { return rewind(0).append(s, n); }
    StringRef & assign(char const * s, ulong n = npos) noexcept { return rewind(0).append(s, n); }

    /// Append what fits.
    StringRef & append(unsigned char const * s, ulong n = npos) noexcept {
        return append(reinterpret_cast<char const *>(s), n);
    }
    StringRef & append(char const * s, ulong n = npos) noexcept;
    StringRef & append(unsigned char c) noexcept { return append(&c, 1); }
    StringRef & operator+=(istr const & s) noexcept { return append(s.data(), s.size()); }
    StringRef & operator+=(unsigned char c) noexcept { return append(c); }
    StringRef & operator<<(istr const & s) noexcept { return *this += s; }
    StringRef & operator<<(char c) noexcept { return append(&c, 1); }
    template <std::same_as<Byte> B>
    StringRef & operator<<(B const & b) noexcept {
        return append(b.value());
    }
    /// Appends to the shared buffer, but only the result's cursor moves.
    StringRef operator+(istr const & s) const noexcept { return StringRef(*this) += s; }

    /// Writes at most `n` characters `c` at the cursor, without a NUL behind them.
    StringRef & fill(unsigned char c, ulong n) noexcept;

    /// Lay text out over the whole buffer, which is usually filled with blanks; the cursor stays. A blank stands
    /// between the text and the rest of the line. Text that is too long loses its end (left), its beginning (right)
    /// or both (center). Nothing for empty text and for a capacity below 2.
    StringRef & left(istr const & s) noexcept;
    StringRef & center(istr const & s) noexcept;
    StringRef & right(istr const & s) noexcept;
    /// The same with `n` characters `c`.
    StringRef & right(char c, ulong n) noexcept;

    /// Move the cursor forward and write a NUL there while there is room. Raise `OutOfRangeException` beyond the
    /// capacity.
    StringRef & operator++();
    StringRef operator++(int) {
        StringRef const before = *this;
        ++*this;
        return before;
    }
    StringRef & advance(ulong n);
    /// Sets the cursor, unchecked.
    StringRef & rewind(ulong pos) noexcept {
        cursor_ = pos;
        return *this;
    }
    /// Drops the first `n` bytes of the buffer, unchecked; the cursor goes to 0.
    StringRef & shift(ulong n) noexcept {
        addr_ += n;
        size_ -= n;
        return rewind(0);
    }

    /// The room that is left.
    ulong left() const noexcept { return addr_ != nullptr && cursor_ < size_ ? size_ - cursor_ : 0; }
    unsigned char * current() const noexcept { return addr_ + cursor_; }
    unsigned char * buffer() const noexcept { return addr_; }
    unsigned char const * data() const noexcept { return addr_; }
    char const * c_str() const noexcept { return reinterpret_cast<char const *>(addr_); }
    /// The length of the written text.
    ulong size() const noexcept { return std::min(cursor_, size_); }
    ulong max_size() const noexcept { return size_; }
    /// Nothing is written.
    bool empty() const noexcept { return addr_ == nullptr || size() == 0; }
    bool null() const noexcept { return addr_ == nullptr; }
    /// Unchecked.
    unsigned char & at(ulong n) const noexcept { return addr_[n]; }
    unsigned char & operator[](ulong n) const noexcept { return addr_[n]; }
    /// The byte at the cursor, unchecked.
    unsigned char & operator*() const noexcept { return *current(); }

    /// The written text.
    operator istr() const noexcept { return istr(addr_, size()); }
    /// The whole buffer.
    operator ostr() const noexcept { return ostr(addr_, size_); }

    dumper & dump(dumper & d) const;
    std::ostream & dump(std::ostream & os) const;

private:
    /// Whether the field layouts have room.
    bool hasField() const noexcept { return addr_ != nullptr && size_ >= 2; }
    void terminate() noexcept;
    void moveBy(ulong n, unsigned int line, char const * func);

    unsigned char * addr_ = nullptr;
    ulong cursor_ = 0;
    ulong size_ = 0;
};

}  // namespace yon
