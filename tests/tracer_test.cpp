#include <gtest/gtest.h>

#include <atomic>
#include <sstream>
#include <thread>

#include "log_testing.h"
#include "yon/base/throw.h"
#include "yon/log/dumper.h"
#include "yon/log/log_thread.h"
#include "yon/log/macros.h"
#include "yon/mt/lock.h"
#include "yon/mt/map.h"
#include "yon/mt/simple_thread.h"
#include "yon/util/singleton_T.h"

namespace yon {
namespace {

using testing::Lines;
using testing::ruled;

logger & log() {
    static logger & l = logger_factory::instance("TT");
    return l;
}

/// Uses everything before main, and again when all is over; a fault there makes the program fail.
struct EarlyAndLate {
    EarlyAndLate() { use(); }
    ~EarlyAndLate() { use(); }
    void use() {
        Lines lines(logger_factory::yon());
        YON_TRACE_INFO(log(), "depth");
        try {
            YON_THROW(EmptyDataException, "at an odd time");
        } catch (EmptyDataException const &) {
        }
        text = lines.take();
        tracer::instance()->destroy_current_stack();
    }
    std::string text;
} const earlyAndLate;

TEST(Tracer, ServesBeforeMain) {
    EXPECT_NE(earlyAndLate.text.find("at an odd time"), std::string::npos);
    EXPECT_NE(earlyAndLate.text.find("CALL STACK: yon::EarlyAndLate::use("), std::string::npos) << earlyAndLate.text;
}

std::string stackText() {
    std::ostringstream os;
    printTraceStack(os);
    return os.str();
}

std::string line(char const * mark, std::string const & call, char fill) {
    return ruled(fill, Lines::prefix() + "[TT] " + mark + call, "");
}

/// The threads that a crash handler would see, with the functions of each.
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
    EXPECT_EQ(lines.take(), line("TRACE ", "a() ", '.') + line("TRACE ", "........ c( x = 1 ) ", '.') +
                                line("TRACE ", "............ d() ", '.') +
                                line("TRACE~", "____________ d( later ) ", '_') + line("TRACE~", "a() ", '_'));
    log().traceOn(false);
    EXPECT_EQ(stackText(), "");
    tracer::instance()->pop();
    EXPECT_EQ(stackText(), "");
}

TEST(Tracer, TheStackIsOneHoweverItIsReached) {
    tracer & t = *tracer::instance();
    for (bool const shared : {false, true}) {
        if (shared) t.container();
        for (int depth : {1, 64, 65, 200}) {
            for (int i = 0; i < depth; ++i) t.push("f.cpp", static_cast<unsigned>(i), i % 2 == 0 ? "even" : "odd");
            if (depth == 65) diagnostics::enter({"f.cpp", 65, "port"});
            std::ostringstream os;
            if (depth == 65) t.dump(os), diagnostics::leave({"f.cpp", 65, "port"});
            EXPECT_EQ(os.str().substr(0, 30), depth == 65 ? "port(f.cpp:65)\neven(f.cpp:64)\n" : "");
            EXPECT_EQ(shared ? t.container().size() : static_cast<std::size_t>(depth),
                      static_cast<std::size_t>(depth));
            for (int i = depth; i-- > 0;) {
                std::string const top = (i % 2 == 0 ? "even(f.cpp:" : "odd(f.cpp:") + std::to_string(i) + ")";
                EXPECT_EQ(i % 16 == 0 ? stackText().substr(0, top.size()) : top, top);
                t.pop();
            }
        }
    }
    // A kept reference, and changes from outside.
    stack<Current> & kept = t.container();
    kept.push(Current("f.cpp", 1, "mine"));
    TraceEntry const entry(log(), "f.cpp", 2, "theirs", TraceEntry::both, nullptr);
    EXPECT_EQ(kept.size(), 2u);
    EXPECT_EQ(mirrored(ThreadId::current()), ":2,mine,theirs");
    dumper d(true);
    t.separator("; ").dump(d);
    EXPECT_EQ(d.str(), "\"theirs(f.cpp:2); mine(f.cpp:1)\"");
    EXPECT_TRUE(kept.top().prefix().empty() && (*kept.begin()).prefix().empty());
    tracer::destroy();
    EXPECT_EQ(stackText(), "");
    EXPECT_EQ(t.separator(), "\n") << "a new stack";
}

TEST(Tracer, ExceptionsCarryTheStack) {
    YON_TRACE(log());
    TraceEntry const entry(log(), "f.cpp", 2, "inner", TraceEntry::both, nullptr);
    try {
        YON_THROW(EmptyDataException, "gone");
        FAIL();
    } catch (EmptyDataException const & e) {
        EXPECT_EQ(e.stack().container().size(), 2u);
        EXPECT_STREQ(e.stack().container().top().func(), "inner");
    }
}

struct Traced : SimpleThread {
    explicit Traced(std::atomic<int> & step)
        : SimpleThread(nullptr, "traced-thread-with-quite-a-long-name"), step_(step) {}
    void run() override {
        TraceEntry const entry(log(), "f.cpp", 2, "deep", TraceEntry::both, nullptr);
        tracer::instance()->container();
        step_ = 1;
        while (step_ != 2) ThreadControl::yield();
    }
    std::atomic<int> & step_;
};

TEST(Tracer, ThreadsLeaveNothingBehind) {
    std::atomic<int> step{0};
    using CallStacks = mt::map<ThreadId, CallStack>;
    auto const count = [] {
        CallStacks & stacks = *Singleton_T<CallStacks>::instance("", 0, "");
        Lock const lock(stacks);
        return stacks.size();
    };
    std::size_t const before = count();
    Handle<Traced> const thread = YON_NEW(Traced)(step);
    thread->start(0);
    while (step != 1) ThreadControl::yield();
    EXPECT_EQ(mirrored(thread->id()), "traced-thread-with-quite-a-long:2,yon::SimpleThread::run_i,deep");
    EXPECT_EQ(count(), before + 1);
    ThreadId const id = thread->id();
    step = 2;
    thread->stop();
    EXPECT_EQ(mirrored(id), "");
    EXPECT_EQ(count(), before);

    std::vector<std::thread> threads;
    std::atomic<int> wrong{0};
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&wrong, t] {
            for (int i = 0; i < 2000; ++i) {
                YON_TRACE(log());
                TraceEntry const entry(log(), "f.cpp", static_cast<unsigned>(t), "inner", TraceEntry::both, nullptr);
                if (i % 100 == t && stackText().find("inner(f.cpp:" + std::to_string(t)) != 0) ++wrong;
                if (i % 500 == 0) tracer::instance()->destroy_current_stack();
            }
        });
    }
    for (int i = 0; i < 100; ++i) mirrored(1);
    for (std::thread & t : threads) t.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(count(), before);
}

TEST(Header, DateTimeIsThatOfTheMoment) {
    DateTimeText text;
    longlong us = 1'000'000'000'998'000;
    for (int i = 0; i < 3000; ++i, us += i % 7 * 997 - 500) {
        EXPECT_EQ(text.at(Time(us)), istr(Time(us).toDateTime()));
    }
    EXPECT_EQ(text.at(Time(-1)), istr(Time(-1).toDateTime()));
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

}  // namespace
}  // namespace yon
