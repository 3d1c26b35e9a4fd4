// What a piece of code leaves behind in the process.
#pragma once

#include <vector>

#include "yon/base/leak_checker.h"
#include "yon/base/string.h"
#include "yon/timer/timerManager.h"

namespace yon::test {

/// Takes note of the located objects, library threads and timers that are there when it is made. Switches the leak
/// checker on for its life.
class Leftovers {
public:
    Leftovers();
    Leftovers(Leftovers const &) = delete;
    ~Leftovers();

    /// What is there now and was not before, a line each. Threads that are about to end get half a second for it.
    std::vector<String> since() const;

private:
    bool const wasEnabled_ = MemLeakChecker::enabled();
    std::vector<MLC_Entry> blocks_;
    std::size_t threads_;
    std::size_t timers_;
};

}  // namespace yon::test
