// Loggers in processes that fork.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <thread>

#include "file_testing.h"
#include "yon/log/logger_factory.h"

TEST(LogFork, TheChildDropsTheLinesOfItsParent) {
    TemporaryDirectory const directory("log-fork");
    std::string const name = directory.file("a.log");
    yon::logger & log = yon::logger_factory::instance("fork");
    log.filename(name);
    std::atomic<bool> end{false};
    std::thread busy([&] {
        for (int i = 0; !end; ++i) {
            log.write("thread " + std::to_string(i) + '\n');
            if (i % 100 == 0) std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    });
    constexpr int forks = 50;
    for (int i = 0; i < forks; ++i) {
        log.write("parent " + std::to_string(i) + '\n');
        pid_t const child = ::fork();
        if (child == 0) {
            ::alarm(20);
            yon::logger_factory::instance("fork").write("child " + std::to_string(i) + '\n');
            yon::logger_factory::flush();
            ::_exit(0);
        }
        int status = 0;
        ASSERT_TRUE(::waitpid(child, &status, 0) == child && status == 0) << i;
    }
    end = true;
    busy.join();
    log.flush();
    auto const counts = countsOf(linesOf(name));
    EXPECT_TRUE(counts.size() == 3 && counts.at("parent ") == forks && counts.at("child ") == forks);
    EXPECT_EQ(log.counters().rotations, 0u);
}
