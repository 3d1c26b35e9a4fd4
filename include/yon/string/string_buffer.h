// `StringBuffer`: an owned, growing buffer that text is appended to.
#pragma once

#include <algorithm>
#include <utility>

#include "yon/base/builtin_scalar.h"
#include "yon/base/istr.h"
#include "yon/base/iwstr.h"

namespace yon {

class dumper;

/// Bytes with a capacity and a size, without a terminator. Appending takes constant time on average; the capacity
/// never shrinks, and `reset()` keeps it. Copies copy the bytes. The block is registered with the leak checker.
/// Raises `std::bad_alloc`, and `std::length_error` beyond what 32 bits count. One object belongs to one thread at a
/// time.
class YON_API StringBuffer {
public:
    StringBuffer() noexcept = default;
    explicit StringBuffer(ulong capacity) { reserve(capacity); }
    StringBuffer(StringBuffer const & o) { append(o.str()); }
    StringBuffer(StringBuffer && o) noexcept { swap(o); }
    ~StringBuffer();
    StringBuffer & operator=(StringBuffer const & o) { return &o == this ? *this : reset().append(o.str()); }
    StringBuffer & operator=(StringBuffer && o) noexcept {
        swap(o);
        return *this;
    }

    /// Add text at the end, which may be a part of this buffer.
    StringBuffer & append(istr const & s) {
        if (s.size() > capacity_ - size_) return appendGrowing(s);
        if (!s.empty()) std::memcpy(data_ + size_, s.data(), s.size());
        size_ += s.size();
        return *this;
    }
    StringBuffer & append(char const * s, ulong n) { return append(istr(s, n)); }
    StringBuffer & append(unsigned char const * s, ulong n) { return append(istr(s, n)); }
    /// Adds `n` characters `c`.
    StringBuffer & append(char c, ulong n) {
        std::fill_n(extend(n), n, c);
        return *this;
    }
    /// Adds wide text in the system code page, which may raise `UTFConversionException`.
    template <class W>
    requires std::convertible_to<W const &, iwstr> &&
        (!std::convertible_to<W const &, istr>)StringBuffer & append(W const & s) {
        return appendWide(s);
    }
    /// Adds a character as it is, a number as decimal text, as a stream of the classic locale writes it.
    template <detail::BuiltinScalar T>
    StringBuffer & append(T value) {
        if constexpr (detail::CharacterType<T>) {
            *extend(1) = static_cast<char>(value);
            return *this;
        } else if constexpr (std::is_floating_point_v<T>) {
            return appendNumber(static_cast<double>(value));
        } else if constexpr (std::is_signed_v<T>) {
            return appendNumber(static_cast<longlong>(value));
        } else {
            return appendNumber(static_cast<ulonglong>(value));
        }
    }
    /// Adds `n` bytes for the caller to write, who must write them all before anything else is done to the buffer.
    char * extend(ulong n) {
        if (n > capacity_ - size_) grow(n);
        char * const end = data_ + size_;
        size_ += n;
        return end;
    }

    /// Room for `n` more bytes behind the text, for the caller to write; `commit` makes what was written a part of
    /// it.
    char * prepare(ulong n) {
        if (n > capacity_ - size_) grow(n);
        return data_ + size_;
    }
    /// REQUIRES: no more than was prepared.
    void commit(ulong n) noexcept { size_ += n; }
    /// Cuts the text to its first `n` bytes.
    void truncate(ulong n) noexcept { size_ = std::min(size_, n); }

    /// Empties it and keeps the block.
    StringBuffer & reset() noexcept {
        size_ = 0;
        return *this;
    }
    /// Ensures a capacity of at least `n`.
    void reserve(ulong n) {
        if (n > capacity_) grow(n - size_);
    }
    void swap(StringBuffer & o) noexcept {
        std::swap(data_, o.data_);
        std::swap(size_, o.size_);
        std::swap(capacity_, o.capacity_);
    }

    /// The text; valid until the buffer changes.
    istr str() const noexcept { return istr(data_, size_); }
    operator istr() const noexcept { return str(); }
    char * data() noexcept { return data_; }
    char const * data() const noexcept { return data_; }
    ulong size() const noexcept { return size_; }
    ulong capacity() const noexcept { return capacity_; }
    bool empty() const noexcept { return size_ == 0; }

    dumper & dump(dumper & d) const;

private:
    StringBuffer & appendGrowing(istr const & s);
    StringBuffer & appendWide(iwstr const & s);
    StringBuffer & appendNumber(longlong value);
    StringBuffer & appendNumber(ulonglong value);
    StringBuffer & appendNumber(double value);
    /// Makes room for `n` more bytes.
    void grow(ulong n);

    char * data_ = nullptr;
    ulong size_ = 0;
    ulong capacity_ = 0;
};

}  // namespace yon
