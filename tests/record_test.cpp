#include <gtest/gtest.h>

#include <climits>
#include <iomanip>

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

std::string head(std::string const & id = "[RT]") { return Lines::prefix() + id; }
std::string const rule = std::string(118, '-') + "\n";

/// The block of an error record.
std::string framed(std::string const & title, std::string const & body) {
    return "\n" + ruled('-', head() + "[" + title + "]", "") + ruled(' ', "", title) +
           ruled(' ', "", std::string(title.size(), '=')) + body + "\n" + rule + "\n";
}

void expectParts(std::string const & text, std::initializer_list<char const *> parts) {
    for (char const * part : parts) EXPECT_NE(text.find(part), std::string::npos) << part << "\nin " << text;
}

TEST(Record, SingleLines) {
    Lines lines(log());
    writeDataLog(log(), "f.cpp", 1, "f", "bare");
    writeDebugLog(log(), "f.cpp", 1, "app::f", "text", "TIMER.DEBUG");
    writeDebugLog(log(), "f.cpp", 1, "app::f", nullptr, "");
    EXPECT_EQ(lines.take(),
              "bare\ndebug: " + head() + "[TIMER.DEBUG][app::f] text\ndebug: " + head() + "[][app::f] \n");
    for (char const * tag : {"INFO", static_cast<char const *>(nullptr)})
        writeInfoLog(log(), "f.cpp", 1, "app::f", "text", tag);
    EXPECT_EQ(lines.take(), head() + "[INFO] text\n" + head() + " text\n");
    std::string const just(112, 'x');
    writeEntryLog(log(), "TEST", "case", "", '~');
    writeEntryLog(log(), "TEST", "case", "end", '.');
    writeEntryLog(log(), just.c_str(), "", "1234", '.');
    writeEntryLog(log(), just.c_str(), "", "12345", '.');
    EXPECT_EQ(lines.take(), "TEST case " + std::string(108, '~') + "\n" + ruled('.', "TEST case", "end") + just +
                                "  1234\n" + just + "  12345\n");
}

TEST(Record, Blocks) {
    Lines lines(log());
    writeLog(log(), nullptr, nullptr, "body", nullptr, nullptr);
    EXPECT_EQ(lines.take(), "body\n\n");
    writeLog(log(), "HEAD", "A title of 20 chars.", "a\nb", "foot", "done");
    EXPECT_EQ(lines.take(), "\n" + ruled('-', head() + "[A title of 20 chars.]", "HEAD") + std::string(98, ' ') +
                                "A title of 20 chars.\n" + std::string(98, ' ') + std::string(20, '=') + "\na\nb\n" +
                                ruled(' ', "", "____") + ruled(' ', "", "foot") + ruled('-', "", "done") + "\n");
    std::string const text(130, 't');
    writeLog(log(), "", text.c_str(), "", text.c_str(), "");
    EXPECT_EQ(lines.take(), "\n" + (head() + "[" + text).substr(0, 117) + " \n" + ruled(' ', "", text) +
                                ruled(' ', "", std::string(130, '=')) + "\n" + ruled(' ', "", std::string(130, '_')) +
                                ruled(' ', "", text) + rule + "\n");
}

TEST(Record, FramesWithLocationAndCallStack) {
    Lines lines(log());
    TraceEntry const outer(log(), "C:\\src\\outer.cpp", 10, "app::outer", TraceEntry::both, nullptr);
    TraceEntry const inner(log(), "inner.cpp", 20, "app::inner", TraceEntry::both, nullptr);
    std::string const place =
        "\n        AT: app::f(f.cpp:7)\nCALL STACK: app::inner(inner.cpp:20)\n            app::outer(outer.cpp:10)";
    writeErrorLog(log(), "f.cpp", 7, "app::f", "cause", "<WARNING>");
    writeExcptLog(log(), "f.cpp", 7, "app::f", "what");
    assertFailure(log(), "a == b", "f.cpp", 7, "app::f", "");
    ensureFailure(log(), "a == b", "f.cpp", 7, "app::f", "go on");
    exceptionThrown(log(), "f.cpp", 7, "app::f", "cause");
    EXPECT_EQ(lines.take(), framed("<WARNING>", "     CAUSE: cause" + place) +
                                framed("EXCEPTION", "     CAUSE: Catch a exception." + place + "\n\nwhat") +
                                framed("ASSERT FAILURE", " CONDITION: a == b" + place) +
                                framed("ENSURE FAILURE", " CONDITION: a == b" + place + "\n   WILL DO: go on") +
                                framed("THROWING", "     CAUSE: cause" + place));
    EXPECT_EQ(tracer::instance()->separator(), "\n            ");
}

