// Processes that fork while their threads are busy.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <sstream>

#include "file_testing.h"
#include "thread_testing.h"
#include "yon/base/throw.h"
#include "yon/log/crash_report.h"
#include "yon/log/logger_factory.h"
#include "yon/log/macros.h"
#include "yon/mt/simple_thread.h"
#include "yon/pml/file.h"
#include "yon/pml/pml_parser.h"

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
}

TEST(Fork, TheChildFindsEveryLockFree) {
    if (YON_SANITIZED) GTEST_SKIP() << "the memory of the sanitizers does not survive forks";
    TemporaryDirectory const directory("fork");
    logger_factory::instance("fork.busy").filename(directory.file("busy.log"));
    MemLeakChecker::enable(true);
    // What is made on first use is there: a child that is forked while another thread makes it waits for that thread.
    useEverything();
    std::atomic<bool> going{true};
    {
        InThreads const busy(3, [&](int) {
            while (going) useEverything();
        });
        for (int i = 0; i < 50; ++i) EXPECT_EQ(inChild(useEverything), 0) << i;
        going = false;
    }
    MemLeakChecker::enable(false);
    logger_factory::instance("fork.busy").filename("");
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
