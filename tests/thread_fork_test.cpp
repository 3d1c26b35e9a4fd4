#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <thread>

#include "yon/yon.h"

namespace yon {
namespace {

bool knowsItself() {
    return SimpleThread::current().sThreadId_ ==
               "<" + std::to_string(::getpid()) + "." + std::to_string(::gettid()) + ">" &&
           ThreadId::current() == static_cast<unsigned>(::gettid());
}

struct Waiting : SimpleThread {
    Waiting() : SimpleThread(nullptr, "waiting") {}
    bool onWait() override { return wait(Time::seconds(1000)); }
};

/// What it returns is the exit code of a child, and that of the call.
template <class Body>
int inChild(Body body) {
    pid_t const child = ::fork();
    if (child == 0) {
        ::alarm(20);
        ::_exit(body());
    }
    int status = -1;
    ::waitpid(child, &status, 0);
    return status;
}

/// The child is one thread, with an id of its own, whatever the others were at when the process forked.
TEST(Threads, know_who_they_are_after_a_fork) {
    EXPECT_TRUE(knowsItself());
    std::atomic<bool> on{true};
    std::thread busy([&] {
        while (on) std::thread([] { SimpleThread::current(); }).join();
    });
    for (int i = 0; i < 50; ++i) {
        EXPECT_EQ(inChild([] {
                      if (!knowsItself() || ThreadFactory::instance()->size() != 1) return 1;
                      Handle<Waiting> const thread(new Waiting);
                      thread->start();
                      thread->stop();
                      return ThreadFactory::instance()->size() == 1 ? 0 : 2;
                  }),
                  0);
    }
    on = false;
    busy.join();
    EXPECT_TRUE(knowsItself());
}

/// A thread that the system refuses can be started later, also when it belongs to no handle.
TEST(Threads, can_be_started_after_the_system_has_refused) {
    EXPECT_EQ(inChild([] {
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
              }),
              0);
}

}  // namespace
}  // namespace yon
