// The bytes that the parts of nbr agree on.
#pragma once

#include <cstddef>

namespace yon::nbr {

inline constexpr unsigned char textMark = 0xF0;
inline constexpr unsigned mostSizeBytes = 4;

/// FF 01 and a bracket begin and end a complex value.
inline constexpr char beginMarker[] = {'\xFF', '\1', '('};
inline constexpr char endMarker[] = {'\xFF', '\1', ')'};
inline constexpr std::size_t markerSize = sizeof beginMarker;

/// Behind the tag FF, bytes of this size look like the end marker.
inline constexpr unsigned char markerLikeSize = ')';

inline bool isMarker(char const * p, std::size_t left, char bracket) noexcept {
    return left >= markerSize && p[0] == '\xFF' && p[1] == '\1' && p[2] == bracket;
}

}  // namespace yon::nbr
