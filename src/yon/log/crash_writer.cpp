#include "yon/log/crash_writer.h"

#include <chrono>

namespace yon {

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
    using namespace std::chrono;
    sys_time<std::chrono::microseconds> const moment{std::chrono::microseconds(microseconds)};
    auto const day = floor<days>(moment);
    year_month_day const date(day);
    hh_mm_ss const clock(floor<milliseconds>(moment - day));
    begin(name, "");
    put('\'');
    auto const part = [this](auto n, unsigned width, char const * end) {
        digits(static_cast<ulonglong>(n), 10, width);
        put(end);
    };
    part(static_cast<int>(date.year()), 4, "-");
    part(static_cast<unsigned>(date.month()), 2, "-");
    part(static_cast<unsigned>(date.day()), 2, " ");
    part(clock.hours().count(), 2, ":");
    part(clock.minutes().count(), 2, ":");
    part(clock.seconds().count(), 2, ".");
    part(clock.subseconds().count(), 3, " UTC')\n");
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
