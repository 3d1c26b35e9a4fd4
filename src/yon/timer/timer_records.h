// What one operation of the timer queue has to record.
#pragma once

#include <optional>
#include <variant>
#include <vector>

#include "yon/base/diagnostics.h"
#include "yon/timer/timer_block.h"
#include "yon/timer/timer_callback_thread.h"

namespace yon {

/// Collects records under the queue's monitor and writes them when it is destroyed, after the monitor is left:
/// declare it in front of the guard. What cannot be collected for want of memory is left out.
class TimerRecords : private noncopyable {
public:
    /// Debug records go under `category`, if it is on.
    TimerRecords(TimerCallbackThread & callbacks, istr category) noexcept
        : callbacks_(callbacks), category_(category), debugOn_(diagnostics::categoryOn(category)) {}
    ~TimerRecords();

    // A record with its line, function and text, and what it tells after its text: an id, a slot, a number.

    void error(unsigned int line, char const * function, char const * text, auto const &... subject) noexcept {
        add({diagnostics::Level::error, line, function, text, Subject(subject...)});
    }
    void warning(unsigned int line, char const * function, char const * text, auto const &... subject) noexcept {
        add({diagnostics::Level::warning, line, function, text, Subject(subject...)});
    }
    void debug(unsigned int line, char const * function, char const * text, auto const &... subject) noexcept {
        if (debugOn_) add({diagnostics::Level::debug, line, function, text, Subject(subject...)});
    }

private:
    using Subject = std::variant<std::monostate, TimerId, TimerBlock, ulong>;
    struct Entry {
        diagnostics::Level level;
        unsigned int line;
        char const * function;
        char const * text;
        Subject subject;
    };

    [[gnu::cold]] void add(Entry const & entry) noexcept;
    void write() noexcept;

    TimerCallbackThread & callbacks_;
    istr const category_;
    bool const debugOn_;
    std::vector<Entry> entries_;
    std::optional<TimerCallbackThread::Pin> pin_;  ///< the callback objects in the entries stay until they are shown
};

}  // namespace yon
