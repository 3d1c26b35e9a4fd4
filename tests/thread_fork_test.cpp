#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <thread>

#include "yon/yon.h"

namespace yon {
namespace {

bool knowsItself() {
    return SimpleThread::current().sThreadId_ ==
               "<" + std::to_string(::getpid()) + "." + std::to_string(::gettid()) + ">" &&
           ThreadId::current() == static_cast<unsigned>(::gettid());
}

/// The child is one thread, with an id of its own, whatever the others were at when the process forked.
TEST(Threads, know_who_they_are_after_a_fork) {
    EXPECT_TRUE(knowsItself());
    std::atomic<bool> on{true};
    std::thread busy([&] {
        while (on) std::thread([] { SimpleThread::current(); }).join();
    });
    for (int i = 0; i < 50; ++i) {
        pid_t const child = ::fork();
        if (child == 0) {
            ::alarm(20);
            bool good = knowsItself() && ThreadFactory::instance()->size() == 1;
            struct Nothing : SimpleThread {
                Nothing() : SimpleThread(nullptr, "nothing") {}
                bool onWait() override { return wait(Time::seconds(1000)); }
            };
            Handle<Nothing> const thread(new Nothing);
            thread->start();
            thread->stop();
            good = good && ThreadFactory::instance()->size() == 1;
            ::_exit(good ? 0 : 1);
        }
        int status = -1;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        ASSERT_EQ(status, 0);
    }
    on = false;
    busy.join();
    EXPECT_TRUE(knowsItself());
}

}  // namespace
}  // namespace yon
