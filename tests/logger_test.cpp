// Loggers: settings, caches, files, rotation, routing, and many threads at once.
#include <gtest/gtest.h>

#include <atomic>

#include "file_testing.h"
#include "thread_testing.h"
#include "yon/yon.h"

namespace {

using yon::istr;
using yon::logger;
using yon::String;

constexpr std::size_t maxFileSize = 10485760;

class Logger : public testing::Test {
protected:
    std::string file(char const * name) const { return directory.file(name); }
    void fill(std::string const & name, std::size_t size) const { writeFile(name, std::string(size, 'x')); }

    TemporaryDirectory const directory{"logger"};
    logger log;
};

class Listener : public yon::LoggerCallback {
public:
    void onLog(istr line) override { heard += std::string(line); }
    std::string heard;
};

std::string dumpOf(logger const & l) {
    yon::dumper d;
    l.dump(d);
    return d.str();
}

TEST_F(Logger, SettingsGoThroughPmlInTheOrderOfTheirKeys) {
    log.debugOn(true).consoleOn(true).setMaxNumofMsg(7).setMaxCacheSize(99);
    log.logOn("heartbeat", true);
    log.msgOn("ping", false);
    log.filename(file("a.log"));
    log.debugFilename(file("other"));
    yon::pml::stream out;
    log.codec(out);
    std::string keys;
    for (auto const * child : *out.unit().listValue()) keys += child->name() + ' ';
    EXPECT_EQ(keys,
              "debugOn traceOn dataLogOn debugLogOn traceLogOn diagLogOn cmdLogOn commLogOn hbLogOn appLogOn appLogs "
              "msgLogOn msgLogs useLogfile filename useDebugLogfile filenameDebug maxNumofMsg maxCacheSize consoleOn "
              "mlcOn ");
    yon::pml::stream in(out.str());
    logger read;
    read.codec(in);
    std::string const dump = dumpOf(log);
    EXPECT_TRUE(dumpOf(read) == dump && dumpOf(logger(log)) == dump && dump.starts_with("@yon::logger {\n"));
    EXPECT_EQ(std::count(dump.begin(), dump.end(), '='), 26) << dump;
    // Keys that are absent, and names that are empty, change nothing; a new main name brings its debug name.
    yon::pml::stream few(istr("log(traceOn(1) filename() maxNumofMsg(x))"));
    log.codec(few);
    EXPECT_TRUE(log.traceOn() && log.debugOn() && log.debugFilename() == file("other"));
    yon::pml::stream named(istr("log(filename(b.txt))"));
    log.codec(named);
    EXPECT_EQ(log.debugFilename(), "b.txt.debug");
    log.filename("");
    EXPECT_EQ(log.debugFilename(), "");
}

TEST_F(Logger, SwitchesByName) {
    for (char const * name : {"on", "off"}) log.logOn(name, name[1] == 'n'), log.msgOn(name, name[1] == 'n');
    for (bool const wanted : {false, true}) {
        log.debugOn(wanted).msgLogOn(wanted);
        std::string bits;
        for (char const * name : {"on", "off", "unknown"}) {
            for (bool const b : {log.logOn(name), log.logOff(name), log.msgOn(name), log.msgOff(name)})
                bits += b ? '1' : '0';
        }
        EXPECT_EQ(bits, wanted ? "101101000000" : "010101010101");  // `msgOff` of what is on is true
    }
}

TEST_F(Logger, WritesACacheThatIsFull) {
    std::string const name = file("a.log");
    log.filename(name);
    auto const size = [&] { return contentOf(name).size(); };
    for (int i = 1; i < 100; ++i) log.write("line\n");
    EXPECT_FALSE(std::filesystem::exists(name));
    log.write("line\n");
    EXPECT_EQ(size(), 500u);
    // By size, which begins anew.
    log.write(std::string(32767, 'a'));
    EXPECT_EQ(size(), 500u);
    log.write("b");
    EXPECT_EQ(size(), 500u + 32768);
    log.setMaxNumofMsg(0).write("at once\n");
    EXPECT_EQ(size(), 500u + 32768 + 8);
    log.writeDebug("debug\n", 3);
    EXPECT_EQ(contentOf(file("a.debug.log")), "deb");
    log.setMaxNumofMsg(100);
    log.write("x\n");
    log.flush();
    EXPECT_EQ(log.counters().written, 105u);
}

TEST_F(Logger, KeepsLinesUntilThereIsAName) {
    for (int i = 0; i < 150; ++i) log.write("early\n");
    log.filename(file("a.log"));
    log.useLogfile(false).write("forgotten with what is cached\n");
    log.flush();
    log.useLogfile(true).write("late\n");
    log.filename(file("b.log"));  // the old file gets what is cached
    log.write("other\n");
    log.close();
    EXPECT_EQ(contentOf(file("a.log")) + contentOf(file("b.log")), "late\nother\n");

    logger nameless;
    for (char c = 'a'; c != 'a' + 20; ++c) nameless.write(std::string(1u << 20, c));
    EXPECT_EQ(nameless.counters().dropped, 12u);
    nameless.filename(file("c.log"));
    nameless.flush();
    EXPECT_EQ(std::filesystem::file_size(file("c.log")), 8u << 20);
    EXPECT_EQ(contentOf(file("c.log"))[0], 'a' + 12);
}

TEST_F(Logger, MovesAFileThatALineWouldTakeTooFar) {
    std::string const name = file("a.log");
    auto const write = [&](std::initializer_list<istr> lines) {
        for (istr line : lines) log.write(line);
        log.flush();
    };
    fill(name, maxFileSize - 4);
    log.filename(name);
    write({"123\n"});
    EXPECT_FALSE(std::filesystem::exists(name + ".bak"));
    writeFile(name + ".bak", "older");
    write({"\n"});
    EXPECT_EQ(contentOf(name), "\n");
    EXPECT_EQ(std::filesystem::file_size(name + ".bak"), maxFileSize);
    // Within a batch, line by line.
    fill(name, maxFileSize - 5);
    write({"abc\n", "de\n", "f\n"});
    EXPECT_EQ(contentOf(name), "de\nf\n");
    EXPECT_EQ(std::filesystem::file_size(name + ".bak"), maxFileSize - 1);
    write({std::string(maxFileSize + 1, 'y') + '\n'});  // too long for any file
    EXPECT_EQ(contentOf(name + ".bak"), "de\nf\n");
    EXPECT_EQ(std::filesystem::file_size(name), maxFileSize + 2);
    EXPECT_EQ(log.counters().rotations, 3u);
    // Two loggers that take turns.
    logger other;
    for (logger * const l : {&log, &other}) l->setMaxNumofMsg(0).filename(name);
    fill(name, maxFileSize - 4);
    log.write("a\n");
    other.write("b\n");
    log.write("c\n");
    EXPECT_EQ(contentOf(name), "c\n");
    EXPECT_EQ(std::filesystem::file_size(name + ".bak"), maxFileSize);
}

TEST_F(Logger, RenamesLargeFilesOfOthers) {
    std::string const name = file("any");
    fill(name, 10);
    logger::renameLargeFile(name, 20, 10);
    EXPECT_FALSE(std::filesystem::exists(name + ".bak"));
    logger::renameLargeFile(name, 20, 100);  // counts as 20
    std::ofstream stream(name, std::ios::app);
    stream << "0123456789" << std::flush;
    logger::renameLargeFile(stream, name, 12, 3);
    stream << "new" << std::flush;
    EXPECT_EQ(contentOf(name) + contentOf(name + ".bak"), "new0123456789");
}

TEST_F(Logger, RoutesLines) {
    Listener main;
    Listener debug;
    log.setCallback(&main);
    log.setDebugCallback(&debug);
    log.filename(file("a.log"));
    log.write("silent\n");
    for (int bits = 7; bits >= 0; --bits) {
        bool const toMain = bits & 2;
        bool const print = bits & 1;
        log.useDebugLogfile(bits & 4).useLogfile(toMain).consoleOn(print);
        std::string const which = std::to_string(bits) + '\n';
        testing::internal::CaptureStdout();
        log.writeAndPrint("a" + which);
        log.writeOrPrint("o" + which);
        log.flush();
        yon::console::flush();
        EXPECT_EQ(testing::internal::GetCapturedStdout(),
                  (print ? "a" + which : "") + (print && !toMain ? "o" + which : ""));
    }
    EXPECT_EQ(main.heard, "a7\na6\na5\na4\na3\no3\na2\no2\na1\no1\na0\no0\n");
    EXPECT_EQ(debug.heard, "o7\no6\no5\no4\n");
    EXPECT_EQ(contentOf(file("a.log")), "silent\na7\na6\na3\no3\na2\no2\n");
    EXPECT_EQ(contentOf(file("a.debug.log")), debug.heard);
}

TEST_F(Logger, NamesInUtf8) {
    log.filename(file("\xC3\xA0-\xE6\x97\xA5.log"));
    log.write("line\n");
    log.flush();
    EXPECT_TRUE(std::filesystem::exists(std::filesystem::path(file("")) / u8"\u00E0-\u65E5.log"));
}

TEST_F(Logger, ReadsItsConfiguration) {
    std::string const config = file("p2p.pml");
    writeFile(config, "\xEF\xBB\xBFp2p(log(debugOn(1) loggers(loud(traceOn(1)) mute(enable(0) debugLogOn(1)))))");
    logger & loud = yon::logger_factory::instance("loud");
    logger & mute = yon::logger_factory::instance("mute");
    EXPECT_EQ(yon::logger_factory::instance("loud").init("other").id(), "loud");
    for (logger * const l : {&loud, &mute}) l->reload(config);
    EXPECT_TRUE(loud.debugOn() && loud.traceOn());
    EXPECT_FALSE(mute.debugOn() || mute.dataLogOn() || mute.debugLogOn() || mute.useLogfile() ||
                 mute.useDebugLogfile());
    // What is out stays out while the file is read again.
    std::atomic<bool> read{false};
    std::thread reader([&] {
        for (int i = 0; i < 200; ++i) mute.reload(config);
        read = true;
    });
    while (!read) EXPECT_FALSE(mute.dataLogOn() || mute.useLogfile());
    reader.join();
    writeFile(config, "p2p(log(debugOn(1)))");
    mute.reload(config);  // is what it was
    EXPECT_TRUE(mute.debugOn() && mute.dataLogOn() && mute.useLogfile() && !mute.traceOn());
    yon::dumper d;
    std::string const dump = yon::logger_factory::dump(d).str();
    EXPECT_NE(dump.find("yon::logger_factory {\n    loggers_ = @yon::mt::map {\n        "), dump.npos) << dump;
}

TEST_F(Logger, WritesStartLines) {
    logger & yon = yon::logger_factory::yon();
    yon.useLogfile(false).flush();  // what other tests have left
    yon.useLogfile(true).filename(file("yon.log"));
    Listener listener;
    yon.setCallback(&listener);
    testing::internal::CaptureStdout();
    log.useLogfile(file("a.log").c_str());
    log.useLogfile(nullptr);
    log.consoleOn(true).useLogfile(file("b.log").c_str());
    yon::console::flush();
    std::string const note = "console output disabled, log file is " + file("a.log") + '\n';
    EXPECT_EQ(testing::internal::GetCapturedStdout(), note + note);
    yon.setCallback(nullptr);
    yon.flush();
    EXPECT_EQ(contentOf(file("yon.log")), listener.heard);
    std::string const rule(77, '=');
    std::string const end =
        rule + "\nyon version 1.5.8-01 2009-09-04...09-14\nyon compiled at Sep 16 2009 09:30:20\n";
    std::string const first = rule + "\nlog file is " + file("a.log") + '\n' + end;
    std::string texts;
    for (std::string const & line : linesOf(file("yon.log"))) texts += line.substr(line.find(">[YON] ") + 7) + '\n';
    EXPECT_EQ(texts,
              first + first + rule + "\nlog file " + file("a.log") + " changed to " + file("b.log") + '\n' + end);
    yon.filename("");
}

/// Threads that write numbered lines, which must be found whole, once each and in order for each thread.
class Writers {
public:
    static constexpr int threads = 8;

