#include <gtest/gtest.h>

#include <climits>
#include <thread>

#include "log_testing.h"
#include "yon/base/throw.h"
#include "yon/log/macros.h"
#include "yon/pml/pml_parser.h"

namespace yon {
namespace {

using testing::Lines;
using testing::ruled;

logger & log() {
    static logger & l = logger_factory::instance("RT");
    return l;
}

std::string const rule = std::string(118, '-') + "\n";

/// The block of an error record.
std::string framed(std::string const & title, std::string const & body) {
    return "\n" + ruled('-', Lines::prefix() + "[RT][" + title + "]", "") + ruled(' ', "", title) +
           ruled(' ', "", std::string(title.size(), '=')) + body + "\n" + rule + "\n";
}

TEST(Record, Lines) {
    Lines lines(log());
    std::string const head = Lines::prefix() + "[RT]";
    writeDataLog(log(), "f.cpp", 1, "f", "bare");
    EXPECT_EQ(lines.take(), "bare\n");
    writeDebugLog(log(), "f.cpp", 1, "app::f", "text", "TIMER.DEBUG");
    writeDebugLog(log(), "f.cpp", 1, "app::f", nullptr, "");
    EXPECT_EQ(lines.take(), "debug: " + head + "[TIMER.DEBUG][app::f] text\ndebug: " + head + "[][app::f] \n");
    writeInfoLog(log(), "f.cpp", 1, "app::f", "one", "INFO");
    writeInfoLog(log(), "f.cpp", 1, "app::f", "two", "");
    writeInfoLog(log(), "f.cpp", 1, "app::f", "three", nullptr);
    EXPECT_EQ(lines.take(), head + "[INFO] one\n" + head + " two\n" + head + " three\n");
}

TEST(Record, EntryLinesFillTheLineOrRunOn) {
    Lines lines(log());
    writeEntryLog(log(), "TEST", "case", "", '~');
    EXPECT_EQ(lines.take(), "TEST case " + std::string(108, '~') + "\n");
    writeEntryLog(log(), "TEST", "case", "end", '.');
    EXPECT_EQ(lines.take(), ruled('.', "TEST case", "end"));
    std::string const just(112, 'x');
    writeEntryLog(log(), just.c_str(), "", "1234", '.');
    EXPECT_EQ(lines.take(), ruled('.', just + " ", "1234").replace(112, 2, "  "));
    writeEntryLog(log(), just.c_str(), "", "12345", '.');
    EXPECT_EQ(lines.take(), just + "  12345\n");
    writeEntryLog(log(), (just + "123456").c_str(), "", "", '.');
    EXPECT_EQ(lines.take(), just + "123456 \n");
}

TEST(Record, Blocks) {
    Lines lines(log());
    std::string const head = Lines::prefix() + "[RT]";
    writeLog(log(), nullptr, nullptr, "body", nullptr, nullptr);
    EXPECT_EQ(lines.take(), "body\n\n");
    writeLog(log(), "HEAD", "A title of 20 chars.", "a\nb", "foot", "done");
    EXPECT_EQ(lines.take(), "\n" + ruled('-', head + "[A title of 20 chars.]", "HEAD") + std::string(98, ' ') +
                                "A title of 20 chars.\n" + std::string(98, ' ') + std::string(20, '=') + "\na\nb\n" +
                                ruled(' ', "", "____") + ruled(' ', "", "foot") + ruled('-', "", "done") + "\n");
    std::string const text(130, 't');
    writeLog(log(), "", text.c_str(), "", text.c_str(), "");
    EXPECT_EQ(lines.take(), "\n" + (head + "[" + text).substr(0, 117) + " \n" + ruled(' ', "", text) +
                                ruled(' ', "", std::string(130, '=')) + "\n" + ruled(' ', "", std::string(130, '_')) +
                                ruled(' ', "", text) + rule + "\n");
}

TEST(Record, FramesWithLocationAndCallStack) {
    Lines lines(log());
    TraceEntry const outer(log(), "C:\\src\\outer.cpp", 10, "app::outer", TraceEntry::both, nullptr);
    TraceEntry const inner(log(), "inner.cpp", 20, "app::inner", TraceEntry::both, nullptr);
    std::string const place =
        "\n        AT: app::f(f.cpp:7)\nCALL STACK: app::inner(inner.cpp:20)\n            app::outer(outer.cpp:10)";
    for (int round = 0; round < 2; ++round) {
        writeErrorLog(log(), "f.cpp", 7, "app::f", "cause", "<WARNING>");
        EXPECT_EQ(lines.take(), framed("<WARNING>", "     CAUSE: cause" + place));
    }
    writeExcptLog(log(), "f.cpp", 7, "app::f", "what");
    EXPECT_EQ(lines.take(), framed("EXCEPTION", "     CAUSE: Catch a exception." + place + "\n\nwhat"));
    assertFailure(log(), "a == b", "f.cpp", 7, "app::f", "");
    EXPECT_EQ(lines.take(), framed("ASSERT FAILURE", " CONDITION: a == b" + place));
    ensureFailure(log(), "a == b", "f.cpp", 7, "app::f", "go on");
    EXPECT_EQ(lines.take(), framed("ENSURE FAILURE", " CONDITION: a == b" + place + "\n   WILL DO: go on"));
    exceptionThrown(log(), "f.cpp", 7, "app::f", "cause");
    EXPECT_EQ(lines.take(), framed("THROWING", "     CAUSE: cause" + place));
    EXPECT_EQ(tracer::instance()->separator(), "\n            ");
}

TEST(Record, LongNamesFoldAndCut) {
    Lines lines(log());
    std::string const func(150, 'f');
    writeErrorLog(log(), "f.cpp", 7, func.c_str(), "cause", "<ERROR>");
    EXPECT_NE(lines.take().find("\n        AT: " + std::string(106, 'f') + "\n"), std::string::npos);
    logger & longId = logger_factory::instance(std::string(90, 'i'));
    Lines longLines(longId);
    writeErrorLog(longId, "f.cpp", 7, "f", "cause", "<ERROR>");
    std::string const line = longLines.take().substr(1, 119);
    EXPECT_EQ(line, (Lines::prefix() + "[" + std::string(90, 'i')).substr(0, 117) + " \n");
}

/// Logs, throws and catches while a record is handed over.
struct Nested : LoggerCallback {
    void onLog(istr line) override {
        writeDataLog(other, "", 0, "", "a longer record within another one");
        try {
            YON_THROW(InvalidDataException, "within a record");
        } catch (InvalidDataException const &) {
        }
        seen += std::string(line);
    }
    logger & other = logger_factory::instance("RT2");
    std::string seen;
};

TEST(Record, CallbacksMayLogAndThrow) {
    Lines yon(logger_factory::yon());
    Nested nested;
    Lines lines(nested.other);
    log().setCallback(&nested);
    for (char const * text : {"1", "2"}) writeDataLog(log(), "", 0, "", text);
    log().setCallback(nullptr);
    EXPECT_EQ(nested.seen, "1\n2\n");
    EXPECT_EQ(lines.take(), "a longer record within another one\na longer record within another one\n");
    EXPECT_EQ(yon.take(), "") << "the logging layer does not report itself";
}

TEST(Record, TheLibrarysOwnGoToYon) {
    using diagnostics::Level;
    logger & log = logger_factory::yon();
    Lines lines(log);
    std::string const head = Lines::prefix() + "[YON]";
    diagnostics::Location const where{"f.cpp", 7, "app::f"};
    diagnostics::record(Level::debug, "TRACE", where, istr("text and more", 4));
    diagnostics::record(Level::info, istr("INFORM", 4), where, "text");
    EXPECT_EQ(lines.take(), "debug: " + head + "[TRACE][app::f] text\n" + head + "[INFO] text\n");
    diagnostics::record(Level::error, "<ERROR>", where, "text");
    EXPECT_NE(lines.take().find("     CAUSE: text\n        AT: app::f(f.cpp:7)\nCALL STACK: \n" + rule),
              std::string::npos);
    EXPECT_THROW(YON_THROW_AT(where, OutOfRangeException, "too far"), OutOfRangeException);
    EXPECT_NE(lines.take().find("     CAUSE: OutOfRangeException: too far\n        AT: app::f(f.cpp:7)"),
              std::string::npos);
    log.debugOn(true);
    EXPECT_TRUE(diagnostics::categoryOn("TIMER.DEBUG"));
    EXPECT_FALSE(diagnostics::categoryOn("TIMER.TRACE") || diagnostics::categoryOn("TRACE"));
    log.debugOn(false);
    EXPECT_FALSE(diagnostics::categoryOn("TIMER.DEBUG"));
}

template <class T>
struct Box {
    static void tell(T const & value) { YON_LOG_DATA(log(), "box " << value); }
};

TEST(Macros, AreSingleStatementsAnywhere) {
    Lines lines(log());
    bool const yes = true;
    if (yes)
        YON_LOG_DATA(log(), "then " << std::hex << 255);
    else
        YON_LOG_ERROR(log(), "else");
    Box<double>::tell(0.5);
    // A message that logs, and shares line and block with the outer one.
    YON_LOG_DATA(
        log(), "outer " << [&] {
            YON_LOG_DATA(log(), "inner " << 10);
            return 10;
        }());
    EXPECT_EQ(lines.take(), "then ff\nbox 0.5\ninner 10\nouter 10\n");
    std::string const big(200'000, 'x');
    YON_LOG_DATA(log(), big << big);
    YON_LOG_DATA(log(), "small");
    EXPECT_EQ(lines.take(), big + big + "\nsmall\n");
    EXPECT_THROW(YON_LOG_DATA(log(), std::string("x").substr(2)), std::out_of_range);
    EXPECT_EQ(lines.take(), "");
}

TEST(Macros, EvaluateOnlyWhatIsWanted) {
    Lines lines(log());
    int loggers = 0;
    int messages = 0;
    auto const target = [&]() -> logger & { return ++loggers, log(); };
    auto const message = [&] { return ++messages; };
    YON_LOG_DEBUG(target(), "TAG", message());
    YON_ASSERT(target(), messages == 0, "m" + std::to_string(message()));
    { YON_TRACE_INFO(target(), message()); }
    EXPECT_EQ(loggers, 2);
    EXPECT_EQ(messages, 0);
    EXPECT_EQ(lines.take(), "");
    log().debugOn(true).traceOn(true);
    YON_LOG_DEBUG(target(), "TAG", "n = " << message());
    { YON_TRACE_INFO(target(), "n = " << message()); }
    log().debugOn(false).traceOn(false);
    YON_LOG_INFO(target(), message());
    YON_LOG_EVENT(target(), "e", "n", message());
    EXPECT_EQ(loggers, 6);
    EXPECT_EQ(messages, 4);
    std::string const text = lines.take();
    for (char const * part :
         {"[RT][TAG][yon::", "::TestBody] n = 1\n", "TestBody( n = 2 )  ..", "[RT] 3\n", "e(n(4))\n"})
        EXPECT_NE(text.find(part), std::string::npos) << part << text;
}

TEST(Macros, ErrorsCarryPlaceAndText) {
    Lines lines(log());
    YON_LOG_WARNING(log(), "w" << 1);
    YON_ENSURE(log(), 1 + 1 == 3, "count again");
    try {
        throw OutOfRangeException("f.cpp", 3, "app::f", "message");
    } catch (std::exception const & e) {
        YON_LOG_EXCEPTION(log(), e);
    }
    YON_LOG_EXCEPTION(log(), std::runtime_error("plain"));
    YON_LOG_EXCEPTION(log(), 42);
    std::string const text = lines.take();
    for (char const * part :
         {"     CAUSE: w1\n", "<WARNING>\n", "ErrorsCarryPlaceAndText_Test::TestBody(", " CONDITION: 1 + 1 == 3\n",
          "   WILL DO: count again\n", "\n\n{\n EXCEPTION: message\n", "\n\nstd::exception: plain\n", "\n\n42\n"})
        EXPECT_NE(text.find(part), std::string::npos) << part << text;
}

TEST(Macros, EventsAreReadBack) {
    Lines lines(log());
    std::string const hostile = " it's (a) \"quoted\" * \\ : text ";
    YON_LOG_EVENT(log(), "sent (to)", "bytes", LLONG_MIN, "ratio", 0.1, "ok", true, "c", 'c', "text", hostile,
                  "lines", "a\r\n2009 forged", "empty", "", "slot", String("x"), "slot", istr("last"));
    std::string const line = lines.take();
    EXPECT_EQ(line.find('\n'), line.size() - 1);
    pml::Unit event;
    ASSERT_TRUE(pml::ntvFromPml(event, istr(line)));
    EXPECT_EQ(event.name(), "sent__to_");
    longlong bytes = 0;
    double ratio = 0;
    EXPECT_TRUE(event["bytes"] >> bytes && event["ratio"] >> ratio);
    EXPECT_EQ(bytes, LLONG_MIN);
    EXPECT_EQ(ratio, 0.1);
    EXPECT_EQ(event["text"].getStringValue(), hostile);
    EXPECT_EQ(event["lines"].getStringValue(), "a\\r\\n2009 forged");
    EXPECT_EQ(event["ok"].getStringValue(), "1");
    EXPECT_EQ(event["slot"].getStringValue(), "last");
    EXPECT_EQ(event.numofChildren(), 8u);
}

TEST(Macros, FromManyThreads) {
    Lines lines(log());
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([t] {
            for (int i = 0; i < 500; ++i) {
                YON_TRACE(log());
                YON_LOG_DATA(log(), "thread " << t << " line " << i);
            }
        });
    }
    for (std::thread & t : threads) t.join();
    std::string const text = lines.take();
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 2000);
    EXPECT_NE(text.find("thread 3 line 499\n"), std::string::npos);
}

}  // namespace
}  // namespace yon
