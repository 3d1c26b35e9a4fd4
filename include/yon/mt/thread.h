// `Thread`: the object that starts a thread and runs its body.
#pragma once

#include <atomic>

#include "yon/mt/noncopyable.h"
#include "yon/mt/shared.h"
#include "yon/mt/thread_control.h"

namespace yon {

/// Base of threads; applications derive from `SimpleThread`. Objects belong to handles. A running thread holds a
/// reference to its own object, so an object that nobody else holds is deleted at the end of its thread; one that
/// does not belong to handles, on the stack say, needs `__setNoDelete(true)` and has to outlive its thread. The
/// functions may be called from any thread.
class YON_API Thread : public Shared, private noncopyable {
public:
    Thread() noexcept = default;
    ~Thread() override;

    /// Starts the thread, once in the life of the object; 0 is the system's usual stack size. The id is valid when
    /// this returns. Raises `ThreadStartedException` and `ThreadSyscallException`.
    ThreadControl start(unsigned int stackSize = 0);

    bool started() const noexcept { return started_.load(std::memory_order_acquire); }

    // These raise `ThreadNotStartedException`.

    ThreadControl getThreadControl() const;
    ThreadId id() const;
    /// By the ids.
    bool operator==(Thread const & other) const;
    bool operator!=(Thread const & other) const { return !(*this == other); }
    bool operator<(Thread const & other) const;

private:
    /// The body. What it lets out is recorded and ends the thread.
    virtual void run_i() = 0;

    ThreadControl start_i(unsigned int stackSize);
    static void startHook(void * thread);
    void publish(ThreadId id) noexcept;
    ThreadId idFor(unsigned int line, char const * func) const;

    std::atomic<bool> started_{false};
    std::atomic<unsigned int> id_{0};
    RecMutex mutex_;
    Handle<HandleWrapper> handle_;
};

}  // namespace yon
