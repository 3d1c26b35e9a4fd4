// `ostr`: a view of a caller's output buffer, and `Str`: the same with the C-string operations.
#pragma once

#include <algorithm>
#include <compare>
#include <iosfwd>

#include "yon/base/istr.h"

namespace yon {

namespace detail {

/// A capacity (terminator included) and a pointer to a caller's buffer. The text is the NUL-terminated string in it;
/// its length is never stored. `Room` is the class that derives from this one.
template <class Room>
class room_base {
public:
    constexpr room_base() noexcept = default;
    constexpr room_base(char * buffer, ulong max) noexcept : max_size_(max), buffer_(buffer) {}

    constexpr char * buffer() const noexcept { return buffer_; }
    constexpr char * data() noexcept { return buffer_; }
    constexpr char const * data() const noexcept { return buffer_; }
    /// The capacity.
    constexpr ulong max_size() const noexcept { return max_size_; }
    /// The length of the text, which is not looked for past the room.
    ulong size() const noexcept { return StrLenN(buffer_, max_size_); }
    ulong sizeN() const noexcept { return StrLenN(buffer_, max_size_); }
    ulong sizeN(ulong n) const noexcept { return StrLenN(buffer_, n); }

    /// Parts of the room, clamped to it.
    Room substr(ulong pos, ulong n) const noexcept {
        ulong const p = std::min(pos, max_size_);
        return Room(buffer_ + p, std::min(max_size_ - p, n));
    }
    Room leftstr(ulong n) const noexcept { return Room(buffer_, std::min(max_size_, n)); }
    Room rightstr(ulong n) const noexcept { return substr(n < max_size_ ? max_size_ - n : 0, n); }

    /// Writes a NUL at the first place, and at the last one when the capacity is known.
    Room & reset() noexcept {
        if (buffer_ != nullptr && max_size_ != 0) {
            buffer_[0] = '\0';
            if (max_size_ != npos) buffer_[max_size_ - 1] = '\0';
        }
        return static_cast<Room &>(*this);
    }

protected:
    ulong max_size_ = 0;
    char * buffer_ = nullptr;
};

}  // namespace detail

/// A caller-owned output buffer of fixed capacity; owns nothing. Copying copies the pair, not the text.
class YON_API ostr : public detail::room_base<ostr> {
public:
    constexpr ostr() noexcept = default;
    constexpr ostr(char * buffer, ulong max) noexcept : room_base(buffer, max) {}
    ostr(unsigned char * buffer, ulong max) noexcept : room_base(reinterpret_cast<char *>(buffer), max) {}
    constexpr ostr(std::nullptr_t, ulong max) noexcept : room_base(nullptr, max) {}
    ostr(ostr const &) noexcept = default;
    ostr & operator=(ostr const &) noexcept = default;
    ostr & assign(ostr const & s) noexcept { return *this = s; }

    /// No buffer or no room: it tests the room, not the text (`Str::empty` tests the text).
    constexpr bool empty() const noexcept { return buffer_ == nullptr || max_size_ == 0; }
    constexpr char * begin() noexcept { return buffer_; }
    constexpr char const * begin() const noexcept { return buffer_; }
    /// The end of the room.
    constexpr char * end() noexcept { return buffer_ + max_size_; }
    /// The end of the text.
    char const * end() const noexcept { return buffer_ + size(); }
    /// Unchecked.
    constexpr char & operator[](ulong i) const noexcept { return buffer_[i]; }

    /// Empties the text.
    ostr & clear() noexcept;

    /// Copy text in, padded with NULs to the copied count. Text of `max_size()` or more characters fills the buffer
    /// without a terminator: follow with `reset()` where one is needed. Nothing without a buffer or room.
    ostr & assign(char const * s, ulong n) noexcept;
    ostr & assign(unsigned char const * s, ulong n) noexcept { return assign(reinterpret_cast<char const *>(s), n); }
    ostr & assign(istr const & s) noexcept { return assign(s.data(), s.size()); }
    ostr & assign(char const * s) noexcept { return assign(s, StrLen(s)); }
    ostr & assign(unsigned char const * s) noexcept { return assign(reinterpret_cast<char const *>(s)); }
    ostr & assign(std::nullptr_t) noexcept { return clear(); }
    ostr & operator=(istr const & s) noexcept { return assign(s); }
    ostr & operator=(std::nullptr_t) noexcept { return clear(); }
    ostr & operator=(char const * s) noexcept { return assign(s); }
    ostr & operator=(unsigned char const * s) noexcept { return assign(s); }