    template <class WriteLine, class Meanwhile>
    Writers(int lines, WriteLine writeLine, Meanwhile meanwhile) : lines_(lines) {
        std::atomic<int> left{threads};
        yon::InThreads const running(threads, [&](int t) {
            std::string const text = "enough in front that the file has to be moved to its backup once; thread " +
                                     std::to_string(t) + " line ";
            for (int i = 0; i < lines_; ++i) writeLine(text + std::to_string(i));
            --left;
        });
        while (left != 0) meanwhile();
    }
    void expect(std::string const & name) const {
        std::vector<std::string> lines = linesOf(name + ".bak");
        for (std::string const & line : linesOf(name)) lines.push_back(line);
        auto const counts = countsOf(lines);
        EXPECT_EQ(counts.size(), std::size_t{threads});
        for (auto const & [text, count] : counts) EXPECT_EQ(count, lines_) << text;
    }

private:
    int lines_;
};

TEST_F(Logger, LosesNoLineOfManyThreadsOverARotation) {
    log.filename(file("a.log"));
    Writers const writers(
        24000, [&](std::string const & line) { yon::writeDataLog(log, __FILE__, __LINE__, "f", line.c_str()); },
        [&] { log.flush(); });
    log.flush();
    EXPECT_EQ(log.counters().rotations, 1u);
    EXPECT_EQ(log.counters().written, 24000u * Writers::threads);
    writers.expect(file("a.log"));
}

TEST_F(Logger, OneOfSeveralLoggersMovesTheFileThatTheyShare) {
    std::string const name = file("a.log");
    for (int i = 0; i < 40; ++i) {
        writeFile(name, "");
        std::filesystem::resize_file(name, 10485760 - 4000);
        logger both[2];
        for (logger & l : both) l.filename(name);
        Writers(
            40,
            [&](std::string const & line) {
                logger & mine = both[line[0] % 2];
                mine.write(line + '\n');
                mine.flush();
            },
            std::this_thread::yield);
        ASSERT_EQ(both[0].counters().rotations + both[1].counters().rotations, 1u);
    }
}

TEST_F(Logger, ReturnsFromFlushWhenTheLinesOfTheCallerAreOut) {
    log.filename(file("a.log"));
    std::atomic<bool> missing{false};
    Writers const writers(
        150,
        [&](std::string const & line) {
            log.write(line + '\n');
            log.flush();
            missing = missing || contentOf(file("a.log")).find(line + '\n') == std::string::npos;
        },
        std::this_thread::yield);
    EXPECT_FALSE(missing);
    writers.expect(file("a.log"));
}

TEST_F(Logger, ReloadsWhileThreadsLog) {
    std::string const config = file("p2p.pml");
    int n = 0;
    log.filename(file("a.log"));
    Writers const writers(
        3000, [&](std::string const & line) { log.writeAndPrint(line + '\n'); },
        [&] {
            std::string const number = std::to_string(++n % 3);
            writeFile(config, "x(log(filename('" + file("a.log") + "') maxNumofMsg(" + number + ") traceOn(" +
                                  number + ") msgLogs(a(1) b(" + number + "))))");
            log.reload(config);
            log.onTimer(nullptr);
            dumpOf(log);
        });
    log.flush();
    writers.expect(file("a.log"));
}

}  // namespace
