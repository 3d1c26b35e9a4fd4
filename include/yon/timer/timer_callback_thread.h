#pragma once

#include <array>
#include <atomic>
#include <memory>
#include <utility>

#include "yon/mt/monitor.h"
#include "yon/mt/simple_thread.h"
#include "yon/timer/timerCallbackBlock.h"

namespace yon {

class TimerQueue;

/// The thread that runs the callbacks of a timer queue, one event after the other as they were posted. Once it is
/// stopped it calls `onTimeout` no more, delivers the released events that are left, and ends. The functions may be
/// called from any thread unless stated otherwise.
class YON_API TimerCallbackThread : public SimpleThread {
public:
    /// The queue owns the thread, and outlives it.
    TimerCallbackThread(TimerQueue & queue, char const * name);
    ~TimerCallbackThread() override;

    /// The calling thread, when it is one of these; otherwise null.
    static TimerCallbackThread * current() noexcept;
    TimerQueue & queue() const noexcept { return queue_; }

    /// Makes room, so that posting so many events raises nothing. Raises `std::bad_alloc`.
    void reserve(std::size_t count);
    /// Appends events and wakes the thread. Allocates only when more events wait than ever before; then it may raise
    /// `std::bad_alloc`, and nothing is posted.
    void post(TimerCallbackBlock const * events, std::size_t count);
    /// Waits until all events that were posted before the call have been run. Not on the thread itself.
    void waitForPosted();
    /// Delivers the released event of a setting that is queued here and now, and drops its other events. Only on the
    /// thread itself.
    void takeBack(TimerId id);

    /// While there is a pin no released event is delivered: whoever saw a timer set, and pinned under the queue's
    /// monitor, may use its callback object.
    class YON_API Pin {
    public:
        explicit Pin(TimerCallbackThread & thread) noexcept : thread_(&thread) { ++thread.pins_; }
        Pin(Pin && other) noexcept : thread_(std::exchange(other.thread_, nullptr)) {}
        ~Pin();

    private:
        TimerCallbackThread * thread_;
    };

    bool onBirth() override;
    void onWork() override;
    void onDeath() override;
    void onStop() override;

private:
    class Ring;

    bool takeEvents(bool wait);
    void runTaken();
    void deliver(TimerCallbackBlock const & event) noexcept;
    void poll() const noexcept;
    bool finished(ulong goal) const noexcept;
    void finish();
    void waitForPins();

    static constexpr ulong farGoal = 1u << 30;

    TimerQueue & queue_;
    Monitor events_;  ///< guards the two that follow
    std::unique_ptr<Ring> ring_;
    bool waiting_ = false;            ///< the thread waits for events
    std::atomic<ulong> posted_{0};    ///< so many events; starts over after 4 billion
    std::atomic<ulong> finished_{0};  ///< of these

    // Used by the thread alone.
    std::array<TimerCallbackBlock, 64> taken_;
    std::size_t takenCount_ = 0;
    std::size_t takenNext_ = 0;

    Monitor progress_;                      ///< waited on for finished events, and for pins to go
    std::atomic<ulong> watchers_{0};        ///< those who wait for events
    std::atomic<ulong> nextGoal_{farGoal};  ///< the first that one of them waits for
    std::atomic<ulong> pins_{0};
    std::atomic<bool> waitsForPins_{false};
};

}  // namespace yon
