// `LogChannel`: the two files of a logger, known to the process so that no line is lost at its end.
#pragma once

#include "yon/log/log_file.h"
#include "yon/timer/service_timer.h"

namespace yon {

/// Registers itself for the end of the process, crashes and forks for as long as it lives.
class LogChannel {
public:
    /// The switches stay the caller's. The timer calls `onTimer(arg)`.
    LogChannel(std::atomic<bool> const & useFile, std::atomic<bool> const & useDebugFile, void (*onTimer)(void *),
               void * arg);
    LogChannel(LogChannel const &) = delete;
    LogChannel & operator=(LogChannel const &) = delete;
    /// Writes everything out.
    ~LogChannel();

    void flush() noexcept {
        main.flush();
        debug.flush();
    }

    /// Guards the names of both files, and what the logger finds by name.
    mutable detail::SystemLock names;
    LogFile main;
    LogFile debug;
    ServiceTimer timer;

private:
    friend struct ChannelList;
    LogChannel * previous_ = nullptr;
    LogChannel * next_ = nullptr;
};

/// Writes out the channels whose timer is not set.
void flushUntimed() noexcept;

// Around a fork: the list and all channels are locked; the child forgets the lines that its parent will write.
void lockChannels() noexcept;
void unlockChannels() noexcept;
void unlockChannelsOfChild() noexcept;

}  // namespace yon
