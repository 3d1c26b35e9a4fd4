#include "yon/log/crash_writer.h"

namespace yon {

namespace {

struct Date {
    longlong year;
    unsigned month;
    unsigned day;
};

/// The Gregorian date of a day counted from 1970-01-01. Years begin in March here, so that a leap day is their last.
Date dateOf(longlong day) noexcept {
    constexpr longlong daysInEra = 146097;  // 400 years
    longlong const shifted = day + 719468;  // from 0000-03-01
    longlong const era = (shifted >= 0 ? shifted : shifted - daysInEra + 1) / daysInEra;
    longlong const dayOfEra = shifted - era * daysInEra;
    longlong const year = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    longlong const dayOfYear = dayOfEra - (365 * year + year / 4 - year / 100);
    auto const month = static_cast<unsigned>((5 * dayOfYear + 2) / 153);
    auto const dayOfMonth = static_cast<unsigned>(dayOfYear - (153 * month + 2) / 5 + 1);
    return {year + era * 400 + (month >= 10), month < 10 ? month + 3 : month - 9, dayOfMonth};
}

}  // namespace

void CrashWriter::put(char c) noexcept {
    if (used_ == sizeof buffer_) flush();
    buffer_[used_++] = c;
}

void CrashWriter::put(char const * s) noexcept {
    while (*s != '\0') put(*s++);
}

void CrashWriter::escaped(char const * s) noexcept {
    for (; s != nullptr && *s != '\0'; ++s) {
        if (*s == '\'' || *s == '\\') put('\\');
        put(*s);
    }
}

void CrashWriter::digits(ulonglong value, unsigned base, unsigned width) noexcept {
    char text[20];
    char * p = text + sizeof text;
    for (; value != 0 || text + sizeof text - p < static_cast<std::ptrdiff_t>(width); value /= base)
        *--p = "0123456789abcdef"[value % base];
    while (p != text + sizeof text) put(*p++);
}

void CrashWriter::begin(char const * name, char const * type) noexcept {
    for (unsigned i = 0; i < depth_; ++i) put("    ");
    put(name);
    if (*type != '\0') {
        put(':');
        put(type);
    }
    put('(');
}

void CrashWriter::open(char const * name, char const * type) noexcept {
    begin(name, type);
    put('\n');
    ++depth_;
}

void CrashWriter::close() noexcept {
    --depth_;
    for (unsigned i = 0; i < depth_; ++i) put("    ");
    put(")\n");
}

void CrashWriter::text(char const * name, char const * value, char const * type) noexcept {
    begin(name, type);
    put('\'');
    escaped(value);
    put("')\n");
}

void CrashWriter::number(char const * name, ulonglong value) noexcept {
    begin(name, "");
    digits(value);
    put(")\n");
}

void CrashWriter::hex(char const * name, ulonglong value) noexcept {
    begin(name, "");
    put("0x");
    digits(value, 16);
    put(")\n");
}

void CrashWriter::time(char const * name, longlong microseconds) noexcept {
    constexpr longlong second = 1000000;
    constexpr longlong dayLength = 86400 * second;
    longlong day = microseconds / dayLength;
    if (microseconds % dayLength < 0) --day;
    auto const rest = static_cast<ulonglong>(microseconds - day * dayLength);
    Date const date = dateOf(day);
    begin(name, "");
    put('\'');
    digits(static_cast<ulonglong>(date.year), 10, 4);
    put('-');
    digits(date.month, 10, 2);
    put('-');
    digits(date.day, 10, 2);
    put(' ');
    digits(rest / (3600 * second), 10, 2);
    put(':');
    digits(rest / (60 * second) % 60, 10, 2);
    put(':');
    digits(rest / second % 60, 10, 2);
    put('.');
    digits(rest / 1000 % 1000, 10, 3);
    put(" UTC')\n");
}

void CrashWriter::call(diagnostics::Location const & where, char const * name, char const * type) noexcept {
    begin(name, type);
    put('\'');
    escaped(where.func);
    put('(');
    escaped(where.file);
    put(':');
    digits(where.line);
    put(")')\n");
}

void CrashWriter::flush() noexcept {
    output_(buffer_, used_);
    used_ = 0;
}

}  // namespace yon
