// `TimerId`: names one setting of a timer.
#pragma once

#include <compare>
#include <cstddef>
#include <functional>
#include <iosfwd>

#include "yon/base/config.h"
#include "yon/base/types.h"

namespace yon {

class dumper;

/// The position of a timer's slot and the serial number of its setting. A position is used again, a serial is not (it
/// starts over after 4 billion settings of one slot), so an id that was kept too long is recognised. Serials begin
/// with 1: an id with serial 0 is empty. A plain value, ordered by serial, then position.
struct TimerId {
    constexpr TimerId() noexcept = default;
    constexpr TimerId(ulong serial, ulong position) noexcept : serial_(serial), position_(position) {}

    constexpr ulong serial() const noexcept { return serial_; }
    constexpr ulong position() const noexcept { return position_; }
    /// Both numbers in one, the serial in the upper half.
    constexpr ulonglong get() const noexcept { return ulonglong{serial_} << 32 | position_; }
    constexpr bool empty() const noexcept { return serial_ == 0; }
    constexpr void reset() noexcept { *this = TimerId(); }

    friend constexpr bool operator==(TimerId, TimerId) noexcept = default;
    friend constexpr std::strong_ordering operator<=>(TimerId, TimerId) noexcept = default;

    /// Writes "{serial, position}".
    YON_API std::ostream & dump(std::ostream & os) const;
    YON_API dumper & dump(dumper & d) const;

private:
    ulong serial_ = 0;
    ulong position_ = 0;
};

/// Writes "{serial, position}".
inline std::ostream & operator<<(std::ostream & os, TimerId id) { return id.dump(os); }

}  // namespace yon

template <>
struct std::hash<yon::TimerId> {
    std::size_t operator()(yon::TimerId id) const noexcept { return std::hash<yon::ulonglong>()(id.get()); }
};
