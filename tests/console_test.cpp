// The console, in child programs: this program itself, called with the name of a role.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <thread>

#include "file_testing.h"
#include "yon/log/console.h"
#include "yon/mt/thread_control.h"
#include "yon/timer/timerManager.h"

namespace {

using yon::console;
using yon::String;
using Clock = std::chrono::steady_clock;

std::string program;

// --- the roles of a child ---

/// Answers each command; ends with the input.
int shell() {
    while (!console::atEnd()) {
        String line = "untouched";
        if (console::readline(line, "> ")) {
            console::println("got " + line);
        } else if (line != "untouched") {
            return 1;
        }
        console::flush();
    }
    console::println("never shown");
    return 0;
}

/// Commands that come slowly, one in two pieces, and one without an end.
int typist() {
    for (char const * piece : {"one\ntw", "o\n", "\n", "rest"}) {
        std::cout << piece << std::flush;
        yon::sleep(150);
    }
    return 0;
}

/// How a prompt and log lines share the screen.
int prompts() {
    String line;
    console::println("before");
    console::readline(line, "first> ");
    console::readline(line, "second> ");
    console::flush();
    console::flush();
    console::readline(line, "third> ");
    console::println("after");
    console::flush();
    return 0;
}

/// Leaves main with text pending, in an open console.
int leave() {
    console::println("pending");
    console::open();
    console::print("to be ", 5);
    std::thread([] { console::println("shown"); }).join();
    return 0;
}

/// Shows the text by itself, and nothing when closed.
int timed() {
    console::open();
    console::println("by the timer");
    yon::sleep(400);
    console::println("by close");
    console::close();
    console::println("lost");
    console::destroy();
    yon::TimerManager::instance()->stop();
    return 0;
}

/// Prints more than a pipe holds while nobody reads it.
int blocked() {
    console::open();
    std::string const line(1000, 'x');
    auto const start = Clock::now();
    for (int i = 0; i < 900; ++i) {
        console::println(line);
        if (i % 100 == 0) yon::sleep(50);
    }
    // Not by way of a stream that flushes standard output first.
    std::fputs(Clock::now() - start < std::chrono::seconds(2) ? "free" : "held up", stderr);
    std::_Exit(0);
}
int idle() {
    yon::sleep(3000);
    return 0;
}

/// More than 1 MiB is written out by the thread that prints.
int flood() {
    for (int i = 0; i < 2000; ++i) console::println(std::string(999, 'x'));
    return 0;
}

int play(std::string const & role) {
    struct {
        char const * name;
        int (*run)();
    } const roles[] = {{"shell", shell}, {"typist", typist},   {"prompts", prompts}, {"leave", leave},
                       {"timed", timed}, {"blocked", blocked}, {"idle", idle},       {"flood", flood}};
    for (auto const & r : roles) {
        if (role == r.name) return r.run();
    }
    return 99;
}

// --- the tests ---

class Console : public testing::Test {
protected:
    /// Runs a shell command in which "@" is this program; returns what it writes.
    std::string run(std::string command) {
        for (std::size_t at = 0; (at = command.find('@')) != std::string::npos;)
            command.replace(at, 1, program + ' ');
        EXPECT_EQ(std::system((command + " > " + file("out") + " 2> " + file("err")).c_str()), 0) << command;
        std::string text = contentOf(file("out"));
        std::erase(text, '\r');
        return text;
    }
    std::string file(std::string const & name) { return directory_.file(name); }

    TemporaryDirectory directory_{"console"};
};

TEST_F(Console, ReadsLinesWhenTheyAreThere) {
    EXPECT_EQ(run("@typist | @shell"), "> got one\n> got two\n> got \n> got rest\n");
}

TEST_F(Console, PromptAndLogShareTheScreen) {
    writeFile(file("none"), "");
    EXPECT_EQ(run("@prompts < " + file("none")), "first> \nbefore\nthird> \nafter\n");
}

TEST_F(Console, WritesByTimerAndAtTheEnd) {
    EXPECT_EQ(run("@leave"), "pending\nto beshown\n");
    EXPECT_EQ(run("@timed"), "by the timer\nby close\n");
    EXPECT_EQ(run("@flood").size() / 1000, 1048u + 1);
}

TEST_F(Console, ABlockedTerminalHoldsUpNobody) {
    run("@blocked 2> " + file("note") + " | @idle");
    EXPECT_EQ(contentOf(file("note")), "free");
}

}  // namespace

int main(int argc, char ** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (argc > 1) return play(argv[1]);
    // No blanks and no drive, so that no shell needs quotes.
    namespace fs = std::filesystem;
    program = fs::relative(fs::absolute(argv[0])).make_preferred().string();
    return RUN_ALL_TESTS();
}
