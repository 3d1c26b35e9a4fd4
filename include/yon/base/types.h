// The integer and character types that every header of the library uses.
#pragma once

#include <cstddef>
#include <string>

namespace yon {

using ushort = unsigned short;
using longlong = long long;
using ulonglong = unsigned long long;

#if defined(_WIN32)
using ulong = unsigned long;  ///< unsigned, 32 bits, on every target
using slong = long;           ///< signed, 32 bits, on every target
using wchar = wchar_t;        ///< one UTF-16 unit, on every target
#else
using ulong = unsigned int;
using slong = int;
using wchar = char16_t;
#endif

static_assert(sizeof(ulong) == 4 && sizeof(slong) == 4 && sizeof(wchar) == 2);

/// The wide string everywhere in the library: UTF-16 units.
using wstring = std::basic_string<wchar>;

/// As a length: not known, to be counted up to the terminating NUL. As a position: none.
inline constexpr ulong npos = ~ulong{0};

/// A length of the standard library as a length of ours. What does not fit saturates just below `npos`, so that it
/// neither wraps nor turns into "unknown".
constexpr ulong toLength(std::size_t n) noexcept { return n < npos ? static_cast<ulong>(n) : npos - 1; }

/// Tag that stands for an absent value.
struct null_type {};
/// Tag that stands for an empty value.
struct empty_type {};

}  // namespace yon