    /// A view of the whole room, not of the text (`Str` views the text).
    operator istr() const noexcept { return istr(buffer_, max_size_); }

    /// Writes "size/capacity, text", for diagnostics.
    std::ostream & dump(std::ostream & os) const;
};

/// The C-string operations on a caller-owned buffer; owns nothing. `copy` and `cat` trust the caller for the room.
class YON_API Str : public detail::room_base<Str> {
public:
    constexpr Str() noexcept = default;
    constexpr Str(char * buffer, ulong max) noexcept : room_base(buffer, max) {}
    Str(ostr const & s) noexcept : room_base(s.buffer(), s.max_size()) {}
    Str(Str const &) noexcept = default;
    Str & operator=(Str const &) noexcept = default;

    Str & operator=(istr const & s) noexcept { return copy(s); }
    Str & operator+=(istr const & s) noexcept { return cat(s); }
    /// Replace or extend the text without a look at the capacity.
    Str & copy(istr const & s) noexcept;
    Str & cat(istr const & s) noexcept;

    operator ostr() const noexcept { return ostr(buffer_, max_size_); }
    /// A view of the text (`ostr` views the whole room).
    operator istr() const noexcept { return istr(buffer_, size()); }

    /// As `StrCmp`: at most `n` characters, optionally ignoring case.
    int cmp(char const * s, ulong n = npos, bool noCase = false) const noexcept;
    int cmp(istr const & s, ulong n = npos, bool noCase = false) const noexcept;
    int cmpNoCase(char const * s, ulong n = npos) const noexcept { return cmp(s, n, true); }
    int cmpNoCase(istr const & s, ulong n = npos) const noexcept { return cmp(s, n, true); }
    /// Equal over at most `n` characters, ignoring case.
    bool is(istr const & s, ulong n = npos) const noexcept { return cmpNoCase(s, n) == 0; }
    bool isNot(istr const & s, ulong n = npos) const noexcept { return !is(s, n); }
    friend bool operator==(Str const & a, istr const & b) noexcept { return a.cmp(b) == 0; }
    friend bool operator==(Str const & a, Str const & b) noexcept { return a.cmp(istr(b)) == 0; }
    friend std::strong_ordering operator<=>(Str const & a, istr const & b) noexcept { return a.cmp(b) <=> 0; }
    friend std::strong_ordering operator<=>(Str const & a, Str const & b) noexcept { return a.cmp(istr(b)) <=> 0; }

    /// Convert at most `n` characters, or the whole room.
    Str & toUpper(ulong n = npos) noexcept;
    Str & toLower(ulong n = npos) noexcept;
    /// Not empty, and decimal digits only.
    bool isAllDigits() const noexcept { return StrIsAllDigits(buffer_); }
    /// Fills min(`n`, capacity - 1) places with `c`, the last of them with the terminator: the text is one shorter.
    /// Nothing for a count or a capacity of 0.
    Str & fill(int c, ulong n) noexcept;
    /// Whether the first `n` places of the room begin with `s`, compared over `n`.
    bool beginWith(istr const & s, ulong n = npos, bool noCase = false) const noexcept;
    /// The same with the last `n` places of the room (of the room, not of the text).
    bool endWith(istr const & s, ulong n = npos, bool noCase = false) const noexcept;

    /// No buffer or no text.
    bool empty() const noexcept { return buffer_ == nullptr || max_size_ == 0 || buffer_[0] == '\0'; }
    /// Whether the text ends at or before `i`.
    bool isEnd(ulong i) const noexcept { return i >= size() || buffer_[i] == '\0'; }
    /// The room that remains; `npos` when the capacity is not known.
    ulong left() const noexcept { return max_size_ == npos ? npos : max_size_ - size(); }

    /// As `ostr::dump`.
    std::ostream & dump(std::ostream & os) const { return ostr(*this).dump(os); }
};

}  // namespace yon
