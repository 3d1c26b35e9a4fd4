// Processes that fork while their threads are busy.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <sstream>
#include <thread>
#include <vector>

#include "file_testing.h"
#include "yon/base/throw.h"
#include "yon/log/crash_report.h"
#include "yon/log/logger_factory.h"
#include "yon/log/macros.h"
#include "yon/mt/simple_thread.h"
#include "yon/pml/file.h"
#include "yon/pml/pml_parser.h"
#include "yon/util/singleton_T.h"

namespace yon {
namespace {

/// The status of a forked process that does this. One that hangs is ended by a signal.
template <class Work>
int inChild(Work work, pid_t * id = nullptr) {
    pid_t const child = ::fork();
    if (child == 0) {
        ::alarm(20);
        work();
        ::_exit(0);
    }
    if (id != nullptr) *id = child;
    int status = -1;
    ::waitpid(child, &status, 0);
    return status;
}

/// Takes its time, and needs another one.
struct Slow {
    Slow() { std::this_thread::sleep_for(std::chrono::milliseconds(1)); }
    int const * const other = Singleton_T<int>::instance("", 0, "");
};
using Single = Singleton_T<Slow>;

/// Takes every lock of the library that a fork could catch.
void useEverything() {
    YON_TRACE(logger_factory::yon());
    YON_DELETE(YON_NEW(double)());
    MemLeakChecker::count();
    pml::Unit tree;
    for (ulong i = 0; i < 1000; ++i) tree.addChild("", "1");
    logger_factory::instance("fork.busy").write("busy\n");
    try {
        YON_THROW(OutOfRangeException);
    } catch (OutOfRangeException const & e) {
        std::ostringstream() << e;
    }
    SimpleThread::current();
    Single::instance("", 0, "");
}

/// Forks while other threads make what the first use makes, and while this one makes a singleton. How many children
/// have failed.
int forkAmongBusyThreads(std::string const & logFile) {
    logger_factory::instance("fork.busy").filename(logFile);
    MemLeakChecker::enable(true);
    std::atomic<bool> going{true};
    std::vector<std::thread> busy;
    for (int i = 0; i < 3; ++i) {
        busy.emplace_back([&going, i] {
            while (going) {
                useEverything();
                if (i == 0) Single::destroy();
            }
        });
    }
    struct Forking {
        int const status = inChild(useEverything);
    };
    int failed = Singleton_T<Forking>::instance("", 0, "")->status != 0;
    for (int i = 0; i < 10; ++i) failed += inChild(useEverything) != 0;
    going = false;
    for (std::thread & t : busy) t.join();
    return failed;
}

TEST(Fork, TheChildFindsEveryLockFree) {
    if (YON_SANITIZED) GTEST_SKIP() << "the memory of the sanitizers does not survive forks";
    TemporaryDirectory const directory("fork");
    std::string const name = directory.file("busy.log");
    for (int i = 0; i < 10; ++i) ASSERT_EQ(inChild([&] { ::_exit(forkAmongBusyThreads(name)); }), 0) << i;
}

TEST(Fork, TheChildReportsItsOwnCrash) {
    TemporaryDirectory const directory("fork");
    std::string const name = directory.file("report.pml");
    ASSERT_TRUE(CrashReport::install(name));
    YON_TRACE(logger_factory::yon());
    pid_t id = 0;
    int const status = inChild([] { std::raise(SIGSEGV); }, &id);
    CrashReport::uninstall();
    EXPECT_TRUE(YON_SANITIZED || (WIFSIGNALED(status) && WTERMSIG(status) == SIGSEGV)) << status;
    EXPECT_FALSE(std::filesystem::exists(name));
    pml::Unit report;
    ASSERT_TRUE(pml::ntvFromPml(report, pml::File(name + "." + std::to_string(id))));
    ulong thread = 0;
    EXPECT_TRUE(report["thread"] >> thread);
    EXPECT_EQ(thread, static_cast<ulong>(id));
    // The threads of the parent are not there, and this one keeps its calls.
    EXPECT_EQ(report.find("threads/[1]"), nullptr);
    EXPECT_NE(report.find("threads/[0]/crashed"), nullptr);
    EXPECT_NE(report.find("threads/[0]/stack/[0]"), nullptr);
}

}  // namespace
}  // namespace yon
