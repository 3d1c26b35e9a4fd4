// A program that ends in the way its first argument says, with lines in the cache for the file that the second names.
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>

#include "yon/log/logger_factory.h"
#include "yon/log/record.h"
#include "yon/timer/timerManager.h"

namespace {

using yon::logger;

logger & theLog() { return yon::logger_factory::instance("child"); }

void write(std::string const & text) { yon::writeDataLog(theLog(), __FILE__, __LINE__, "write", text.c_str()); }

/// Made before everything of the log, and so destroyed after it.
struct Late {
    ~Late() {
        if (active) write("from a destructor");
    }
    bool active = false;
} late;

std::atomic<int> busy{0};

void logForEver(int thread) {
    for (int i = 0;; ++i) {
        write("thread " + std::to_string(thread) + " line " + std::to_string(i));
        if (i == 200) ++busy;
        // Wine fails when threads are taken away while they open files, so they seldom do in the end.
        if (i >= 200) std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}

int run(std::string const & mode) {
    write("first");
    if (mode == "static") late.active = true;
    if (mode == "timers") yon::TimerManager::instance()->start();
    if (mode == "threads") {
        for (int t = 0; t < 4; ++t) std::thread(logForEver, t).detach();
        while (busy < 4) std::this_thread::yield();
        write("main line 0");
    }
    if (mode == "return") return 3;
    if (mode == "handler") {
        std::atexit([] { write("from a handler"); });
    }
    std::exit(3);
}

}  // namespace

int main(int argc, char ** argv) {
    if (argc != 3) return 1;
    theLog().filename(argv[2]);
    return run(argv[1]);
}
