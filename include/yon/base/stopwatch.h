// `TimeCounter` and `Stopwatch`: how long something took, by a clock that nobody sets.
#pragma once

#include <vector>

#include "yon/base/time.h"

namespace yon {

/// Measures from its construction or the last `start()`. A plain value.
class YON_API TimeCounter {
public:
    TimeCounter() noexcept { start(); }
    void start() noexcept;
    Time elapsed() const noexcept;

private:
    Time begin_;
};

/// Adds up the laps between each start and stop. Begins stopped; one object belongs to one thread at a time.
class YON_API Stopwatch {
public:
    /// Begins a lap. Nothing when one runs.
    void start() noexcept;
    /// Ends the running lap and gives its length; zero when none runs.
    Time stop();
    /// Ends the running lap, begins the next one at the same moment, and gives the length of the one that ended. As
    /// `start()`, with zero, when none runs.
    Time lap();
    /// Forgets all laps and stops.
    void reset() noexcept;

    bool running() const noexcept { return running_; }
    /// The laps that ended, in their order.
    std::vector<Time> const & laps() const noexcept { return laps_; }
    /// The sum of all laps, with what has passed of the running one.
    Time total() const noexcept;

private:
    std::vector<Time> laps_;
    Time ended_;
    Time begin_;
    bool running_ = false;
};

}  // namespace yon
