#include "yon/platform/threads.h"

#include <pthread.h>
#include <sched.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstring>
#include <ctime>
#include <new>

#include "yon/platform/alternate_stack.h"
#include "yon/platform/locks.h"
#include "yon/platform/platform.h"
#include "yon/platform/posix/futex.h"

namespace yon::platform {

namespace {

constexpr longlong forEver = LLONG_MAX;

timespec timeOf(longlong microseconds) noexcept {
    return {static_cast<std::time_t>(microseconds / 1000000), static_cast<long>(microseconds % 1000000 * 1000)};
}

longlong deadlineAfter(longlong microseconds) noexcept {
    longlong deadline = 0;
    return __builtin_add_overflow(monotonicMicroseconds(), microseconds, &deadline) ? forEver : deadline;
}

/// A number that changes once, from 0, and can be waited for.
class Event {
public:
    unsigned get() const noexcept { return value_.load(std::memory_order_acquire); }
    void set(unsigned value) noexcept {
        value_.store(value, std::memory_order_release);
        futexWake(&value_, INT_MAX);
    }
    /// False when the deadline on the monotonic clock has come first.
    bool wait(longlong deadline) noexcept {
        while (get() == 0) {
            longlong const left = deadline - (deadline == forEver ? 0 : monotonicMicroseconds());
            if (left <= 0) return false;
            timespec const time = timeOf(left);
            futexWait(&value_, 0, deadline == forEver ? nullptr : &time);
        }
        return true;
    }

private:
    std::atomic<std::uint32_t> value_{0};
};

/// What a thread and its handles share. Threads of the system can be waited for only once, and only those that the
/// library has started; and what an id means once the thread has ended nobody knows.
class State {
public:
    State(void (*routine)(void *), void * argument) noexcept : routine_(routine), argument_(argument) {}
    State(State const &) = delete;
    State & operator=(State const &) = delete;

    void hold() noexcept { users_.fetch_add(1, std::memory_order_relaxed); }
    void release() noexcept {
        if (users_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
    }

    int start(unsigned stackSize) noexcept;
    unsigned waitForId() noexcept;
    bool alive() const noexcept { return ended_.get() == 0; }
    int join(longlong deadline) noexcept;

    /// At the end of the thread, on itself.
    static void end(void * self) noexcept;

private:
    ~State() {
        if (joinable_ && joined_.get() == 0) ::pthread_detach(thread_);
    }

    static void * run(void * self);

    void (*const routine_)(void *);
    void * const argument_;
    std::atomic<int> users_{1};
    pthread_t thread_{};
    bool joinable_ = false;  ///< started by the library
    Event id_;
    Event ended_;
    std::atomic<bool> joining_{false};
    Event joined_;
};

class ThreadHandle final : public HandleObject {
public:
    explicit ThreadHandle(State & state) noexcept : state_(state) {}
    ThreadHandle(ThreadHandle const &) = delete;
    ThreadHandle & operator=(ThreadHandle const &) = delete;
    ~ThreadHandle() override { state_.release(); }

    State & state_;
};

State & stateOf(void * handle) noexcept {
    return static_cast<ThreadHandle *>(static_cast<HandleObject *>(handle))->state_;
}

void * handleOf(State & state) noexcept {
    HandleObject * const handle = new (std::nothrow) ThreadHandle(state);
    if (handle != nullptr) state.hold();
    return handle;
}

int State::start(unsigned stackSize) noexcept {
    pthread_attr_t attributes;
    if (int const error = ::pthread_attr_init(&attributes); error != 0) return error;
    // What is less than a thread needs to begin, or is not made of whole pages, would be refused.
    constexpr std::size_t page = 4096;
    std::size_t const least = static_cast<std::size_t>(PTHREAD_STACK_MIN);
    std::size_t const size = (std::max<std::size_t>(stackSize, least) + page - 1) / page * page;
    int error = stackSize == 0 ? 0 : ::pthread_attr_setstacksize(&attributes, size);
    hold();
    if (error == 0) error = ::pthread_create(&thread_, &attributes, run, this);
    ::pthread_attr_destroy(&attributes);
    joinable_ = error == 0;
    if (error != 0) release();
    return error;
}

void * State::run(void * self) {
    AlternateStack const stack;
    State & state = *static_cast<State *>(self);
    bool const watched = setSlot(Slot::thread, self, end);
    state.id_.set(currentThreadId());
    state.routine_(state.argument_);
    if (!watched) end(self);
    return nullptr;
}

void State::end(void * self) noexcept {
    State & state = *static_cast<State *>(self);
    state.ended_.set(1);
    state.release();
}

unsigned State::waitForId() noexcept {
    id_.wait(forEver);
    return id_.get();
}

int State::join(longlong deadline) noexcept {
    if (!ended_.wait(deadline)) return timedOut;
    if (!joinable_) return done;
    // From here on it is a matter of the thread's last instructions.
    if (joining_.exchange(true)) {
        joined_.wait(forEver);
        return done;
    }
    int const error = ::pthread_join(thread_, nullptr);
    joined_.set(1);
    return error;
}

}  // namespace

CreatedThread createThread(void (*routine)(void *), void * argument, unsigned stackSize) noexcept {
    State * const state = new (std::nothrow) State(routine, argument);
    if (state == nullptr) return {nullptr, 0, ENOMEM};
    CreatedThread created{handleOf(*state), 0, ENOMEM};
    if (created.handle != nullptr) created.error = state->start(stackSize);
    if (created.error == 0) {
        created.id = state->waitForId();
    } else if (created.handle != nullptr) {
        closeHandle(created.handle);
        created.handle = nullptr;
    }
    state->release();
    return created;
}

void * openThisThread() noexcept {
    if (void * const state = slot(Slot::thread)) return handleOf(*static_cast<State *>(state));
    State * const state = new (std::nothrow) State(nullptr, nullptr);
    if (state == nullptr) return nullptr;
    if (setSlot(Slot::thread, state, State::end)) return handleOf(*state);
    state->release();
    return nullptr;
}

bool threadAlive(void * handle) noexcept { return stateOf(handle).alive(); }

int joinThread(void * handle) noexcept { return stateOf(handle).join(forEver); }

int joinThread(void * handle, longlong limit) noexcept { return stateOf(handle).join(deadlineAfter(limit)); }

void nameThisThread(istr name) noexcept {
    char text[16] = {};
    std::size_t length = std::min<std::size_t>(name.size(), sizeof text - 1);
    // Not in the middle of a character of UTF-8.
    while (length < name.size() && length > 0 && (name.data()[length] & 0xC0) == 0x80) --length;
    std::memcpy(text, name.data(), length);
    ::pthread_setname_np(::pthread_self(), text);
}

void pauseThread(longlong microseconds) noexcept {
    if (microseconds <= 0) {
        ::sched_yield();
        return;
    }
    timespec const until = timeOf(deadlineAfter(microseconds));
    while (::clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &until, nullptr) == EINTR) {
    }
}

}  // namespace yon::platform
