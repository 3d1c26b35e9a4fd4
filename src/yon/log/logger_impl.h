// What a logger holds behind its switches.
#pragma once

#include <map>
#include <vector>

#include "yon/base/scalars.h"
#include "yon/log/log_channel.h"

namespace yon {

/// The switches of applications and messages stand under the lock of the names.
struct logger::Impl : LogChannel {
    using Switches = std::map<String, Bit>;
    enum class State { fresh, starting, ready };

    explicit Impl(logger & owner);
    ~Impl();

    LogFile::Limits limits() const noexcept {
        return {maxLines.load(std::memory_order_relaxed), maxBytes.load(std::memory_order_relaxed)};
    }

    Switches appLogs;
    Switches msgLogs;
    std::vector<bool> disabled;  ///< the switches as they were when "enable" 0 has put them out; else empty
    std::atomic<ulong> maxLines{100};
    std::atomic<ulong> maxBytes{32768};
    std::atomic<LoggerCallback *> callback{nullptr};
    std::atomic<LoggerCallback *> debugCallback{nullptr};
    std::atomic<State> state{State::fresh};
    std::atomic<std::string const *> id{nullptr};  ///< owned, never changed
};

}  // namespace yon
