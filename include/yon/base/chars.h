// Functions over raw memory, single characters and NUL-terminated text.
//
// Common rules: a null pointer never crashes them (the argument or a neutral value comes back), a length of `npos`
// means "up to the NUL", and comparisons treat a null and an empty text alike. Lengths beyond a buffer are the
// caller's fault. All are reentrant; classification and case follow the locale of the process.
#pragma once

#include <cctype>
#include <cstring>
#include <cwctype>
#include <iosfwd>

#include "yon/base/config.h"
#include "yon/base/types.h"

namespace yon {

struct istr;
class String;

/// `n`, or the counted length when `n` is `npos`; 0 for null.
inline ulong StrLen(char const * s, ulong n = npos) noexcept {
    if (s == nullptr) return 0;
    return n != npos ? n : toLength(std::strlen(s));
}
/// The same over UTF-16 units.
inline ulong StrLen(wchar const * s, ulong n = npos) noexcept {
    if (s == nullptr) return 0;
    return n != npos ? n : toLength(std::char_traits<wchar>::length(s));
}
inline ulong StrLen(std::nullptr_t, ulong = npos) noexcept { return 0; }
/// The length of `s`, at most `max`; never reads past `max` characters.
inline ulong StrLenN(char const * s, ulong max) noexcept {
    return s == nullptr ? 0 : static_cast<ulong>(::strnlen(s, max));
}

/// The pointer itself, or the literal "<null>".
inline char const * SafeStr(char const * s) noexcept { return s != nullptr ? s : "<null>"; }
inline char const * SafeStr(std::nullptr_t) noexcept { return "<null>"; }
inline unsigned char const * SafeStr(unsigned char const * s) noexcept {
    return s != nullptr ? s : reinterpret_cast<unsigned char const *>("<null>");
}

/// Fills `n` bytes with `c`; returns `p`.
inline void * MemSet(void * p, int c, ulong n) noexcept { return p != nullptr ? std::memset(p, c, n) : nullptr; }
/// Copies `n` bytes forward; returns `dst`. The blocks may overlap.
inline void * MemCopy(void * dst, void const * src, ulong n) noexcept {
    if (dst == nullptr || src == nullptr || dst == src || n == 0) return dst;
    return std::memmove(dst, src, n);
}
/// As `MemCopy`, and writes a NUL at `dst[n]` (at `dst[0]` when `src` is null): `n + 1` bytes of room.
YON_API void * MemCopyZ(void * dst, void const * src, ulong n) noexcept;
/// -1, 0 or 1 by the first differing byte, unsigned. A null side is less than a block that is not null.
inline int MemCmp(void const * a, void const * b, ulong n) noexcept {
    if (a == b || n == 0) return 0;
    if (a == nullptr) return -1;
    if (b == nullptr) return 1;
    int const r = std::memcmp(a, b, n);
    return (r > 0) - (r < 0);
}

/// The upper-case hexadecimal digit of the low four bits.
inline char HexToChar(unsigned char b) noexcept { return "0123456789ABCDEF"[b & 0x0F]; }
/// The value of a hexadecimal digit of either case; 255 for anything else.
YON_API unsigned char HexFromChar(char c) noexcept;

/// Whether `c` occurs in `set`, whose terminating NUL counts as a member. False for a null set.
inline bool CharIn(char c, char const * set) noexcept { return set != nullptr && std::strchr(set, c) != nullptr; }

inline bool CharIsSpace(char c) noexcept { return std::isspace(static_cast<unsigned char>(c)) != 0; }
inline bool CharIsSpace(wchar c) noexcept { return std::iswspace(static_cast<std::wint_t>(c)) != 0; }
inline bool CharIsPrint(char c) noexcept { return std::isprint(static_cast<unsigned char>(c)) != 0; }
inline bool CharIsPrint(wchar c) noexcept { return std::iswprint(static_cast<std::wint_t>(c)) != 0; }
inline bool CharIsCntrl(char c) noexcept { return std::iscntrl(static_cast<unsigned char>(c)) != 0; }
inline bool CharIsUpper(char c) noexcept { return std::isupper(static_cast<unsigned char>(c)) != 0; }
inline bool CharIsLower(char c) noexcept { return std::islower(static_cast<unsigned char>(c)) != 0; }
inline bool CharIsAlpha(char c) noexcept { return std::isalpha(static_cast<unsigned char>(c)) != 0; }
inline bool CharIsDigit(char c) noexcept { return std::isdigit(static_cast<unsigned char>(c)) != 0; }
inline bool CharIsPunct(char c) noexcept { return std::ispunct(static_cast<unsigned char>(c)) != 0; }
inline bool CharIsXdigit(char c) noexcept { return std::isxdigit(static_cast<unsigned char>(c)) != 0; }
inline bool CharIsAlnum(char c) noexcept { return std::isalnum(static_cast<unsigned char>(c)) != 0; }
inline bool CharIsGraph(char c) noexcept { return std::isgraph(static_cast<unsigned char>(c)) != 0; }
inline char CharToLower(char c) noexcept { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); }
inline char CharToUpper(char c) noexcept { return static_cast<char>(std::toupper(static_cast<unsigned char>(c))); }

