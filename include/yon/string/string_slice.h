// `StringSlice`: a reader over a text that somebody else owns.
#pragma once

#include "yon/base/istr.h"

namespace yon {

class dumper;

/// A view and a cursor that moves forward through it. Owns nothing; copies read the same text. A plain value. Reading
/// or moving past the end raises `OutOfRangeException` and leaves the cursor where it is.
class YON_API StringSlice {
public:
    constexpr StringSlice() noexcept = default;
    constexpr StringSlice(istr const & text) noexcept : text_(text) {}

    /// The character at the cursor.
    char const & operator*() const {
        if (empty()) overrun();
        return text_[cursor_];
    }
    StringSlice & operator++() { return advance(1); }
    StringSlice operator++(int) {
        StringSlice const before = *this;
        advance(1);
        return before;
    }
    StringSlice & advance(ulong n) {
        if (n > left()) overrun();
        cursor_ += n;
        return *this;
    }

    /// What has not been read.
    ulong left() const noexcept { return text_.size() - cursor_; }
    istr rest() const noexcept { return text_.substr(cursor_); }
    bool empty() const noexcept { return left() == 0; }
    /// How much has been read.
    ulong cursor() const noexcept { return cursor_; }
    /// The whole text.
    istr str() const noexcept { return text_; }

    dumper & dump(dumper & d) const;

private:
    [[noreturn]] static void overrun();

    istr text_;
    ulong cursor_ = 0;
};

}  // namespace yon
