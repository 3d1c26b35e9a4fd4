// `Time`: a moment or an interval in microseconds.
#pragma once

#include <chrono>
#include <compare>
#include <functional>
#include <iosfwd>
#include <limits>

#include "yon/base/config.h"
#include "yon/base/string.h"

namespace yon {

namespace detail {

/// Rounds down and saturates.
template <class Rep, class Period>
constexpr longlong countMicroseconds(std::chrono::duration<Rep, Period> d) noexcept {
    using Limits = std::numeric_limits<longlong>;
    // `long double` holds every 64-bit count exactly.
    std::chrono::duration<long double, std::micro> const exact = d;
    if (exact.count() >= static_cast<long double>(Limits::max())) return Limits::max();
    if (exact.count() <= static_cast<long double>(Limits::min())) return Limits::min();
    return std::chrono::floor<std::chrono::duration<longlong, std::micro>>(d).count();
}

}  // namespace detail

/// A signed 64-bit count of microseconds: as a moment since 1970-01-01 00:00 UTC, as an interval by itself. A plain
/// value. Arithmetic and conversions saturate at the greatest and the least value instead of overflowing, so "for
/// ever" stays for ever; divisions round down, before 1970 too. Converts from every duration and from the points of
/// the system clock, and to microseconds and such points, without a word.
class Time {
public:
    constexpr Time() noexcept = default;
    constexpr explicit Time(longlong microseconds) noexcept : us_(microseconds) {}
    template <class Rep, class Period>
    constexpr Time(std::chrono::duration<Rep, Period> d) noexcept : us_(detail::countMicroseconds(d)) {}
    template <class Duration>
    constexpr Time(std::chrono::time_point<std::chrono::system_clock, Duration> t) noexcept
        : Time(t.time_since_epoch()) {}

    /// The wall clock.
    YON_API static Time now() noexcept;
    static constexpr Time microSeconds(longlong n) noexcept { return Time(n); }
    static constexpr Time milliSeconds(longlong n) noexcept { return Time(product(n, 1000)); }
    static constexpr Time seconds(longlong n) noexcept { return Time(product(n, 1000000)); }
    static constexpr Time max() noexcept { return Time(greatest); }
    static constexpr Time min() noexcept { return Time(least); }

    constexpr longlong toMicroSeconds() const noexcept { return us_; }
    constexpr longlong toMilliSeconds() const noexcept { return floorDiv(us_, 1000); }
    constexpr longlong toSeconds() const noexcept { return floorDiv(us_, 1000000); }
    /// The moment as local time, "2009-09-16 09:30:31.250". Years beyond 9999 take more digits.
    YON_API String toDateTime() const;
    /// The interval as "[-]H:MM:SS.mmm", cut to milliseconds.
    YON_API String toDuration() const;

    constexpr operator std::chrono::microseconds() const noexcept { return std::chrono::microseconds(us_); }
    constexpr operator std::chrono::system_clock::time_point() const noexcept {
        using Point = std::chrono::system_clock::time_point;
        if (*this >= Time(Point::max())) return Point::max();
        if (*this <= Time(Point::min())) return Point::min();
        return Point(std::chrono::duration_cast<Point::duration>(std::chrono::microseconds(us_)));
    }

    constexpr Time & operator+=(Time t) noexcept {
        longlong sum = 0;
        if (__builtin_add_overflow(us_, t.us_, &sum)) sum = us_ < 0 ? least : greatest;
        us_ = sum;
        return *this;
    }
    constexpr Time & operator-=(Time t) noexcept {
        longlong difference = 0;
        if (__builtin_sub_overflow(us_, t.us_, &difference)) difference = us_ < 0 ? least : greatest;
        us_ = difference;
        return *this;
    }
    friend constexpr Time operator+(Time a, Time b) noexcept { return a += b; }
    friend constexpr Time operator-(Time a, Time b) noexcept { return a -= b; }
    friend constexpr bool operator==(Time, Time) noexcept = default;
    friend constexpr std::strong_ordering operator<=>(Time, Time) noexcept = default;

private:
    static constexpr longlong greatest = std::numeric_limits<longlong>::max();
    static constexpr longlong least = std::numeric_limits<longlong>::min();

    static constexpr longlong floorDiv(longlong a, longlong b) noexcept { return a / b - (a % b < 0); }
    static constexpr longlong product(longlong n, longlong factor) noexcept {
        longlong p = 0;
        return __builtin_mul_overflow(n, factor, &p) ? (n < 0 ? least : greatest) : p;
    }

    longlong us_ = 0;
};

/// Writes `toDateTime()`.
YON_API std::ostream & operator<<(std::ostream & os, Time t);

}  // namespace yon

template <>
struct std::hash<yon::Time> {
    std::size_t operator()(yon::Time t) const noexcept { return std::hash<yon::longlong>()(t.toMicroSeconds()); }
};
