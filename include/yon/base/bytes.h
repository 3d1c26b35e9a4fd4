// `Bytes`: the owned, growing byte buffer.
#pragma once

#include "yon/base/istr.h"
#include "yon/base/ostr.h"

namespace yon {

/// A byte buffer with a capacity and a fill size, without a terminator. Copies copy the bytes. Its blocks are
/// registered with the leak checker. A failed allocation leaves a null buffer and raises nothing; a length beyond 32
/// bits raises `std::length_error`. One object belongs to one thread at a time.
class YON_API Bytes {
public:
    Bytes() noexcept = default;
    /// Room for exactly `n` bytes, none in use.
    explicit Bytes(ulong n) { alloc(n); }
    Bytes(istr const & s) { assign(s); }
    Bytes(Bytes const & o) { assign(o); }
    Bytes(Bytes && o) noexcept { swap(o); }
    ~Bytes() { free(); }

    Bytes & operator=(istr const & s) { return assign(s); }
    Bytes & operator=(Bytes const & o) { return assign(o); }
    Bytes & operator=(Bytes && o) noexcept {
        swap(o);
        return *this;
    }
    /// Replace the content; `s` may be a part of this buffer.
    Bytes & assign(istr const & s);
    Bytes & assign(Bytes const & o) { return &o == this ? *this : assign(istr(o)); }
    /// Adds at the end; `s` may be a part of this buffer.
    Bytes & append(istr const & s) {
        ulong const n = s.size();
        ulong const end = size_;
        if (ulonglong{end} + n > max_size_) return appendGrowing(s);
        size_ = end + n;
        if (n != 0 && buffer_ != nullptr) std::memcpy(buffer_ + end, s.data(), n);
        return *this;
    }
    Bytes & operator+=(istr const & s) { return append(s); }

    /// `resize(n)`, then empties.
    Bytes & init(ulong n) {
        resize(n);
        size_ = 0;
        return *this;
    }
    /// Ensures a capacity of at least `n`: grown to at least twice the old one plus 2; never shrinks, keeps the size.
    Bytes & resize(ulong n);
    /// Releases the buffer.
    void clear() noexcept { free(); }
    void swap(Bytes & o) noexcept {
        std::swap(buffer_, o.buffer_);
        std::swap(max_size_, o.max_size_);
        std::swap(size_, o.size_);
    }

    unsigned char * buffer() noexcept { return buffer_; }
    unsigned char const * data() const noexcept { return buffer_; }
    unsigned char const * begin() const noexcept { return buffer_; }
    unsigned char const * end() const noexcept { return buffer_ + size_; }
    /// The bytes as characters, not terminated.
    char const * c_str() const noexcept { return reinterpret_cast<char const *>(buffer_); }
    ulong max_size() const noexcept { return max_size_; }
    ulong size() const noexcept { return size_; }
    /// Sets the fill size without any check.
    Bytes & size(ulong n) noexcept {
        size_ = n;
        return *this;
    }
    bool empty() const noexcept { return size_ == 0; }
    /// Unchecked.
    unsigned char & operator[](ulong i) noexcept { return buffer_[i]; }
    unsigned char const & operator[](ulong i) const noexcept { return buffer_[i]; }

    /// The bytes in use.
    operator istr() const noexcept { return istr(buffer_, size_); }
    /// The whole capacity as an output buffer.
    operator ostr() noexcept { return ostr(buffer_, max_size_); }

private:
    void alloc(ulong n);
    void free() noexcept;
    Bytes & appendGrowing(istr s);
    /// Moves to a larger block of at least `n` bytes: `kept` bytes of the content, and behind them `s`.
    void grow(ulong n, ulong kept, istr s);

    unsigned char * buffer_ = nullptr;
    ulong max_size_ = 0;
    ulong size_ = 0;
};

/// Writes the bytes in use as they are.
inline std::ostream & operator<<(std::ostream & os, Bytes const & b) { return os << istr(b); }

}  // namespace yon
