#include "yon/util/test_runner.h"

#include <atomic>
#include <condition_variable>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <mutex>
#include <sstream>
#include <thread>

#include "yon/base/stopwatch.h"
#include "yon/log/console.h"
#include "yon/log/logger_factory.h"
#include "yon/platform/process_end.h"
#include "yon/util/test_leftovers.h"

namespace yon::test {

namespace {

constexpr int statusOfSlowness = 124;

/// The failures of the case that is running, from all threads.
class Running {
public:
    void begin(Result & result) {
        std::lock_guard const guard(lock_);
        result_ = &result;
    }
    void end() {
        std::lock_guard const guard(lock_);
        result_ = nullptr;
    }
    void add(String const & failure) {
        std::lock_guard const guard(lock_);
        if (result_ != nullptr) {
            result_->failures.push_back(failure);
        } else {
            std::fprintf(stderr, "failed outside of a test case: %s\n", failure.c_str());
        }
    }

private:
    std::mutex lock_;
    Result * result_ = nullptr;
};

/// Never destroyed: checks may come from threads that outlive main.
Running & running() {
    static Running & r = *new Running;
    return r;
}

void addFailure(String const & failure) {
    console::println("  " + failure);
    console::flush();
    running().add(failure);
}

/// What is written when the case crashes; made before it begins, so that the handler only writes.
char crashText[512];

extern "C" void yonTestCaseCrashed(int signal) {
    platform::tellStandardError(crashText, std::strlen(crashText));
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

/// Names the case on standard error if the process crashes during its life.
class CrashNotice {
public:
    explicit CrashNotice(String const & path) {
        std::snprintf(crashText, sizeof crashText, "CRASHED %s\n", path.c_str());
        for (std::size_t i = 0; i < count; ++i) before_[i] = std::signal(signals[i], yonTestCaseCrashed);
    }
    CrashNotice(CrashNotice const &) = delete;
    ~CrashNotice() {
        for (std::size_t i = 0; i < count; ++i) std::signal(signals[i], before_[i]);
    }

private:
    static constexpr std::size_t count = 4;
    static constexpr int signals[count] = {SIGSEGV, SIGABRT, SIGFPE, SIGILL};
    void (*before_[count])(int);
};

/// Ends the process unless it is destroyed within the limit.
class Watchdog {
public:
    Watchdog(String const & path, Time limit) : thread_([this, path, limit] { watch(path, limit); }) {}
    Watchdog(Watchdog const &) = delete;
    ~Watchdog() {
        {
            std::lock_guard const guard(lock_);
            ended_ = true;
        }
        wake_.notify_one();
        thread_.join();
    }

private:
    void watch(String const & path, Time limit) {
        std::unique_lock guard(lock_);
        auto const end = std::chrono::steady_clock::now() + std::chrono::microseconds(limit.toMicroSeconds());
        if (wake_.wait_until(guard, end, [this] { return ended_; })) return;
        String const text = "HUNG " + path + ": not done in " + std::to_string(limit.toSeconds()) + " seconds\n";
        platform::tellStandardError(text.data(), text.size());
        console::flush();
        logger_factory::flush();
        std::_Exit(statusOfSlowness);
    }

    std::mutex lock_;
    std::condition_variable wake_;
    bool ended_ = false;
    std::thread thread_;
};

/// Calls the body; what it lets out is a failure.
void callBody(Case const & c) {
    try {
        c.body();
    } catch (detail::CaseEnded const &) {
    } catch (...) {
        addFailure("let out: " + detail::raisedText());
    }
}

}  // namespace

namespace detail {

void fail(diagnostics::Location const & where, istr expression, istr values) noexcept {
    std::ostringstream text;
    text << where.file << ':' << where.line << ": " << expression;
    if (!values.empty()) text << "\n    " << values;
    addFailure(text.str());
}

String raisedText() {
    std::ostringstream text;
    text << "raised was ";
    try {
        throw;
    } catch (ExceptionBase const & e) {
        text << e;
    } catch (std::exception const & e) {
        text << e.what();
    } catch (...) {
        text << "something that is no exception";
    }
    return text.str();
}

}  // namespace detail

Result runCase(Case const & c, Time timeLimit) {
    Result result;
    result.which = &c;
    running().begin(result);
    Leftovers const before;
    TimeCounter const watch;
    {
        CrashNotice const notice(c.path());
        Watchdog const watchdog(c.path(), timeLimit);
        callBody(c);
    }
    result.duration = watch.elapsed();
    for (String const & leftover : before.since()) addFailure("left behind: " + leftover);
    running().end();
    return result;
}

}  // namespace yon::test
