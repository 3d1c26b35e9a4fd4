// Ends in the way that its last argument names: for the tests of reports on crashes and leaks. Before that: "bare"
// ends without a crash report, "earlier" has handlers of its own, "nolog" has no log file, "unnamed" gives the report
// no name and has the log file in a directory.
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "yon/log/crash_report.h"
#include "yon/log/logger_factory.h"
#include "yon/log/macros.h"
#include "yon/mt/simple_thread.h"
#include "yon/timer/timerManager.h"

/// Asked by the address sanitizer, if there is one: the leaks are meant.
extern "C" char const * __asan_default_options() { return "detect_leaks=0"; }

namespace {

yon::logger & log() { return yon::logger_factory::yon(); }

void say(char const * text) {
    static std::FILE * const file = std::fopen("said", "wb");
    std::fputs(text, file);
    std::fflush(file);
}

void write() { *reinterpret_cast<char volatile *>(std::strtoul("16", nullptr, 10)) = 1; }

[[gnu::no_sanitize("undefined")]] void divide() {
    static int volatile zero = 0;
    zero = 100 / zero;
}

int overflow(int volatile * above) {
    int volatile room[64] = {*above + 1};
    return *above < 0 ? 0 : overflow(room) + room[0];
}

class Worker : public yon::SimpleThread {
public:
    explicit Worker(void (*work)()) : SimpleThread(nullptr, "worker"), work_(work) {}

private:
    void onWork() override {
        YON_TRACE(log());
        work_();
        livingEnd();
    }
    void (*const work_)();
};

/// Returns when the threads are gone, if they let the process live.
void runThreads(int count, void (*work)()) {
    std::vector<yon::ThreadControl> threads;
    for (int i = 0; i < count; ++i) threads.push_back((new Worker(work))->start());
    for (yon::ThreadControl const & t : threads) t.join();
}

void crashTogether() {
    static std::atomic<int> missing{4};
    auto const crash = [] {
        for (--missing; missing != 0;) std::this_thread::yield();
        write();
    };
    runThreads(4, crash);
}

/// Logs when it is destroyed, and holds a block until then.
struct Late {
    ~Late() {
        YON_LOG_INFO(log(), "from a static destructor");
        YON_DELETE(block_);
    }
    double * block_ = nullptr;
} late;

void exitLate() {
    static std::atomic<int> paused{0};
    log().mlcOn(true);
    yon::TimerManager::instance()->start();
    std::atexit([] { YON_LOG_INFO(log(), "from an exit handler"); });
    for (int t = 0; t < 3; ++t) {
        std::thread([t] {
            for (int n = 0;; ++n) {
                YON_LOG_DATA(log(), "thread " << t << " line " << n);
                YON_DELETE(YON_NEW(int)());
                // Wine does not survive that threads are ended while they open files at this pace.
                if (n == 200) ++paused;
                if (n >= 200) std::this_thread::sleep_for(std::chrono::milliseconds(2));
            }
        }).detach();
    }
    while (paused < 3) std::this_thread::yield();
    YON_LOG_INFO(log(), "before the exit");
    std::exit(0);
}

void leak() {
    log().mlcOn(true);
    late.block_ = YON_NEW(double)();
    for (int i = 0; i < 3; ++i) static_cast<void>(YON_NEW(int)());
}

std::map<std::string, std::function<void()>> const ends = {
    {"none", [] {}},
    {"write", write},
    {"append", [] { log().write(reinterpret_cast<char const *>(std::strtoul("16", nullptr, 10)), 10); }},
    {"divide", divide},
    {"trap", [] { __builtin_trap(); }},
    {"abort", [] { std::abort(); }},
    {"overflow", [] { overflow(new int(0)); }},
    {"thread", [] { runThreads(1, [] { overflow(new int(0)); }); }},
    {"terminate", [] { std::terminate(); }},
    {"throw", [] { YON_THROW(yon::OutOfRangeException, "it's 5 \\ 4 (or so)"); }},
    {"int", [] { throw 5; }},
    {"together", crashTogether},
    {"nested", [] { yon::CrashReport::onCrash([](void *) noexcept { write(); }, nullptr), write(); }},
    {"late", exitLate},
    {"leak", leak},
};

void end(std::string const & how) {
    YON_TRACE(log());
    // The number of a signal, or a name.
    if (int const number = std::atoi(how.c_str()); number != 0) {
        std::raise(number);
    } else {
        ends.at(how)();
    }
}

}  // namespace

int main(int argc, char ** argv) {
    say("");
    YON_TRACE(log());
    std::string const before = argc > 2 ? argv[1] : "";
    if (before != "nolog") log().filename(before == "unnamed" ? "logs/child.log" : "child.log");
    log().write("cached\n");
    if (before == "earlier") {
        std::signal(SIGSEGV, [](int) { say("earlier signal\n"); });
        std::set_terminate([] { say("earlier terminate\n"), std::abort(); });
    }
    yon::CrashReport::onCrash([](void * text) noexcept { say(static_cast<char const *>(text)); },
                              const_cast<char *>("hook\n"));
    if (before != "bare" && !yon::CrashReport::install(before == "unnamed" ? "" : "report.pml")) return 99;
    end(argv[argc - 1]);
}
