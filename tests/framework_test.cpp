// The test framework, by a program that uses it.
#include <gtest/gtest.h>

#include "file_testing.h"

namespace yon {
namespace {

/// Runs the program in a directory of its own.
class Framework : public testing::Test {
protected:
    /// The exit status; 255 for a crash on every system.
    int run(std::string const & arguments, std::string const & input = "") {
        writeFile("in", input);
        int const status = std::system((program_ + ' ' + arguments + " < in > out 2> err").c_str());
        bool const ended = status % 256 == 0 && status / 256 < 128;
        return ended ? status / 256 : status < 0 || status > 255 ? 255 : status;
    }
    static bool has(char const * file, std::string const & text) {
        std::string content = contentOf(file);
        std::erase(content, '\r');
        return content.find(text) != std::string::npos;
    }

    std::string const program_ = programPath(YON_FRAMEWORK_CHILD);
    WorkingDirectory const directory_{"framework"};
};

TEST_F(Framework, RunsWhatIsAskedFor) {
    EXPECT_EQ(run("--list --filter good"), 0);
    EXPECT_TRUE(has("out", "good/passes")) << contentOf("out");
    EXPECT_TRUE(has("out", "good/deep/passes_too"));
    EXPECT_FALSE(has("out", "bad"));
    EXPECT_EQ(run("--run good --shuffle 3"), 0);
    EXPECT_TRUE(has("out", "2 passed, 0 failed")) << contentOf("out");
    EXPECT_EQ(run("--run goo"), 2);
    EXPECT_TRUE(has("err", "--run: no test case or menu goo, see --list")) << contentOf("err");
    EXPECT_EQ(run("--rum all"), 2);
    EXPECT_TRUE(has("err", "--rum: unknown option"));
}

TEST_F(Framework, ShowsFailures) {
    EXPECT_EQ(run("--run bad --junit report.xml"), 4);
    for (char const * text :
         {"text == \"other\"\n    \"a<b\" and \"other\"", "from another thread", "text.empty()",
          "let out: raised was let go", "left behind: 1 objects made at tests/framework_child.cpp",
          "left behind: 1 library threads", "0 passed, 4 failed"}) {
        EXPECT_TRUE(has("out", text)) << text << '\n' << contentOf("out");
    }
    EXPECT_FALSE(has("out", "not reached"));
    EXPECT_TRUE(has("report.xml", "<testcase classname=\"bad\" name=\"compares\" time=\""));
    EXPECT_TRUE(has("report.xml", "&quot;a&lt;b&quot; and &quot;other&quot;")) << contentOf("report.xml");
    EXPECT_FALSE(has("report.xml", "did not end"));
}

TEST_F(Framework, NamesWhatCrashesAndWhatHangs) {
    EXPECT_NE(run("--run fatal/crashes --junit report.xml"), 0);
    EXPECT_TRUE(has("err", "CRASHED fatal/crashes")) << contentOf("err");
    EXPECT_TRUE(has("out", "RUN    fatal/crashes"));
    EXPECT_TRUE(has("report.xml", "<error message=\"did not end")) << contentOf("report.xml");
    EXPECT_TRUE(has("report.xml", "</testsuites>"));
    EXPECT_EQ(run("--run fatal/hangs --time-limit 1"), 124);
    EXPECT_TRUE(has("err", "HUNG fatal/hangs: not done in 1 seconds")) << contentOf("err");
}

TEST_F(Framework, AsksForMenuEntries) {
    EXPECT_EQ(run("", "1\n2\n..\nnone\nall\n"), 0);
    EXPECT_TRUE(has("out", "1. good/")) << contentOf("out");
    EXPECT_TRUE(has("out", "not in this menu: none"));
    EXPECT_EQ(run("", "1\npasses\nq\n"), 0);
    EXPECT_TRUE(has("out", "1 passed, 0 failed")) << contentOf("out");
}

}  // namespace
}  // namespace yon
