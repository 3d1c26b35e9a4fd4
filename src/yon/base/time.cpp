#include "yon/base/time.h"

#include <algorithm>
#include <charconv>
#include <ostream>

#include "yon/platform/platform.h"

namespace yon {

namespace {

/// Writes `value` with at least `width` digits; returns the end.
char * put(char * p, ulonglong value, int width) noexcept {
    char digits[20];
    auto const n = std::to_chars(digits, digits + sizeof digits, value).ptr - digits;
    for (auto zeros = n; zeros < width; ++zeros) *p++ = '0';
    return std::copy_n(digits, n, p);
}

char * put(char * p, char separator, int value, int width) noexcept {
    *p = separator;
    return put(p + 1, static_cast<ulonglong>(value), width);
}

ulonglong magnitude(longlong n) noexcept { return n < 0 ? 0 - static_cast<ulonglong>(n) : static_cast<ulonglong>(n); }

constexpr std::size_t room = 64;

}  // namespace

Time Time::now() noexcept { return Time(platform::wallMicroseconds()); }

String Time::toDateTime() const {
    platform::CalendarTime const t = platform::localTime(toSeconds());
    char text[room];
    char * p = text;
    if (t.year < 0) *p++ = '-';
    p = put(p, magnitude(t.year), t.year < 0 ? 3 : 4);
    p = put(p, '-', t.month, 2);
    p = put(p, '-', t.day, 2);
    p = put(p, ' ', t.hour, 2);
    p = put(p, ':', t.minute, 2);
    p = put(p, ':', t.second, 2);
    p = put(p, '.', static_cast<int>(toMilliSeconds() - toSeconds() * 1000), 3);
    return String(std::string_view(text, static_cast<std::size_t>(p - text)));
}

String Time::toDuration() const {
    ulonglong const ms = magnitude(us_) / 1000;
    char text[room];
    char * p = text;
    if (us_ < 0) *p++ = '-';
    p = put(p, ms / 3600000, 1);
    p = put(p, ':', static_cast<int>(ms / 60000 % 60), 2);
    p = put(p, ':', static_cast<int>(ms / 1000 % 60), 2);
    p = put(p, '.', static_cast<int>(ms % 1000), 3);
    return String(std::string_view(text, static_cast<std::size_t>(p - text)));
}

std::ostream & operator<<(std::ostream & os, Time t) {
    return os << static_cast<std::string const &>(t.toDateTime());
}

}  // namespace yon
