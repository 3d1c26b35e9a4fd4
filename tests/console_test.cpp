// The console, in child programs: this program itself, called with the name of a role.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <map>
#include <thread>

#include "file_testing.h"
#include "yon/log/console.h"
#include "yon/mt/thread_control.h"

namespace {

using yon::console;

/// Answers each command; ends with the input.
void shell() {
    while (!console::atEnd()) {
        yon::String line;
        if (console::readline(line, "> ")) console::println("got " + line);
        console::flush();
    }
}

/// Types slowly, one line in two pieces, and one without an end.
void typist() {
    for (char const * piece : {"one\ntw", "o\n", "\n", "rest"}) {
        std::cout << piece << std::flush;
        yon::sleep(150);
    }
}

void prompts() {
    yon::String line = "untouched";
    console::println("before");
    for (char const * prompt : {"first> ", "second> "}) console::readline(line, prompt);
    for (int i = 0; i < 2; ++i) console::flush();
    console::readline(line, "third> ");
    console::println(line);
    console::flush();
}

void leaveOpen() {
    console::println("pending");
    console::open();
    std::thread([] { console::println("shown"); }).join();
}

void waitForTimer() {
    console::open();
    console::println("by the timer");
    yon::sleep(1000);
    std::_Exit(0);
}

void close() {
    console::open();
    console::print("by close", 2);
    console::close();
    console::println("lost");
    console::destroy();
}

/// Prints more than a pipe holds.
void fill() {
    console::open();
    auto const start = std::chrono::steady_clock::now();
    for (int i = 0; i < 900; ++i) {
        console::println(std::string(1000, 'x'));
        if (i % 100 == 0) yon::sleep(50);
    }
    // Not by way of a stream that flushes standard output first.
    std::fputs(std::chrono::steady_clock::now() - start < std::chrono::seconds(2) ? "free" : "held up", stderr);
    std::_Exit(0);
}

/// Is not open, and prints more than is kept.
void flood() {
    for (int i = 0; i < 2000; ++i) console::println(std::string(999, 'x'));
}

std::map<std::string, void (*)()> const roles{
    {"shell", shell},     {"typist", typist}, {"prompts", prompts},
    {"leave", leaveOpen}, {"fill", fill},     {"timer", waitForTimer},
    {"close", close},     {"flood", flood},   {"idle", [] { yon::sleep(3000); }},
};
std::string program;

/// Runs a shell command in which "@" is this program; returns what it writes.
std::string run(std::string command, std::string const & out) {
    for (std::size_t at = 0; (at = command.find('@')) != std::string::npos;) command.replace(at, 1, program + ' ');
    EXPECT_EQ(std::system((command + " > " + out).c_str()), 0) << command;
    std::string text = contentOf(out);
    std::erase(text, '\r');
    return text;
}

TEST(Console, ServesTerminalsPipesAndFiles) {
    TemporaryDirectory directory("console");
    std::string const out = directory.file("out");
    writeFile(directory.file("none"), "");
    EXPECT_EQ(run("@typist | @shell", out), "> got one\n> got two\n> got \n> got rest\n");
    EXPECT_EQ(run("@prompts < " + directory.file("none"), out), "first> \nbefore\nthird> \nuntouched\n");
    EXPECT_EQ(run("@leave", out), "pending\nshown\n");
    EXPECT_EQ(run("@timer", out), "by the timer\n");
    EXPECT_EQ(run("@close", out), "by");
    EXPECT_EQ(run("@flood", out).size(), 1049'000u) << "one line more than 1 MiB";
    run("@fill 2> " + directory.file("note") + " | @idle", out);
    EXPECT_EQ(contentOf(directory.file("note")), "free") << "a blocked terminal holds up nobody";
}

}  // namespace

int main(int argc, char ** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (argc > 1) return roles.at(argv[1])(), 0;
    // No blanks and no drive, so that no shell needs quotes.
    namespace fs = std::filesystem;
    program = fs::relative(fs::absolute(argv[0])).make_preferred().string();
    return RUN_ALL_TESTS();
}
