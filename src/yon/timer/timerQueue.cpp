#include "yon/timer/timerQueue.h"

#include <algorithm>

#include "yon/log/dumper_stl.h"
#include "yon/platform/platform.h"
#include "yon/timer/timer_records.h"
#include "yon/timer/timer_table.h"

namespace yon {

namespace {

constexpr char const * debugCategory = "TIMER.DEBUG";
constexpr char const * traceCategory = "TIMER.TRACE";

Time monotonicNow() noexcept { return Time(platform::monotonicMicroseconds()); }

TimerBlock const & block(TimerSlot const & slot) noexcept { return slot; }

/// All in one line, in both layouts: one line for each would bury the rest.
template <class Range>
dumper & writeList(dumper & d, Range const & range) {
    istr separator = "{";
    for (auto const & element : range) {
        d.raw(separator).write(element);
        separator = ", ";
    }
    return d.raw("}");
}

TimerCallbackBlock event(TimerCallbackBlock::Type type, TimerSlot const & slot) noexcept {
    return {type, slot.id, slot.m_pCallBackTimerObject, slot.m_nUserTimerID, slot.m_pParam};
}

}  // namespace

TimerQueue::TimerQueue(ulong serial)
    : table_(std::make_unique<TimerTable>(serial)),
      expired_(std::make_unique<TimerSlot *[]>(maxTimers)),
      events_(std::make_unique<TimerCallbackBlock[]>(maxTimers)),
      currTime_(monotonicNow()),
      lastTime_(currTime_),
      callbacks_(detail::LocatedNew<TimerCallbackThread>{
          YON_LOCATION("src/yon/timer/timerQueue", 67, "yon::TimerQueue::TimerQueue")}(*this, "timer.callback")) {
    callbacks_->start();
}

TimerQueue::~TimerQueue() { stop(); }

void TimerQueue::onThreadExit(Thread *) {}

bool TimerQueue::setTimer(TimerId & id, ulong userTimerId, ulong interval, ITimerObject * object, ulong times,
                          void * param) {
    TimerRecords records(*callbacks_, debugCategory);
    Lock const lock(monitor_);
    return running_ && set(id, userTimerId, interval, object, times, param, records);
}

bool TimerQueue::set(TimerId & id, ulong userTimerId, ulong interval, ITimerObject * object, ulong times,
                     void * param, TimerRecords & records) {
    constexpr char const * function = "yon::TimerQueue::set";
    if (table_->full()) {
        records.error(164, function, "setTimer: timer queue full, no available timer");
        return false;
    }
    TimerSlot & slot = table_->take();
    id = slot.id;
    slot.m_nUserTimerID = userTimerId;
    slot.m_nInterval = Time::milliSeconds(interval);
    slot.m_pCallBackTimerObject = object;
    slot.m_unTimes = times;
    slot.m_pParam = param;
    slot.m_status = TimerStatus::busy;
    table_->arm(slot, currTime_ + slot.m_nInterval);
    records.debug(171, function, "", block(slot));
    return true;
}

bool TimerQueue::resetTimer(TimerId id, ulong interval, ulong times) {
    TimerRecords records(*callbacks_, debugCategory);
    Lock const lock(monitor_);
    return running_ && reset(id, interval, times, records);
}

bool TimerQueue::reset(TimerId id, ulong interval, ulong times, TimerRecords & records) {
    constexpr char const * function = "yon::TimerQueue::reset";
    TimerSlot * const slot = table_->find(id);
    if (slot == nullptr) {
        records.error(182, function, "resetTimer: invalid timer ", id);
        return false;
    }
    if (slot->m_status == TimerStatus::idle) {
        records.error(188, function, "resetTimer: idle timer ", block(*slot));
        return false;
    }
    slot->m_unTimes = times;
    slot->m_nInterval = Time::milliSeconds(interval);
    slot->m_status = TimerStatus::busy;
    table_->arm(*slot, currTime_ + slot->m_nInterval);
    records.debug(196, function, "", block(*slot));
    return true;
}

bool TimerQueue::killTimer(TimerId id) {
    TimerRecords records(*callbacks_, debugCategory);
    Lock const lock(monitor_);
    return running_ && kill(id, records);
}

bool TimerQueue::kill(TimerId id, TimerRecords & records) {
    constexpr char const * function = "yon::TimerQueue::kill";
    TimerSlot * const slot = table_->find(id);
    if (slot == nullptr) {
        records.warning(213, function, "killTimer: invalid timer ", id);
        return false;
    }
    if (slot->m_status == TimerStatus::idle) {
        records.warning(218, function, "killTimer: idle timer ", block(*slot));
        return false;
    }
    records.debug(222, function, "", block(*slot));
    release(*slot, records);
    return true;
}

bool TimerQueue::killTimerAndWait(TimerId id) {
    bool killed = false;
    {
        TimerRecords records(*callbacks_, debugCategory);
        Lock const lock(monitor_);
        TimerSlot * const slot = table_->find(id);
        // One that has ended by itself is nothing to warn of here.
        killed = running_ && slot != nullptr && slot->m_status != TimerStatus::idle && kill(id, records);
    }
    if (TimerCallbackThread::current() == callbacks_.get()) {
        callbacks_->takeBack(id);
    } else {
        callbacks_->waitForPosted();
    }
    return killed;
}

void TimerQueue::release(TimerSlot & slot, TimerRecords & records) {
    TimerCallbackBlock const released = event(TimerCallbackBlock::Type::released, slot);
    callbacks_->post(&released, 1);
    table_->disarm(slot);
    freeIdAt(slot.m_statusPos, records);
    slot.m_status = TimerStatus::idle;
    slot.m_pCallBackTimerObject = nullptr;
}

void TimerQueue::freeIdAt(ulong p, TimerRecords & records) {
    if (!table_->freeIdAt(p)) records.error(369, "yon::TimerQueue::freeIdAt", "killTimer: already free pos ", p);
}

void TimerQueue::check() { check(monotonicNow()); }

void TimerQueue::check(Time now) {
    TimerRecords records(*callbacks_, traceCategory);
    Lock const lock(monitor_);
    currTime_ = now;
    if (running_) doCheck(records);
}

void TimerQueue::doCheck(TimerRecords & records) try {
    TimerSlot * first = table_->first();
    if (first == nullptr || first->m_expiredTime > currTime_) return;
    callbacks_->reserve(table_->used());
    // All are taken out before the first fires, so that one with interval 0 does not keep the check busy.
    ulong count = 0;
    for (; first != nullptr && first->m_expiredTime <= currTime_; first = table_->first()) {
        expired_[count++] = first;
        table_->disarm(*first);
    }
    records.debug(266, "yon::TimerQueue::doCheck", "expired timers = ", count);
    eventCount_ = 0;
    for (ulong i = 0; i < count; ++i) onTimer(*expired_[i], records);
    callbacks_->post(events_.get(), eventCount_);
} catch (std::bad_alloc const &) {
    // No room for the events: nothing has been changed, and the next check tries again.
}

void TimerQueue::onTimer(TimerSlot & slot, TimerRecords & records) {
    constexpr char const * function = "yon::TimerQueue::onTimer";
    records.debug(283, function, "onTimer: ", block(slot));
    if (slot.m_status != TimerStatus::busy) {
        records.error(286, function, "onTimer: already free timer ", block(slot));
        return;
    }
    if (slot.m_pCallBackTimerObject == nullptr) {
        records.error(292, function, "onTimer: null callback object for timer ", block(slot));
        return;
    }
    if (slot.m_unTimes != 0 && --slot.m_unTimes == 0) {
        slot.m_status = TimerStatus::paused;
        records.debug(299, function, "set to paused ", block(slot));
    }
    ++slot.unfinished;
    events_[eventCount_++] = event(TimerCallbackBlock::Type::fired, slot);
    if (slot.m_status == TimerStatus::busy) {
        records.debug(306, function, "more times ", block(slot));
        table_->arm(slot, currTime_ + slot.m_nInterval);
    }
}

void TimerQueue::onTimerEnd(TimerId id) try {
    constexpr char const * function = "yon::TimerQueue::onTimerEnd";
    TimerRecords records(*callbacks_, traceCategory);
    Lock const lock(monitor_);
    if (!running_) return;
    TimerSlot * const slot = table_->find(id);
    if (slot == nullptr) {
        records.error(321, function, "onTimerEnd: already killed timer ", id);
        return;
    }
    // One that was set again while events of its last round waited has more to come.
    if (--slot->unfinished != 0 || slot->m_status != TimerStatus::paused) return;
    records.debug(326, function, "release ", block(*slot));
    release(*slot, records);
} catch (std::bad_alloc const &) {
    // No room for the event: the timer stays paused and can be killed.
}

void TimerQueue::waitForCheck() {
    Lock const lock(monitor_);
    if (checking_) monitor_.timedWait(checkPeriod);
}

void TimerQueue::endChecks() {
    Lock const lock(monitor_);
    checking_ = false;
    monitor_.notifyAll();
}

void TimerQueue::stop() {
    {
        TimerRecords records(*callbacks_, debugCategory);
        Lock const lock(monitor_);
        if (!running_) return;
        running_ = false;
        try {
            while (table_->used() != 0) release(table_->last(), records);
        } catch (std::bad_alloc const &) {
            // No room for the events: the others go without a word.
        }
    }
    callbacks_->stop();
}

ulong TimerQueue::serial() const {
    Lock const lock(monitor_);
    return table_->serial();
}

std::vector<TimerInfo> TimerQueue::timers() const {
    std::vector<TimerInfo> infos;
    Lock const lock(monitor_);
    Time const now = monotonicNow();
    for (TimerSlot const * slot : table_->inOrder()) {
        Time const left = slot->heapPos == npos ? Time() : std::max(slot->m_expiredTime - now, Time());
        infos.push_back({slot->id, slot->m_nUserTimerID, left, slot->m_nInterval, slot->m_unTimes, slot->m_status});
    }
    return infos;
}

dumper & TimerQueue::dump(dumper & d) const {
    Lock lock(monitor_);
    TimerCallbackThread::Pin const pin(*callbacks_);
    Time const toWallClock = Time::now() - monotonicNow();
    Time const currTime = currTime_ + toWallClock;
    std::array<ulong, maxTimers> const idStatus = table_->idStatus();
    ulong const used = table_->used();
    std::vector<TimerBlock> armed;
    for (TimerSlot const * slot : table_->inOrder()) {
        if (slot->heapPos != npos) armed.push_back(*slot);
    }
    lock.release();

    std::vector<TimeoutBlock> timeouts;
    for (TimerBlock const & b : armed) timeouts.push_back({b.m_expiredTime + toWallClock, b.id, &b});
    d.push("yon::TimerQueue", "@");
    d.field("m_idleBeginPos", used);
    d.field("m_idStatus", [&](dumper & out) -> dumper & { return writeList(out, idStatus); });
    d.field("m_currTime", currTime).field("m_lastTime", lastTime_ + toWallClock);
    d.field("m_waitTime", checkPeriod.toDuration());
    d.field("m_timeoutQueue",
            [&](dumper & out) -> dumper & { return detail::dumpElements(out, "yon::multiset", timeouts); });
    d.pop();
    return d;
}

}  // namespace yon
