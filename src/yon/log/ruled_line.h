// `RuledLine`: a line of the log with text at its edges and a character between.
#pragma once

#include "yon/string/string_buffer.h"
#include "yon/string/string_ref.h"

namespace yon {

/// Appends a line of 118 characters and a line feed to a buffer, which must not change while the line is laid out.
/// Text that is too long loses its far end; a blank stands between text and filling.
class RuledLine {
public:
    static constexpr ulong width = 118;

    RuledLine(StringBuffer & out, char filling) : line_(out.extend(width + 1), width) {
        line_.fill(static_cast<unsigned char>(filling), width);
        line_.buffer()[width] = '\n';
    }
    RuledLine & left(istr text) noexcept {
        line_.left(text);
        return *this;
    }
    RuledLine & right(istr text) noexcept {
        line_.right(text);
        return *this;
    }
    RuledLine & right(char c, ulong n) noexcept {
        line_.right(c, n);
        return *this;
    }

private:
    StringRef line_;
};

}  // namespace yon
