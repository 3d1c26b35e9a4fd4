// What the tests of the binary encodings share.
#pragma once

#include <string>

#include "yon/base/chars.h"
#include "yon/base/diagnostics.h"

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
struct Reports final : diagnostics::Sink {
    explicit Reports(bool traces = false) : tracing(traces) { diagnostics::install(this); }
    ~Reports() { diagnostics::install(nullptr); }
    void exceptionThrown(diagnostics::Location const & at, istr m) noexcept override { record({}, "thrown", at, m); }
    void record(diagnostics::Level, istr tag, diagnostics::Location const & at, istr m) noexcept override {
        text += std::string(tag.data(), tag.size()) + " " + at.file + " " + at.func + " " +
                std::string(m.data(), m.size());
    }
    bool categoryOn(istr) noexcept override { return tracing; }
    void enter(diagnostics::Location const &) noexcept override {}
    void leave(diagnostics::Location const &) noexcept override {}
    void callStack(CallStack &) noexcept override {}
    bool const tracing;
    std::string text;
};

}  // namespace yon
