// `ThreadControl`: names a running or ended thread; and pauses of the calling thread.
#pragma once

#include "yon/base/time.h"
#include "yon/mt/handle.h"
#include "yon/mt/handle_wrapper.h"
#include "yon/mt/rec_mutex.h"
#include "yon/mt/thread_id.h"

namespace yon {

/// A thread of the operating system, to be waited for or asked whether it is alive, any number of times and by any
/// thread. A value: copies share the system's handle, and one object may be used by several threads. It keeps neither
/// the thread nor the `Thread` object alive.
class YON_API ThreadControl {
public:
    /// The calling thread.
    ThreadControl();
    ThreadControl(Handle<HandleWrapper> const & handle, ThreadId id) : handle_(handle), id_(id) {}
    ThreadControl(ThreadControl const & other);
    ThreadControl & operator=(ThreadControl const & other);
    ~ThreadControl() = default;

    /// Waits until the thread has ended; a thread does not wait for itself. Raise `NullHandleException` without a
    /// handle and `ThreadSyscallException`.
    void join() const;
    /// Waits no longer than the limit; whether the thread has ended.
    bool join(Time const & limit) const;
    /// Whether the thread has not ended yet; false without a handle.
    bool isAlive() const;
    /// Does nothing: handles that go away leave the thread alone.
    void detach() noexcept {}
    /// Belongs to the thread as long as it is alive; afterwards the system uses it again.
    ThreadId id() const;

    /// By the ids.
    bool operator==(ThreadControl const & other) const { return id() == other.id(); }
    bool operator!=(ThreadControl const & other) const { return id() != other.id(); }
    bool operator<(ThreadControl const & other) const { return id() < other.id(); }

    static ThreadControl current() { return ThreadControl(); }
    /// Pauses the calling thread, never shorter than this; nothing for 0 and less but to let others run.
    static void sleep(Time const & time) noexcept;
    /// Lets other threads run.
    static void yield() noexcept;

private:
    Handle<HandleWrapper> handle() const;

    RecMutex mutex_;
    Handle<HandleWrapper> handle_;
    ThreadId id_;
};

/// Pauses the calling thread, never shorter than this.
YON_API void sleep(unsigned long milliseconds) noexcept;

}  // namespace yon