/// Copies `n` characters of `src` (all of them for `npos`, none for null) and terminates: `n + 1` bytes of room.
/// A shorter `src` is padded with NULs. Returns `dst`.
YON_API char * StrCopy(char * dst, char const * src, ulong n = npos) noexcept;
/// Appends at most `n` characters of `src` and terminates; the caller guarantees the room. Returns `dst`.
YON_API char * StrCat(char * dst, char const * src, ulong n = npos) noexcept;

/// Compares at most `n` characters: negative, 0 or positive. Ignoring case compares upper-case forms.
YON_API int StrCmp(char const * a, char const * b, ulong n = npos, bool noCase = false) noexcept;
/// The same over views. When one side is a prefix of the other the result is the difference of their lengths.
YON_API int StrCmp(istr a, istr b, ulong n = npos, bool noCase = false) noexcept;
/// The core of `StrCmp`. REQUIRES: both pointers not null, `a` not empty.
YON_API int StrCmpUnsafe(char const * a, char const * b, ulong n, bool noCase) noexcept;

/// Convert at most `n` characters in place, stopping at the NUL; return `s`.
YON_API char * StrToUpper(char * s, ulong n = npos) noexcept;
YON_API char * StrToLower(char * s, ulong n = npos) noexcept;
/// True when the text is not empty and every character is a decimal digit.
YON_API bool StrIsAllDigits(char const * s) noexcept;
/// Erases trailing white space.
YON_API void StrTrimRight(String & s);
/// Whether the text begins with `prefix`, case-sensitively.
YON_API bool StrBeginWith(char const * s, istr prefix) noexcept;

/// The character at `i` (`i == size`, the terminator, included); a NUL beyond it or for null.
YON_API char const & CharAt(char const * s, ulong size, ulong i) noexcept;
YON_API unsigned char const & CharAt(unsigned char const * s, ulong size, ulong i) noexcept;
inline char const & CharAt(std::nullptr_t, ulong size, ulong i) noexcept {
    return CharAt(static_cast<char const *>(nullptr), size, i);
}
/// The same to write to. Raises `OutOfRangeException` for null and for `i > size`.
YON_API char & CharAt(char * s, ulong size, ulong i);
YON_API unsigned char & CharAt(unsigned char * s, ulong size, ulong i);

/// Writes a printable character as it is, a control character by name ("<LF>", "^A"), any other one as a backslash
/// and its octal code. Leaves the stream decimal.
YON_API std::ostream & Print(std::ostream & os, char c);
/// Writes the text, or "<null>".
YON_API std::ostream & Print(std::ostream & os, char const * s);

}  // namespace yon
