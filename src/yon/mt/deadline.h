#pragma once

#include <algorithm>

#include "yon/base/time.h"
#include "yon/platform/platform.h"

namespace yon::detail {

/// The moment at which a wait ends, by the monotonic clock. Saturates, so that for ever stays for ever.
class Deadline {
public:
    explicit Deadline(Time const & limit) noexcept : end_(now() + limit) {}

    /// What is left, 0 or less when it has passed.
    Time left() const noexcept { return end_ == Time::max() ? end_ : end_ - now(); }
    /// What is left for a call of the system, at most about 24 days: rounded up, so that nobody is woken too early.
    unsigned leftMilliseconds() const noexcept {
        constexpr longlong greatest = 0x7fffffff;
        longlong const left = std::max(this->left(), Time()).toMicroSeconds();
        return static_cast<unsigned>(std::min(left / 1000 + (left % 1000 != 0), greatest));
    }

private:
    static Time now() noexcept { return Time::microSeconds(platform::monotonicMicroseconds()); }

    Time end_;
};

}  // namespace yon::detail
