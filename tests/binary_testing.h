// What the tests of the binary encodings share.
#pragma once

#include <string>

#include "record_testing.h"
#include "yon/base/chars.h"

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

/// Keeps what is reported while it lives: "kind file function message".
struct Reports final : Records {
    explicit Reports(bool traces = false) { debug = traces; }
    void exceptionThrown(diagnostics::Location const & at, istr m) noexcept override { record({}, "thrown", at, m); }
    void record(diagnostics::Level, istr tag, diagnostics::Location const & at, istr m) noexcept override {
        text += std::string(tag) + " " + at.file + " " + at.func + " " + std::string(m);
    }
    std::string text;
};

}  // namespace yon
