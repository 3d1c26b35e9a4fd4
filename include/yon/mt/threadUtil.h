// `AsyncThreadManager`: keeps threads that are started and forgotten.
#pragma once

#include <atomic>
#include <exception>
#include <vector>

#include "yon/mt/set.h"
#include "yon/mt/simple_thread.h"

namespace yon {

/// Holds each thread that it is given until the thread ends by itself or the manager is closed. Callable from any
/// thread. A copy has the name and the state of the original, and no threads: those report to one manager.
class YON_API AsyncThreadManager : public ThreadOwner {
public:
    explicit AsyncThreadManager(istr const & name);
    AsyncThreadManager(AsyncThreadManager const & other);
    AsyncThreadManager & operator=(AsyncThreadManager const & other);
    /// Lets the threads go. Those that still run go on without this owner.
    ~AsyncThreadManager() override;

    /// Takes a thread, which the caller starts before or afterwards, and becomes its owner if it has none. One that
    /// has ended already is not kept. Once the manager is closed this records a warning and does nothing else. Raises
    /// `NullHandleException`.
    void put(Handle<SimpleThread> thread);
    void onThreadExit(Thread * thread) override;
    /// Asks all threads to stop and waits for them, 10 seconds altogether. Threads that need longer go on without
    /// owner.
    void close();

    dumper & dump(dumper & d) const;

private:
    using Threads = mt::set<Handle<SimpleThread>>;

    std::vector<Handle<SimpleThread>> copy_i() const;
    static std::exception_ptr stop_i(std::vector<Handle<SimpleThread>> const & threads);

    Threads threads_;
    String name_;
    std::atomic<bool> closing_{false};
};

}  // namespace yon
