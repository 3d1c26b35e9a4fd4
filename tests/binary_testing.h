// What the tests of the binary encodings share.
#pragma once

#include <limits>
#include <string>
#include <vector>

#include "yon/base/bytes.h"
#include "yon/base/diagnostics.h"
#include "yon/base/scalars.h"
#include "yon/base/time.h"

namespace yon {

/// Bytes as "01 FF", and back.
inline std::string hex(istr bytes) {
    std::string out;
    for (char const c : bytes) {
        static char const digits[] = "0123456789ABCDEF";
        auto const b = static_cast<unsigned char>(c);
        if (!out.empty()) out += ' ';
        out += {digits[b >> 4], digits[b & 15]};
    }
    return out;
}
inline std::string unhex(std::string const & text) {
    std::string out;
    unsigned digits = 0, byte = 0;
    for (char const c : text) {
        if (c == ' ') continue;
        byte = byte << 4 | HexFromChar(c);
        if (++digits % 2 == 0) out += static_cast<char>(byte);
    }
    return out;
}

/// Keeps what is reported while it lives.
struct Reports final : diagnostics::Sink {
    Reports() { diagnostics::install(this); }
    ~Reports() { diagnostics::install(nullptr); }
    void exceptionThrown(diagnostics::Location const & at, istr m) noexcept override { add("thrown", at, m); }
    void record(diagnostics::Level, istr tag, diagnostics::Location const & at, istr m) noexcept override {
        add(std::string_view(tag), at, m);
    }
    bool categoryOn(istr) noexcept override { return tracing; }
    void enter(diagnostics::Location const &) noexcept override {}
    void leave(diagnostics::Location const &) noexcept override {}
    void callStack(CallStack &) noexcept override {}
    void add(std::string_view kind, diagnostics::Location const & at, istr m) {
        lines.push_back(std::string(kind) + " " + at.file + " " + at.func + " " + std::string(std::string_view(m)));
    }
    bool tracing = false;
    std::vector<std::string> lines;
};

/// Calls `row(value, hex)` for values of every type and the bytes that each stands for, on every target.
template <class Row>
void forEachGoldenScalar(Row row) {
    auto const all = [&](auto value, char const * bytes, auto... others) {
        row(value, bytes);
        (row(others, bytes), ...);
    };
    all(0, "01 01 00", char(0), 0u, 0l, 0ul, 0ll, 0ull, short(0), ushort(0), 0.0f, 0.0, Time(), false, Bit(false));
    all(true, "01 01 01", Bit(true), '\1', Char('\1'), static_cast<unsigned char>(1), Byte(1), 1, Time(1));
    all(127, "01 01 7F", '\x7F', short(127), 127u, 127l, 127ul, 127ll, 127ull, Long(127), Ulonglong(127));
    all(128, "01 02 80 00", short(128), ushort(128), 128l, 128ul, 128ll, Short(128), Ulong(128));
    all(static_cast<unsigned char>(200), "01 01 C8", Byte(200));
    all(255u, "01 02 FF 00", 255, short(255), ushort(255), 255ll);
    all(-1, "01 04 FF FF FF FF", -1l, Long(-1), 0xFFFFFFFFu, 0xFFFFFFFFul, Ulong(0xFFFFFFFF));
    all(short(-1), "01 02 FF FF", char(-1), static_cast<signed char>(-1), Short(-1), Char(char(-1)), ushort(0xFFFF));
    all(-2ll, "01 08 FE FF FF FF FF FF FF FF", Longlong(-2), Time(-2));
    all(0x8000, "01 03 00 80 00", 0x8000u, 0x8000ll, Ulonglong(0x8000));
    all(std::numeric_limits<slong>::min(), "01 04 00 00 00 80", static_cast<long>(-2147483647 - 1), 0x80000000u);
    all(0x123456789ALL, "01 05 9A 78 56 34 12", Time(0x123456789A), Ulonglong(0x123456789A));
    all(std::numeric_limits<ulonglong>::max(), "01 08 FF FF FF FF FF FF FF FF", -1ll);
    all(1.0f, "01 04 00 00 80 3F", Float(1.0f));
    all(-2.5, "01 08 00 00 00 00 00 00 04 C0", Double(-2.5));
}

}  // namespace yon
