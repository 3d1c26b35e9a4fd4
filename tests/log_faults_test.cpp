// What loggers do when files, configurations and processes go wrong.
#include <gtest/gtest.h>

#include "file_testing.h"
#include "yon/log/console.h"
#include "yon/log/logger_factory.h"

namespace {

namespace fs = std::filesystem;
using yon::logger;

class LogFaults : public testing::Test {
protected:
    std::string file(std::string const & name) const { return directory.file(name); }
    void line(std::string const & text) {
        log.write(text + '\n');
        log.flush();
    }
    template <class Action>
    static std::string told(Action action) {
        testing::internal::CaptureStderr();
        action();
        return testing::internal::GetCapturedStderr();
    }

    TemporaryDirectory const directory{"log-faults"};
    logger log;
};

TEST_F(LogFaults, TellsOnceOfAFileThatCannotBeOpenedAndRecovers) {
    std::string const name = file("sub/a.log");
    log.filename(name);
    fs::create_directories(name);  // which no process may write to, whoever runs it
    for (int round = 1; round <= 2; ++round) {
        std::string const told = this->told([&] {
            line("lost");
            if (round == 1) fs::remove_all(file("sub"));
            line("lost, too");
        });
        EXPECT_EQ(told.find("log file " + name + " cannot be written: ("), 0u) << told;
        EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), 1) << told;
        fs::remove_all(name);
        fs::create_directories(file("sub"));
        EXPECT_EQ(this->told([&] { line("kept"); }), "");
        EXPECT_EQ(contentOf(name), "kept\n");
        fs::remove(name);
        fs::create_directories(name);
    }
    auto const counters = log.counters();
    EXPECT_TRUE(counters.dropped == 4 && counters.failedOpens == 4 && counters.written == 2);
}

TEST_F(LogFaults, GoesOnInAFileThatCannotBeMoved) {
    std::string const name = file("a.log");
    writeFile(name, std::string(10485760, 'x'));
    log.filename(name);
    fs::create_directories(name + ".bak/full");
    testing::internal::CaptureStdout();
    for (int i = 0; i < 3; ++i) log.write("line\n");
    log.flush();
    line("line");
    yon::console::flush();
    std::string const told = testing::internal::GetCapturedStdout();
    EXPECT_EQ(told.find("rename log file to " + name + ".bak failure: ("), 0u) << told;
    EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), 1) << told;
    EXPECT_EQ(fs::file_size(name), 10485760u + 20);
    fs::remove_all(name + ".bak");
    line("line");
    EXPECT_EQ(contentOf(name), "line\n");
    EXPECT_EQ(log.counters().rotations, 1u);
}

TEST_F(LogFaults, NoticesThatTheFileIsAnotherOne) {
    std::string const name = file("a.log");
    logger other;
    for (logger * const l : {&log, &other}) l->setMaxNumofMsg(0).filename(name);
    auto const both = [&](std::string const & text) {
        log.write(text + '\n');
        other.write(text + '\n');
    };
    both("1");
    fs::rename(name, file("moved"));
    both("2");
    EXPECT_EQ(contentOf(file("moved")), "1\n1\n");
    EXPECT_EQ(contentOf(name), "2\n2\n");
    fs::remove(name);
    both("3");
    EXPECT_EQ(contentOf(name), "3\n3\n");
    fs::rename(file("moved"), name);
    both("4");
    EXPECT_EQ(contentOf(name), "1\n1\n4\n4\n");
    other.filename("");
    fs::remove(name);
    line("5");
    EXPECT_EQ(contentOf(name), "5\n");
}

TEST_F(LogFaults, KeepsLinesWholeOnAFullDisk) {
    std::string const mounted = file("disk");
    fs::create_directories(mounted);
    if (statusOf("mount -t tmpfs -o size=64k tmpfs " + mounted + " 2>&1") != 0)
        GTEST_SKIP() << "needs the right to mount";
    std::string const name = mounted + "/a.log";
    log.filename(name);
    auto const write = [&] {
        for (int i = 0; i < 3000; ++i) log.write("a line of thirty characters ..\n");
        log.flush();
    };
    EXPECT_EQ(told([&] { write(), write(); }).find("log file " + name + " cannot be written: (28)"), 0u);
    std::string const kept = contentOf(name);
    EXPECT_EQ(kept.size() % 31, 0u);
    EXPECT_EQ(kept.size() / 31, log.counters().written);
    EXPECT_EQ(log.counters().written + log.counters().dropped, 6000u);
    EXPECT_GT(kept.size(), 32768u);
    fs::remove(name);
    EXPECT_EQ(told([&] { line("kept"); }), "");
    EXPECT_EQ(contentOf(name), "kept\n");
    log.filename("");
    EXPECT_EQ(statusOf("umount " + mounted), 0);
}

TEST_F(LogFaults, KeepsItsSettingsWhenTheConfigurationIsBroken) {
    std::string const config = file("p2p.pml");
    auto const reload = [&] { log.reload(config); };
    EXPECT_EQ(told(reload), "");  // there is none
    std::string const good = "p2p(\n  log(debugOn(1)\n    filename('" + file("good.log") + "')))";
    writeFile(config, good);
    EXPECT_EQ(told(reload), "");
    EXPECT_TRUE(log.debugOn());
    std::pair<std::string, std::string> const broken[] = {
        {"p2p(\n  log(debugOn:bool)\n))", ":2:15: not found value begin tag, token\n"},
        {"p2p(log(debugOn(0))\n    log(debugOn(0)))", ":2:5: duplicated unit\n"},
        {"p2p(log(debugOn(0)", ":1:19: the text ends too early\n"},
        {good.substr(0, good.size() - 9), ":3:"},
        {"p2p(log(debugOn(0) traceOn('1)))\n", ":2:1: the text ends too early\n"},
        {std::string((16u << 20) + 1, ' '), " is longer than 16777216 bytes"}};
    for (auto const & [text, error] : broken) {
        writeFile(config, text);
        std::string const told = this->told([&] { reload(), reload(); });
        EXPECT_EQ(told.find(config + error), 0u) << told << "for " << text.substr(0, 80);
        EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), 1) << told;
        EXPECT_TRUE(log.debugOn() && !log.traceOn());
        EXPECT_EQ(log.filename(), file("good.log"));
    }
    EXPECT_NE(told([&] { log.reload(file("")); }).find(" is no regular file"), std::string::npos);
    writeFile(config, "p2p(log(debugOn(0)))");
    EXPECT_EQ(told(reload), "");
    EXPECT_FALSE(log.debugOn());
}

TEST_F(LogFaults, TheLibraryIsLoadedAndUnloadedAHundredTimes) {
    std::string const name = file("module.log");
    ASSERT_EQ(statusOf(programPath(YON_LOADER_PROGRAM) + " " YON_LOG_MODULE " " + name + " 100"), 0);
    std::vector<std::string> const lines = linesOf(name);
    ASSERT_EQ(lines.size(), 600u);
    EXPECT_EQ(lines[0], "cached");
    EXPECT_EQ(lines[599], "left to the end");
}

}  // namespace
