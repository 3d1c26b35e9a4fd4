#pragma once

#include "yon/base/config.h"
#include "yon/base/types.h"
#include "yon/mt/handle.h"
#include "yon/mt/noncopyable.h"

namespace yon {

/// A periodic timer that does not end with the timer service: as long as it is started, every start of the service
/// sets it anew. For services that live as long as the process. Callable from any thread, also in callbacks and
/// before the timer service is there.
class YON_API ServiceTimer : private noncopyable {
public:
    /// `call(arg)` every `interval` ms, on the callback thread, under no lock of the library. What it throws is
    /// recorded.
    ServiceTimer(ulong interval, void (*call)(void *), void * arg);
    /// Stops it.
    ~ServiceTimer();

    /// From now on it is set whenever the service runs; at once if it does.
    void start();
    /// No longer. When this returns no call runs, or will; within a call it does not wait for itself. The caller
    /// holds no lock that calls take.
    void stop();
    /// Whether it is set. Not while the service is stopped, or if it had no slot left when it was to be set.
    bool armed() const;

private:
    friend class TimerManager;
    class Impl;

    /// Sets all that are started. Called by the service, which is running, under no lock.
    static void armAll();

    Handle<Impl> const impl_;
};

}  // namespace yon
