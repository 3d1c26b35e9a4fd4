// Crash reports and leak reports, by a program that ends in many ways.
#include <gtest/gtest.h>

#include <cstdlib>

#include "file_testing.h"
#include "yon/pml/file.h"
#include "yon/pml/pml_parser.h"

namespace yon {
namespace {

namespace fs = std::filesystem;

constexpr bool windows = YON_ON_WINDOWS;

/// Runs the program each time in a new directory, because one that has crashed may be there for a while, with files
/// open.
class Crash : public testing::Test {
protected:
    /// The exit status, or 128 and the number of the signal.
    int run(std::string const & arguments) {
        fs::create_directory(directory_.file(std::to_string(++runs_)));
        fs::current_path(directory_.file(std::to_string(runs_)));
        return runAgain(arguments);
    }
    int runAgain(std::string const & arguments) {
        // A shell of its own says nothing of signals on the error output.
        std::string const end = windows ? "" : "; exit $?";
        int const status = std::system((program_ + ' ' + arguments + " > out 2> err" + end).c_str());
        return !windows && status > 255 ? status / 256 : status;
    }

    bool readReport() { return fs::exists("report.pml") && pml::ntvFromPml(report_, pml::File("report.pml")); }
    /// A text in the report; empty when it is not there.
    std::string text(char const * path) const {
        std::string found;
        if (pml::Unit const * const unit = report_.find(istr(path))) *unit >> found;
        return found;
    }
    std::vector<std::string> crashedThread() const {
        std::vector<std::string> calls;
        for (ulong i = 0; pml::Unit const * const thread = report_["threads"].at(i); ++i) {
            if (thread->at(istr("crashed")) == nullptr) continue;
            for (ulong n = 0; pml::Unit const * const call = (*thread)["stack"].at(n); ++n)
                *call >> calls.emplace_back();
        }
        return calls;
    }

