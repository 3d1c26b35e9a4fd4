#include "yon/timer/timer_table.h"

#include <algorithm>
#include <tuple>

namespace yon {

TimerTable::TimerTable(ulong serial) noexcept {
    for (ulong i = 0; i < maxTimers; ++i) {
        slots_[i].id = TimerId(serial, i);
        slots_[i].m_statusPos = i;
        idStatus_[i] = i;
    }
}

ulong TimerTable::serial() const noexcept {
    ulong greatest = 0;
    for (TimerSlot const & slot : slots_) greatest = std::max(greatest, slot.id.serial());
    return greatest;
}

TimerSlot * TimerTable::find(TimerId id) noexcept {
    if (id.empty() || id.position() >= maxTimers) return nullptr;
    TimerSlot & slot = slots_[id.position()];
    return slot.id == id ? &slot : nullptr;
}

TimerSlot & TimerTable::take() noexcept {
    TimerSlot & slot = slots_[idStatus_[idleBegin_++]];
    ulong const serial = slot.id.serial() + 1;
    slot.id = TimerId(serial != 0 ? serial : 1, slot.id.position());
    slot.unfinished = 0;
    return slot;
}

bool TimerTable::freeIdAt(ulong p) noexcept {
    if (p >= idleBegin_) return false;
    ulong const last = --idleBegin_;
    if (p != last) {
        std::swap(slots_[idStatus_[p]].m_statusPos, slots_[idStatus_[last]].m_statusPos);
        std::swap(idStatus_[p], idStatus_[last]);
    }
    return true;
}

void TimerTable::arm(TimerSlot & slot, Time expiry) noexcept {
    disarm(slot);
    slot.m_expiredTime = expiry;
    slot.order = order_++;
    up(&slot, armed_++);
}

void TimerTable::disarm(TimerSlot & slot) noexcept {
    ulong const at = slot.heapPos;
    if (at == npos) return;
    slot.heapPos = npos;
    TimerSlot * const last = heap_[--armed_];
    if (last == &slot) return;
    // The last one fills the gap and moves to where it belongs.
    if (earlier(last, &slot)) {
        up(last, at);
    } else {
        down(last, at);
    }
}

std::vector<TimerSlot const *> TimerTable::inOrder() const {
    std::vector<TimerSlot const *> slots(heap_.begin(), heap_.begin() + armed_);
    std::sort(slots.begin(), slots.end(), earlier);
    slots.reserve(used());
    for (ulong i = 0; i < idleBegin_; ++i) {
        TimerSlot const & slot = slots_[idStatus_[i]];
        if (slot.heapPos == npos) slots.push_back(&slot);
    }
    return slots;
}

bool TimerTable::earlier(TimerSlot const * a, TimerSlot const * b) noexcept {
    return std::tie(a->m_expiredTime, a->order) < std::tie(b->m_expiredTime, b->order);
}

void TimerTable::place(TimerSlot * slot, ulong at) noexcept {
    heap_[at] = slot;
    slot->heapPos = at;
}

void TimerTable::up(TimerSlot * slot, ulong at) noexcept {
    for (ulong parent = 0; at > 0 && earlier(slot, heap_[parent = (at - 1) / 2]); at = parent) {
        place(heap_[parent], at);
    }
    place(slot, at);
}

void TimerTable::down(TimerSlot * slot, ulong at) noexcept {
    for (ulong child = 0; (child = 2 * at + 1) < armed_; at = child) {
        if (child + 1 < armed_ && earlier(heap_[child + 1], heap_[child])) ++child;
        if (!earlier(heap_[child], slot)) break;
        place(heap_[child], at);
    }
    place(slot, at);
}

}  // namespace yon
