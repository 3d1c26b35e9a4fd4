// `DateTimeText`: the date-time text of one moment after the other.
#pragma once

#include "yon/base/time.h"

namespace yon {

/// Formats moments as `Time::toDateTime` does, but only the milliseconds while the second stays the same.
class DateTimeText {
public:
    /// Valid until the next call.
    istr at(Time moment) {
        auto const us = static_cast<ulonglong>(moment.toMicroSeconds());
        if (us - second_ >= inSecond || text_.empty()) {
            text_ = moment.toDateTime();
            second_ = static_cast<ulonglong>(moment.toSeconds()) * inSecond;
        } else {
            unsigned const ms = static_cast<unsigned>(us - second_) / 1000;
            char * const digits = text_.data() + text_.size() - 3;
            digits[0] = static_cast<char>('0' + ms / 100);
            digits[1] = static_cast<char>('0' + ms / 10 % 10);
            digits[2] = static_cast<char>('0' + ms % 10);
        }
        return text_;
    }

private:
    static constexpr ulonglong inSecond = 1'000'000;

    ulonglong second_ = 0;  ///< its first microsecond, modulo 2^64
    String text_;
};

}  // namespace yon