/// Logs to other loggers and to its own, catches and throws while a record is handed over.
struct Nested : LoggerCallback {
    void onLog(istr line) override {
        seen += std::string(line);
        writeDataLog(other, "", 0, "", "a longer record within another one");
        log().writeAndPrint("not heard\n");
        EXPECT_THROW(YON_THROW(InvalidDataException, "within a record"), InvalidDataException);
        YON_THROW(InvalidDataException, "not the logger's");
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
    logger & yon = logger_factory::yon();
    Lines lines(yon);
    diagnostics::Location const where{"f.cpp", 7, "app::f"};
    diagnostics::record(Level::debug, "TRACE", where, istr("text and more", 4));
    diagnostics::record(Level::info, istr("INFORM", 4), where, "text");
    EXPECT_EQ(lines.take(), "debug: " + head("[YON]") + "[TRACE][app::f] text\n" + head("[YON]") + "[INFO] text\n");
    diagnostics::record(Level::error, "<ERROR>", where, "text");
    EXPECT_THROW(YON_THROW_AT(where, OutOfRangeException, "too far"), OutOfRangeException);
    expectParts(lines.take(), {"     CAUSE: text\n        AT: app::f(f.cpp:7)\nCALL STACK: \n------", "][<ERROR>] ",
                               "     CAUSE: OutOfRangeException: too far\n        AT: app::f(f.cpp:7)"});
    for (bool const on : {true, false}) {
        yon.debugOn(on);
        EXPECT_TRUE(diagnostics::categoryOn("TIMER.DEBUG") == on && !diagnostics::categoryOn("TIMER.TRACE"));
    }
}

template <class T>
void tell(T const & value) {
    YON_LOG_DATA(log(), "box " << value);
}

TEST(Macros, AreSingleStatementsAnywhere) {
    Lines lines(log());
    if (lines.take().empty())
        YON_LOG_DATA(log(), "then " << std::hex << 255);
    else
        YON_LOG_ERROR(log(), "else");
    tell(0.5);
    // A message that logs, and shares line and block with the outer one.
    YON_LOG_DATA(
        log(), "outer " << [&] {
            YON_LOG_DATA(log(), "inner " << 10);
            return 10;
        }());
    EXPECT_EQ(lines.take(), "then ff\nbox 0.5\ninner 10\nouter 10\n");
    std::string const big(100'000, 'x');
    YON_LOG_DATA(log(), big << big);
    EXPECT_THROW(YON_LOG_DATA(log(), std::string("x").substr(2)), std::out_of_range);
    struct Commas : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
    };
    auto const imbued = [](std::ostream & os) -> std::ostream & {
        return os.imbue(std::locale(os.getloc(), new Commas)), os;
    };
    YON_LOG_DATA(log(), std::setfill('*') << std::setw(6) << 1 << static_cast<char const *>(nullptr) << "lost");
    YON_LOG_DATA(log(), +imbued << 0.5);
    YON_LOG_DATA(log(), std::setw(4) << 0.5);
    EXPECT_EQ(lines.take(), big + big + "\n*****1\n0,5\n 0.5\n");
}

/// Leaves the stream as it is not at first, and its type as it is.
struct InHex {};
template <class Stream>
Stream & operator<<(Stream & s, InHex) {
    s << std::hex;
    return s;
}

TEST(Macros, PrintWhatAStreamPrints) {
    Lines lines(log());
    char const letters[] = {'a', 'b', 0, 'c'};
    enum { unscoped = 7 };
    struct {
        unsigned bits : 3;
    } const field{5};
    auto const printed = [&](auto & os) {
        os << LLONG_MIN << ' ' << ULLONG_MAX << short{-1} << 0u << true << 'x' << static_cast<unsigned char>('y')
           << '|';
        os << letters << String("s") << istr("t") << std::string("u") << std::string_view("w") << "" << '|';
        os << unscoped << field.bits << 1.5 << InHex{} << -1 << short{-1} << 'z' << "tail";
        return &os;
    };
    std::ostringstream expected;
    printed(expected);
    detail::MessageLoan message;
    EXPECT_EQ(detail::messageText(*printed(message.stream())), expected.str());
    YON_LOG_DATA(log(), LLONG_MIN << letters << InHex{} << 255 << "end");
    EXPECT_EQ(lines.take(), std::to_string(LLONG_MIN) + "abffend\n");
}

TEST(Macros, EvaluateOnlyWhatIsWanted) {
    Lines lines(log());
    int loggers = 0;
    int messages = 0;
    auto const target = [&]() -> logger & { return ++loggers, log(); };
    auto const message = [&] { return ++messages; };
    auto const useAll = [&] {
        YON_TRACE_INFO(target(), "n = " << message());
        YON_LOG_DEBUG(target(), "TAG", "n = " << message());
        YON_ASSERT(target(), messages != 1, "m" + std::to_string(message()));
    };
    useAll();
    EXPECT_EQ(loggers * 100 + messages, 200);
    log().debugOn(true).traceOn(true);
    useAll();
    log().debugOn(false).traceOn(false);
    YON_LOG_INFO(target(), message());
    YON_LOG_EVENT(target(), "e", "n", message());
    EXPECT_EQ(loggers * 100 + messages, 604);
    expectParts(lines.take(),
                {"<lambda>( n = 1 ) ", "[RT][TAG][yon::", "<lambda>] n = 2\n", "[RT] 3\n", "e(n(4))\n"});
}

TEST(Macros, ErrorsCarryPlaceAndText) {
    Lines lines(log());
    YON_LOG_WARNING(log(), "w" << 1);
    YON_ENSURE(log(), 1 + 1 == 3, String("count again"));
    OutOfRangeException const raised("f.cpp", 3, "app::f", "message");
    YON_LOG_EXCEPTION(log(), static_cast<std::exception const &>(raised));
    YON_LOG_EXCEPTION(log(), std::runtime_error("plain"));
    YON_LOG_EXCEPTION(log(), 42);
    expectParts(lines.take(), {"     CAUSE: w1\n", "<WARNING>\n", "ErrorsCarryPlaceAndText_Test::TestBody(",
                               " CONDITION: 1 + 1 == 3\n", "   WILL DO: count again\n",
                               "\n\n{\n EXCEPTION: message\n", "\n\nstd::exception: plain\n", "\n\n42\n"});
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
    std::string read = event.name();
    for (auto const * child : *event.listValue())
        read += ";" + child->name() + "=" + std::string(child->getStringValue());
    EXPECT_EQ(read, "sent__to_;bytes=-9223372036854775808;ratio=0.1;ok=1;c=c;text=" + hostile +
                        ";lines=a\\r\\n2009 forged;empty=;slot=last");
}

}  // namespace
}  // namespace yon
