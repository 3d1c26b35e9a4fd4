#include <gtest/gtest.h>

#include <atomic>
#include <sstream>

#include "log_testing.h"
#include "thread_testing.h"
#include "yon/base/throw.h"
#include "yon/log/dumper.h"
#include "yon/log/log_thread.h"
#include "yon/log/macros.h"
#include "yon/mt/lock.h"
#include "yon/mt/map.h"
#include "yon/util/singleton_T.h"

namespace yon {
namespace {

using testing::Lines;
using testing::ruled;

logger & log() {
    static logger & l = logger_factory::instance("TT");
    return l;
}

std::string stackText() {
    std::ostringstream os;
    printTraceStack(os);
    return os.str();
}

/// What a crash handler would see of a thread: name, depth, functions.
std::string mirrored(ThreadId id) {
    std::string text;
    TraceMirror::forEach([&](TraceMirror const & m) {
        if (m.threadId() != id) return;
        text += std::string(m.threadName()) + ":" + std::to_string(m.size());
        for (unsigned i = 0; i < std::min(m.size(), TraceMirror::capacity); ++i)
            text += std::string(",") + m.at(i).func;
    });
    return text;
}

/// Uses everything before main, and again when all is over; a fault there makes the program fail.
struct EarlyAndLate {
    EarlyAndLate() { use(); }
    ~EarlyAndLate() { use(); }
    void use() {
        Lines lines(logger_factory::yon());
        YON_TRACE_INFO(log(), "depth");
        EXPECT_THROW(YON_THROW(EmptyDataException, "at an odd time"), EmptyDataException);
        text = lines.take();
        tracer::instance()->destroy_current_stack();
    }
    std::string text;
} const earlyAndLate;

TEST(Tracer, ServesBeforeMain) {
    EXPECT_NE(earlyAndLate.text.find("at an odd time"), std::string::npos);
    EXPECT_NE(earlyAndLate.text.find("CALL STACK: yon::EarlyAndLate::use("), std::string::npos);
}

TEST(Tracer, LinesAreIndentedByDepth) {
    log().traceOn(true);
    Lines lines(log());
    {
        TraceEntry const a(log(), "f.cpp", 1, "a", TraceEntry::both, nullptr);
        TraceEntry const b(log(), "f.cpp", 2, "b", TraceEntry::none, nullptr);
        TraceEntry const c(log(), "f.cpp", 3, "c", TraceEntry::entry, "x = 1");
        TraceEntry d(log(), "f.cpp", 4, "d", TraceEntry::entry, "");
        d.info() = "later";
        d.addType(TraceEntry::exit);
        EXPECT_EQ(stackText(), "d(f.cpp:4)\nc(f.cpp:3)\nb(f.cpp:2)\na(f.cpp:1)");
    }
    std::string expected;
    for (char const * call : {"TRACE a() ", "TRACE ........ c( x = 1 ) ", "TRACE ............ d() ",
                              "TRACE~____________ d( later ) ", "TRACE~a() "})
        expected += ruled(call[5] == '~' ? '_' : '.', Lines::prefix() + "[TT] " + call, "");
    EXPECT_EQ(lines.take(), expected);
    log().traceOn(false);
    tracer::instance()->pop();
    EXPECT_EQ(stackText(), "");
}

TEST(Tracer, TheStackIsOneHoweverItIsReached) {
    tracer & t = *tracer::instance();
    for (bool const shared : {false, true}) {
        if (shared) t.container();
        for (int depth : {1, 64, 65, 200}) {
            for (int i = 0; i < depth; ++i) t.push("f.cpp", static_cast<unsigned>(i), "f");
            diagnostics::enter({"f.cpp", 999, "port"});
            EXPECT_EQ(stackText().substr(0, 18), "port(f.cpp:999)\nf(");
            diagnostics::leave({"f.cpp", 999, "port"});
            for (int i = depth; i-- > 0; t.pop()) {
                EXPECT_TRUE(stackText().starts_with("f(f.cpp:" + std::to_string(i) + ")"));
            }
            EXPECT_EQ(stackText(), "");
        }
    }
    // A kept reference, and changes from outside.
    stack<Current> & kept = t.container();
    kept.push(Current("f.cpp", 1, "mine"));
    TraceEntry const entry(log(), "f.cpp", 2, "theirs", TraceEntry::both, nullptr);
    EXPECT_EQ(mirrored(ThreadId::current()), ":2,mine,theirs");
    dumper d(true);
    t.separator("; ").dump(d);
    EXPECT_EQ(d.str(), "\"theirs(f.cpp:2); mine(f.cpp:1)\"");
    EXPECT_STREQ(EmptyDataException("", 0, "", "").stack().container().top().func(), "theirs");
    tracer::destroy();
    EXPECT_EQ(stackText(), "");
    EXPECT_EQ(tracer::instance()->separator(), "\n") << "a new stack";
}

struct Traced : SimpleThread {
    explicit Traced(std::atomic<int> & step)
        : SimpleThread(nullptr, "thread-with-quite-a-long-name-of-it"), step_(step) {}
    void run() override {
        TraceEntry const entry(log(), "f.cpp", 2, "deep", TraceEntry::both, nullptr);
        tracer::instance()->container();
        writeInfoLog(log(), "", 0, "", "text", "TAG");
        record = Lines::prefix() + "[TT][TAG]{" + name() + "} text\n";
        step_ = 1;
        while (step_ != 2) ThreadControl::yield();
    }
    std::atomic<int> & step_;
    std::string record;
};

TEST(Tracer, ThreadsLeaveNothingBehind) {
    auto const count = [] {
        auto & stacks = *Singleton_T<mt::map<ThreadId, CallStack>>::instance("", 0, "");
        Lock const lock(stacks);
        return stacks.size();
    };
    std::size_t const before = count();
    Lines lines(log());
    std::atomic<int> step{0};
    Handle<Traced> const thread = YON_NEW(Traced)(step);
    ThreadId const id = thread->start(0).id();
    while (step != 1) ThreadControl::yield();
    EXPECT_EQ(mirrored(id), "thread-with-quite-a-long-name-o:2,yon::SimpleThread::run_i,deep");
    EXPECT_EQ(lines.take(), thread->record);
    EXPECT_EQ(count(), before + 1);
    step = 2;
    thread->stop();
    EXPECT_EQ(mirrored(id), "");

    std::atomic<int> wrong{0};
    InThreads(5, [&wrong](int t) {
        for (int i = 0; i < 1000; ++i) {
            YON_TRACE(log());
            TraceEntry const entry(log(), "f.cpp", static_cast<unsigned>(t), "inner", TraceEntry::both, nullptr);
            if (i % 100 == t && stackText().find("inner(f.cpp:" + std::to_string(t)) != 0) ++wrong;
            if (i % 500 == 0) tracer::instance()->destroy_current_stack();
            if (t != 4) YON_LOG_DATA(log(), "thread " << t << " line " << i);
            if (t == 4 && i < 100) mirrored(1);
        }
    });
    EXPECT_EQ(wrong, 0);
    std::string const text = lines.take();
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 4000);
    EXPECT_EQ(count(), before);
}

TEST(Tracer, ThePortWritesToYon) {
    logger & yon = logger_factory::yon();
    Lines lines(yon);
    yon.traceOn(true);
    diagnostics::enter({"f.cpp", 1, "app::f"});
    diagnostics::leave({"f.cpp", 1, "app::f"});
    yon.traceOn(false);
    std::string const head = Lines::prefix() + "[YON] TRACE";
    EXPECT_EQ(lines.take(), ruled('.', head + " app::f() ", "") + ruled('_', head + "~app::f() ", ""));
}

TEST(Header, DateTimeIsThatOfTheMoment) {
    DateTimeText text;
    for (longlong i = 0, us = 1'000'000'000'998'000; i < 3000; ++i, us += i % 7 * 997 - 500)
        EXPECT_EQ(text.at(Time(us)), istr(Time(us).toDateTime()));
}

}  // namespace
}  // namespace yon
