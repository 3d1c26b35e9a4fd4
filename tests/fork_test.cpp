// Processes that fork while their threads are busy.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <sstream>

#include "file_testing.h"
#include "thread_testing.h"
#include "yon/yon.h"

namespace yon {
namespace {

/// The status of a forked process that ends with what `work` returns. One that hangs is ended by a signal.
template <class Work>
int inChild(Work work, pid_t * id = nullptr) {
    pid_t const child = ::fork();
    if (child == 0) {
        ::alarm(20);
        ::_exit(work());
    }
    if (id != nullptr) *id = child;
    int status = -1;
    ::waitpid(child, &status, 0);
    return status;
}

/// Takes every lock of the library that a fork could catch.
int useEverything() {
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
    return Time::now().toDateTime().empty() ? 1 : 0;
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

TEST(Fork, TheChildDropsTheLinesOfItsParent) {
    TemporaryDirectory const directory("fork");
    std::string const name = directory.file("a.log");
    logger & log = logger_factory::instance("fork");
    log.filename(name);
    constexpr int forks = 50;
    std::atomic<bool> end{false};
    InThreads(2, [&](int thread) {
        for (int i = 0; thread == 1 && !end; ++i) {
            log.write("thread " + std::to_string(i) + '\n');
            if (i % 100 == 0) std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        for (int i = 0; thread == 0 && i < forks; ++i) {
            log.write("parent " + std::to_string(i) + '\n');
            auto const write = [&] {
                logger_factory::instance("fork").write("child " + std::to_string(i) + '\n');
                logger_factory::flush();
                return 0;
            };
            EXPECT_EQ(inChild(write), 0) << i;
        }
        end = true;
    });
    log.flush();
    auto const counts = countsOf(linesOf(name));
    EXPECT_TRUE(counts.size() == 3 && counts.at("parent ") == forks && counts.at("child ") == forks);
    EXPECT_EQ(log.counters().rotations, 0u);
}

bool knowsItself() {
    return SimpleThread::current().sThreadId_ ==
               "<" + std::to_string(::getpid()) + "." + std::to_string(::gettid()) + ">" &&
           ThreadId::current() == static_cast<unsigned>(::gettid());
}

struct Waiting : SimpleThread {
    Waiting() : SimpleThread(nullptr, "waiting") {}
    bool onWait() override { return wait(Time::seconds(1000)); }
};

/// The child is one thread, with an id of its own, whatever the others were at when the process forked.
TEST(Fork, ThreadsKnowWhoTheyAre) {
    if (YON_SANITIZED) GTEST_SKIP() << "the sanitizers allow no threads in a forked child";
    std::atomic<bool> on{true};
    InThreads const busy(1, [&](int) {
        while (on) std::thread([] { SimpleThread::current(); }).join();
    });
    auto const startThread = [] {
        if (!knowsItself() || ThreadFactory::instance()->size() != 1) return 1;
        Handle<Waiting> const thread(new Waiting);
        thread->start();
        thread->stop();
        return ThreadFactory::instance()->size() == 1 ? 0 : 2;
    };
    EXPECT_TRUE(knowsItself());
    for (int i = 0; i < 50; ++i) EXPECT_EQ(inChild(startThread), 0);
    on = false;
    EXPECT_TRUE(knowsItself());
}

/// A thread that the system refuses can be started later, also when it belongs to no handle.
TEST(Fork, AThreadThatTheSystemHasRefusedCanBeStarted) {
    if (YON_SANITIZED) GTEST_SKIP() << "the sanitizers allow no tight limits";
    auto const refuseAndStart = [] {
        Waiting thread;
        thread.__setNoDelete(true);
        rlimit unlimited{};
        ::getrlimit(RLIMIT_AS, &unlimited);
        rlimit const tight{rlim_t{256} << 20, unlimited.rlim_max};
        ::setrlimit(RLIMIT_AS, &tight);
        int error = 0;
        try {
            thread.start(0xF0000000U);
        } catch (ThreadSyscallException const & e) {
            error = e.error();
        }
        ::setrlimit(RLIMIT_AS, &unlimited);
        if (error != EAGAIN || thread.started()) return 1;
        thread.start();
        thread.stop();
        return 0;
    };
    EXPECT_EQ(inChild(refuseAndStart), 0);
}

TEST(Fork, TheChildReportsItsOwnCrash) {
    TemporaryDirectory const directory("fork");
    std::string const name = directory.file("report.pml");
    ASSERT_TRUE(CrashReport::install(name));
    YON_TRACE(logger_factory::yon());
    pid_t id = 0;
    int const status = inChild([] { return std::raise(SIGSEGV); }, &id);
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
