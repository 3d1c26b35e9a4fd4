// The slots of the timer queue and the order in which they expire.
#pragma once

#include <array>
#include <vector>

#include "yon/timer/timer_block.h"

namespace yon {

/// A slot and its place in the order of expiry.
struct TimerSlot : TimerBlock {
    ulong heapPos = npos;  ///< in the heap; `npos`: in no queue
    ulonglong order = 0;   ///< of two that expire together the one armed first goes first
    ulong unfinished = 0;  ///< fired events that the callback thread has not ended
};

/// A fixed table of slots, the slots in use packed at the front of an index array, and a heap of those that are
/// armed. Allocates nothing. Neither locks nor reads a clock: that is its owner's task.
class TimerTable {
public:
    /// Serials go on after `serial`.
    explicit TimerTable(ulong serial) noexcept;

    ulong used() const noexcept { return idleBegin_; }
    bool full() const noexcept { return idleBegin_ >= maxTimers; }
    std::array<ulong, maxTimers> const & idStatus() const noexcept { return idStatus_; }
    /// The greatest serial given out.
    ulong serial() const noexcept;

    /// The slot of an id, or null when the id is empty, out of range or stale.
    TimerSlot * find(TimerId id) noexcept;
    /// Takes a free slot into use, under a new serial. REQUIRES: not full.
    TimerSlot & take() noexcept;
    /// The last of the slots in use. REQUIRES: there is one.
    TimerSlot & last() noexcept { return slots_[idStatus_[idleBegin_ - 1]]; }
    /// Gives the slot at `p` of the index back; false when it is free already.
    bool freeIdAt(ulong p) noexcept;

    /// Puts a slot into the order of expiry, or gives it a new place.
    void arm(TimerSlot & slot, Time expiry) noexcept;
    /// Takes it out, if it is in.
    void disarm(TimerSlot & slot) noexcept;
    /// The slot that expires first, or null.
    TimerSlot * first() noexcept { return armed_ == 0 ? nullptr : heap_[0]; }

    /// The slots in use: the armed ones as they expire, then the others.
    std::vector<TimerSlot const *> inOrder() const;

private:
    static bool earlier(TimerSlot const * a, TimerSlot const * b) noexcept;
    void place(TimerSlot * slot, ulong at) noexcept;
    void up(TimerSlot * slot, ulong at) noexcept;
    void down(TimerSlot * slot, ulong at) noexcept;

    std::array<TimerSlot, maxTimers> slots_;
    std::array<ulong, maxTimers> idStatus_;
    ulong idleBegin_ = 0;
    std::array<TimerSlot *, maxTimers> heap_;
    ulong armed_ = 0;
    ulonglong order_ = 0;
};

}  // namespace yon