    std::string const program_ = programPath(YON_CRASH_CHILD);
    WorkingDirectory const directory_{std::string("crash-") +
                                      testing::UnitTest::GetInstance()->current_test_info()->name()};
    int runs_ = 0;
    pml::Unit report_;
};

TEST_F(Crash, EndsAsWithoutAReportAndLeavesOne) {
    constexpr struct {
        char const *how, *signal, *exception;
    } rows[] = {
        {"write", "SIGSEGV", "EXCEPTION_ACCESS_VIOLATION"},
        {"divide", "SIGFPE", "EXCEPTION_INT_DIVIDE_BY_ZERO"},
        {"trap", "SIGILL", "EXCEPTION_ILLEGAL_INSTRUCTION"},
        {"abort", "SIGABRT", "SIGABRT"},
        {"overflow", "SIGSEGV", "EXCEPTION_STACK_OVERFLOW"},
        {"thread", "SIGSEGV", "EXCEPTION_STACK_OVERFLOW"},
        {"together", "SIGSEGV", "EXCEPTION_ACCESS_VIOLATION"},
        {"nested", "SIGSEGV", "EXCEPTION_ACCESS_VIOLATION"},
        {"terminate", "std::terminate", "std::terminate"},
        {"throw", "std::terminate", "std::terminate"},
        {"int", "std::terminate", "std::terminate"},
        {"7", "SIGBUS", nullptr},
        {"11", "SIGSEGV", nullptr},
    };
    for (auto const & row : rows) {
        if (windows && row.exception == nullptr) continue;
        SCOPED_TRACE(row.how);
        int const status = run(row.how);
        EXPECT_EQ(contentOf("said"), "hook\n");
        EXPECT_TRUE(contentOf("child.log").starts_with("cached\n"));
        ASSERT_TRUE(readReport()) << contentOf("report.pml");
        EXPECT_EQ(text("reason"), windows ? row.exception : row.signal);
        bool const inThread = row.how == std::string("thread") || row.how == std::string("together");
        std::vector<std::string> const calls = crashedThread();
        ASSERT_GE(calls.size(), 2u) << contentOf("report.pml");
        EXPECT_TRUE(calls[0].starts_with(inThread ? "Worker::onWork(tests/crash_child.cpp:" : "end("));
        // Sanitizers end processes in ways of their own; after an exception of Windows the status may be that of a
        // debugger, which the system starts.
        if (YON_SANITIZED) continue;
        if (windows && std::string(row.exception).starts_with("EXCEPTION_")) continue;
        EXPECT_EQ(run(std::string("bare ") + row.how), status);
        EXPECT_NE(status, 0);
        EXPECT_FALSE(fs::exists("report.pml"));
        EXPECT_EQ(contentOf("said"), "");
    }
}

TEST_F(Crash, TellsWhatIsKnown) {
    run("write");
    ASSERT_TRUE(readReport());
    EXPECT_EQ(text("address"), "0x10");
    EXPECT_NE(text("program").find("crash_child"), std::string::npos) << text("program");
    EXPECT_EQ(text("time").size(), std::string("2000-01-01 00:00:00.000 UTC").size());
    EXPECT_EQ(text("thread"), text("threads/[0]/id"));
    run("throw");
    ASSERT_TRUE(readReport());
    EXPECT_EQ(text("exception/text"), "yon::OutOfRangeException: it's 5 \\ 4 (or so)");
    EXPECT_TRUE(text("exception/at").ends_with(")")) << text("exception/at");
    EXPECT_TRUE(text("exception/stack/[0]").starts_with("end("));
    run("int");
    ASSERT_TRUE(readReport());
    EXPECT_EQ(text("exception/type"), "i");
    run("together");
    ASSERT_TRUE(readReport());
    for (char const * name : {"threads/[0]/name", "threads/[3]/name"}) EXPECT_EQ(text(name), "worker");
}

TEST_F(Crash, CallsEarlierHandlers) {
    run("earlier write");
    EXPECT_EQ(contentOf("said"), "hook\nearlier signal\n");
    run("earlier throw");
    EXPECT_EQ(contentOf("said"), "hook\nearlier terminate\n");
}

TEST_F(Crash, LeavesOldReportsUntilThereIsANewOne) {
    EXPECT_EQ(run("none"), 0);
    EXPECT_FALSE(fs::exists("report.pml"));
    std::string const old = "older and longer" + std::string(10000, '.');
    writeFile("report.pml", old);
    EXPECT_EQ(runAgain("none"), 0);
    EXPECT_EQ(contentOf("report.pml"), old);
    runAgain("write");
    EXPECT_TRUE(readReport());
    EXPECT_TRUE(contentOf("report.pml").ends_with("\n)\n"));
}

TEST_F(Crash, ReportsWithoutANameStandBesideTheLog) {
    run("none");
    fs::create_directory("logs");
    runAgain("unnamed write");
    std::vector<std::string> reports;
    for (auto const & entry : fs::directory_iterator("logs")) {
        if (entry.path().extension() == ".pml") reports.push_back(entry.path().filename().string());
    }
    ASSERT_EQ(reports.size(), 1u);
    EXPECT_TRUE(reports[0].starts_with("crash_child.")) << reports[0];
    EXPECT_TRUE(reports[0].ends_with(".crash.pml")) << reports[0];
}

TEST_F(Crash, LeaksAreReportedAtExit) {
    for (bool const toFile : {true, false}) {
        EXPECT_EQ(run(toFile ? "leak" : "nolog leak"), 0);
        std::string const report = contentOf(toFile ? "child.log" : "err");
        EXPECT_NE(report.find("leak: 3 blocks, 12 bytes"), report.npos) << report;
        EXPECT_EQ(report.find("leak: 1 blocks, 8 bytes"), report.npos) << report;
        EXPECT_EQ(contentOf(toFile ? "err" : "child.log"), "");
    }
}

/// Programs end with their lines written, also those of their last moments and of threads that are still at it.
TEST_F(Crash, LateRecordsAreWritten) {
    run("none");
    EXPECT_TRUE(contentOf("child.log").starts_with("cached\n"));
    EXPECT_TRUE(contentOf("child.log").ends_with("from a static destructor\n"));
    for (int i = 0; i < 10; ++i) {
        ASSERT_EQ(run("late"), 0);
        std::string const log = contentOf("child.log");
        for (char const * text : {"before the exit\n", "from an exit handler\n", "from a static destructor\n"}) {
            EXPECT_NE(log.find(text), log.npos) << log;
        }
        EXPECT_EQ(log.back(), '\n');
        std::vector<std::string> lines = linesOf("child.log");
        std::erase_if(lines, [](std::string const & line) { return !line.starts_with("thread "); });
        EXPECT_LE(countsOf(lines).size(), 3u);
    }
}

}  // namespace
}  // namespace yon
