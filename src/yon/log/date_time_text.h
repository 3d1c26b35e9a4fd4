// `DateTimeText`: the date-time text of one moment after the other.
#pragma once

#include "yon/base/time.h"

namespace yon {

/// Formats moments as `Time::toDateTime` does, but only the milliseconds while the second stays the same.
class DateTimeText {
public:
    /// Valid until the next call.
    istr at(Time moment) {
        longlong const second = moment.toSeconds();
        if (second != second_ || text_.empty()) {
            text_ = moment.toDateTime();
            second_ = second;
        } else {
            longlong ms = moment.toMilliSeconds() - second * 1000;
            for (auto digit = text_.rbegin(); digit != text_.rbegin() + 3; ++digit, ms /= 10) {
                *digit = static_cast<char>('0' + ms % 10);
            }
        }
        return text_;
    }

private:
    longlong second_ = 0;
    String text_;
};

}  // namespace yon
