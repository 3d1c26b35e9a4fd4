#include "yon/util/test_leftovers.h"

#include <algorithm>
#include <chrono>
#include <thread>

#include "yon/base/stopwatch.h"
#include "yon/mt/thread_factory.h"
#include "yon/string/string_buffer.h"

namespace yon::test {

namespace {

/// Those that the library has started and that still run.
std::size_t libraryThreads() {
    auto const threads = ThreadFactory::instance()->threads();
    return static_cast<std::size_t>(
        std::count_if(threads.begin(), threads.end(), [](KnownThread const & t) { return t.ofLibrary; }));
}

std::size_t timersSet() { return TimerManager::instance()->timers().size(); }

/// What the library keeps for itself, such as services that came with the first use, is no fault of a case.
bool isOfLibrary(MLC_Entry const & e) {
    istr const file = e.file;
    return file.beginWith("src/yon/") || file.beginWith("include/yon/");
}

void compare(std::vector<String> & lines, istr what, std::size_t before, std::size_t now) {
    if (now <= before) return;
    StringBuffer line;
    line.append(now - before).append(' ').append(what);
    lines.push_back(line.str());
}

}  // namespace

Leftovers::Leftovers() : threads_(libraryThreads()), timers_(timersSet()) {
    MemLeakChecker::enable(true);
    blocks_ = MemLeakChecker::snapshot();
}

Leftovers::~Leftovers() { MemLeakChecker::enable(wasEnabled_); }

std::vector<String> Leftovers::since() const {
    TimeCounter const waited;
    while ((libraryThreads() > threads_ || timersSet() > timers_) && waited.elapsed() < Time::milliSeconds(500)) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    std::vector<String> lines;
    compare(lines, "library threads", threads_, libraryThreads());
    compare(lines, "timers", timers_, timersSet());
    for (MLC_Entry const & e : MemLeakChecker::since(blocks_)) {
        if (isOfLibrary(e)) continue;
        StringBuffer line;
        line.append(e.count).append(" objects made at ").append(e.file).append(':').append(e.line).append(" in ");
        line.append(e.func);
        lines.push_back(line.str());
    }
    return lines;
}

}  // namespace yon::test
