// `Timer_T<T>`: a timer that calls a member function.
//
//     struct Session {
//         void ping(void *);
//         yon::Timer_T<Session> timer{this, &Session::ping};
//     };
//     session.timer.setTimer(1, 500, 0);  // every 500 ms
#pragma once

#include "yon/log/dumper.h"
#include "yon/mt/lock.h"
#include "yon/mt/rec_mutex.h"
#include "yon/timer/timerManager.h"

namespace yon {

/// One timer, which calls a member of its owner on the callback thread. Once it is destroyed no call comes; the
/// destructor waits for one that runs, unless it runs as part of it. So the timer is the last member of its owner, a
/// destructor of the owner that does anything calls `killTimerAndWait` first, and nobody destroys the timer, or sets
/// it anew, under a lock that the member function takes. Callable from any thread.
template <class T>
class Timer_T : public ITimerObject {
public:
    using Member = void (T::*)(void * param);

    /// Without an owner or a member nothing is called.
    Timer_T(T * owner, Member member) noexcept : owner_(owner), member_(member) {}
    Timer_T(Timer_T const &) = delete;
    Timer_T & operator=(Timer_T const &) = delete;
    ~Timer_T() override { killTimerAndWait(); }

    /// Sets the timer: every `interval` ms, `times` times, without end for 0. One that is set ends before. False when
    /// the service refuses.
    bool setTimer(ulong userTimerId, ulong interval, ulong times, void * param = nullptr) {
        for (;;) {
            // Whatever is still to come for the setting before comes now: an object knows only its last id.
            TimerId const before = id();
            if (!before.empty()) TimerManager::instance()->killTimerAndWait(before);
            // The events of the new one wait for this lock, and with it for the id.
            Lock const lock(mutex_);
            if (id_ != before) continue;
            id_.reset();
            userTimerId_ = userTimerId;
            return TimerManager::instance()->setTimer(id_, userTimerId, interval, this, times, param);
        }
    }
    bool resetTimer(ulong interval, ulong times) {
        return TimerManager::instance()->resetTimer(id(), interval, times);
    }
    /// A call that is due already may still come.
    bool killTimer() { return TimerManager::instance()->killTimer(id()); }
    /// No call comes after this.
    bool killTimerAndWait() {
        TimerId const last = id();
        return !last.empty() && TimerManager::instance()->killTimerAndWait(last);
    }

    /// Of the last setting; empty before the first.
    TimerId id() const {
        Lock const lock(mutex_);
        return id_;
    }

    void onTimeout(ulong serial, ulong position, ulong userTimerId, void * param) override {
        T * owner = nullptr;
        Member member = nullptr;
        {
            Lock const lock(mutex_);
            if (id_ == TimerId(serial, position) && userTimerId_ == userTimerId) {
                owner = owner_;
                member = member_;
            }
        }
        // The member may destroy this timer.
        if (owner != nullptr && member != nullptr) (owner->*member)(param);
    }
    void onRelease(ulong, ulong, ulong, void *) override {}

    dumper & dump(dumper & d) const override {
        TimerId const last = id();
        d.push("yon::Timer_T", "@");
        d.field("id_", last);
        d.pop();
        return d;
    }

private:
    RecMutex mutex_;
    T * const owner_;
    Member const member_;
    TimerId id_;             ///< under the lock
    ulong userTimerId_ = 0;  ///< under the lock
};

}  // namespace yon
