// `LogThread`: what the logging layer keeps for each thread.
#pragma once

#include <memory>

#include "yon/log/date_time_text.h"
#include "yon/log/message_stream.h"
#include "yon/log/thread_trace.h"
#include "yon/platform/threads.h"
#include "yon/string/string_buffer.h"

namespace yon {

/// Made when its thread first logs, deleted when the thread ends; that of the main thread serves until the process is
/// gone. Only its own thread uses it.
struct LogThread {
    LogThread() = default;
    LogThread(LogThread const &) = delete;
    LogThread & operator=(LogThread const &) = delete;
    ~LogThread();

    /// The calling thread's; null without memory.
    static LogThread * current() noexcept {
        LogThread * const there = existing();
        return there != nullptr ? there : make();
    }
    /// The same, but null if it is not there yet.
    static LogThread * existing() noexcept {
        return static_cast<LogThread *>(platform::slot(platform::Slot::callStack));
    }

    static constexpr unsigned bufferCount = 4;
    StringBuffer buffers[bufferCount];  ///< for records, by the depth of their nesting
    unsigned bufferDepth = 0;

    DateTimeText dateTime;

    detail::MessageStream * streams = nullptr;  ///< those not in use, a list

    std::unique_ptr<ThreadTrace> trace;

private:
    [[gnu::cold]] static LogThread * make() noexcept;
};

}  // namespace yon
