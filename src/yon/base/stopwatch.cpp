#include "yon/base/stopwatch.h"

#include "yon/platform/platform.h"

namespace yon {

namespace {

Time monotonicNow() noexcept { return Time(platform::monotonicMicroseconds()); }

}  // namespace

void TimeCounter::start() noexcept { begin_ = monotonicNow(); }

Time TimeCounter::elapsed() const noexcept { return monotonicNow() - begin_; }

void Stopwatch::start() noexcept {
    if (!running_) begin_ = monotonicNow();
    running_ = true;
}

Time Stopwatch::stop() {
    Time const ended = lap();
    running_ = false;
    return ended;
}

Time Stopwatch::lap() {
    Time const now = monotonicNow();
    Time length;
    if (running_) {
        length = now - begin_;
        laps_.push_back(length);
        ended_ += length;
    }
    begin_ = now;
    running_ = true;
    return length;
}

void Stopwatch::reset() noexcept { *this = Stopwatch(); }

Time Stopwatch::total() const noexcept { return running_ ? ended_ + (monotonicNow() - begin_) : ended_; }

}  // namespace yon
