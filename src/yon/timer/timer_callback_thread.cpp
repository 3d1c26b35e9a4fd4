#include "yon/timer/timer_callback_thread.h"

#include <algorithm>
#include <vector>

#include "yon/timer/timerQueue.h"

namespace yon {

/// A queue in an array that grows and is used round and round.
class TimerCallbackThread::Ring {
public:
    std::size_t count() const noexcept { return count_; }

    void reserve(std::size_t more) {
        if (count_ + more <= events_.size()) return;
        std::vector<TimerCallbackBlock> larger(std::max(count_ + more, 2 * events_.size()));
        for (std::size_t i = 0; i < count_; ++i) larger[i] = at(i);
        events_.swap(larger);
        head_ = 0;
    }
    /// REQUIRES: room.
    void push(TimerCallbackBlock const & event) noexcept { at(count_++) = event; }
    /// The event `i` places behind the oldest.
    TimerCallbackBlock & at(std::size_t i) noexcept {
        std::size_t const index = head_ + i;
        return events_[index < events_.size() ? index : index - events_.size()];
    }
    void drop(std::size_t n) noexcept {
        head_ += n;
        if (head_ >= events_.size()) head_ -= events_.size();
        count_ -= n;
        if (count_ == 0) head_ = 0;
    }

private:
    std::vector<TimerCallbackBlock> events_{std::vector<TimerCallbackBlock>(1024)};
    std::size_t head_ = 0;
    std::size_t count_ = 0;
};

namespace {

constinit thread_local TimerCallbackThread * currentThread = nullptr;

/// How often the thread looks for more before it sleeps. Waking it costs the one who posts more than the posting.
constexpr int polls = 50;

}  // namespace

TimerCallbackThread::TimerCallbackThread(TimerQueue & queue, char const * name)
    : SimpleThread(&queue, name), queue_(queue), ring_(std::make_unique<Ring>()) {}

TimerCallbackThread::~TimerCallbackThread() = default;

TimerCallbackThread * TimerCallbackThread::current() noexcept { return currentThread; }

void TimerCallbackThread::reserve(std::size_t count) {
    Lock const lock(events_);
    ring_->reserve(count);
}

void TimerCallbackThread::post(TimerCallbackBlock const * events, std::size_t count) {
    Lock const lock(events_);
    ring_->reserve(count);
    for (std::size_t i = 0; i < count; ++i) ring_->push(events[i]);
    posted_ += static_cast<ulong>(count);
    if (waiting_) events_.notify();
    waiting_ = false;
}

bool TimerCallbackThread::finished(ulong goal) const noexcept { return static_cast<slong>(finished_ - goal) >= 0; }

void TimerCallbackThread::waitForPosted() {
    ulong const goal = posted_;
    if (finished(goal)) return;
    Lock const lock(progress_);
    ++watchers_;
    for (;;) {
        if (static_cast<slong>(goal - nextGoal_) < 0) nextGoal_ = goal;
        if (finished(goal)) break;
        progress_.wait();
    }
    --watchers_;
}

/// Counts an event that is done, and wakes those who wait if the first of them has what it waits for.
void TimerCallbackThread::finish() {
    ++finished_;
    if (watchers_ == 0 || !finished(nextGoal_)) return;
    Lock const lock(progress_);
    nextGoal_ = finished_ + farGoal;
    progress_.notifyAll();
}

/// Of a pin that the thread has seen it is told.
void TimerCallbackThread::waitForPins() {
    Lock const lock(progress_);
    waitsForPins_ = true;
    while (pins_ != 0) progress_.wait();
    waitsForPins_ = false;
}

TimerCallbackThread::Pin::~Pin() {
    if (thread_ == nullptr || --thread_->pins_ != 0 || !thread_->waitsForPins_) return;
    Lock const lock(thread_->progress_);
    thread_->progress_.notifyAll();
}

void TimerCallbackThread::takeBack(TimerId id) {
    TimerCallbackBlock released;
    auto const take = [&](TimerCallbackBlock & event) {
        if (event.id != id || event.object == nullptr) return;
        if (event.type == TimerCallbackBlock::Type::released) released = event;
        event.object = nullptr;
    };
    std::for_each(taken_.begin() + takenNext_, taken_.begin() + takenCount_, take);
    {
        Lock const lock(events_);
        for (std::size_t i = 0; i < ring_->count(); ++i) take(ring_->at(i));
    }
    if (released.object != nullptr) deliver(released);
}

bool TimerCallbackThread::onBirth() {
    currentThread = this;
    return true;
}

void TimerCallbackThread::onWork() {
    if (takeEvents(true)) {
        runTaken();
        poll();
    }
}

void TimerCallbackThread::onDeath() {
    while (takeEvents(false)) runTaken();
}

void TimerCallbackThread::onStop() {
    Lock const lock(events_);
    events_.notifyAll();
}

/// Moves the oldest events over; false when there are none.
bool TimerCallbackThread::takeEvents(bool wait) {
    Lock const lock(events_);
    if (wait && ring_->count() == 0 && living()) {
        waiting_ = true;
        events_.timedWait(Time::milliSeconds(1000));
        waiting_ = false;
    }
    takenNext_ = 0;
    takenCount_ = std::min(ring_->count(), taken_.size());
    for (std::size_t i = 0; i < takenCount_; ++i) taken_[i] = ring_->at(i);
    ring_->drop(takenCount_);
    return takenCount_ != 0;
}

void TimerCallbackThread::runTaken() {
    while (takenNext_ < takenCount_) {
        // Copied, for the callback may take events back.
        TimerCallbackBlock const event = taken_[takenNext_++];
        deliver(event);
        finish();
    }
}

void TimerCallbackThread::deliver(TimerCallbackBlock const & event) noexcept {
    bool const released = event.type == TimerCallbackBlock::Type::released;
    if (released && pins_ != 0) waitForPins();
    if (!released && !living()) return;
    if (event.exec() && living()) queue_.onTimerEnd(event.id);
}

void TimerCallbackThread::poll() const noexcept {
    for (int i = 0; i < polls && posted_ == finished_; ++i) ThreadControl::yield();
}

}  // namespace yon
