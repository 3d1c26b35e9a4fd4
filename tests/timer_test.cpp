#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <mutex>
#include <random>
#include <set>
#include <sstream>

#include "record_testing.h"
#include "thread_testing.h"
#include "yon/yon.h"

namespace yon {
namespace {

using Type = TimerCallbackBlock::Type;

struct Call {
    Type type;
    TimerId id;
    bool operator==(Call const &) const = default;
};
void PrintTo(Call const & c, std::ostream * os) { *os << (c.type == Type::fired ? "fired" : "released") << c.id; }
using Calls = std::vector<Call>;

/// Keeps the calls, after it has done with each what the test wants.
struct Probe : ITimerObject {
    explicit Probe(std::function<void(Call const &)> hook = {}) : hook_(std::move(hook)) {}
    void onTimeout(ulong serial, ulong position, ulong user, void * param) override {
        EXPECT_EQ(user, 7u);
        EXPECT_EQ(param, this);
        note({Type::fired, {serial, position}});
    }
    void onRelease(ulong serial, ulong position, ulong, void *) override {
        note({Type::released, {serial, position}});
    }
    dumper & dump(dumper & d) const override { return d.raw("probe"); }
    void note(Call const & call) {
        if (hook_) hook_(call);
        std::lock_guard const lock(mutex_);
        calls_.push_back(call);
    }
    bool waitFor(std::size_t count) {
        return eventually([&] {
            std::lock_guard const lock(mutex_);
            return calls_.size() >= count;
        });
    }
    Calls take() {
        std::lock_guard const lock(mutex_);
        return std::exchange(calls_, {});
    }

    std::function<void(Call const &)> hook_;
    std::mutex mutex_;
    Calls calls_;
};

/// Holds the callback thread up until it is opened.
struct Gate {
    void pass() { entered_.store(true), entered_.notify_all(), open_.wait(false); }
    void waitEntered() { entered_.wait(false); }
    void open() { open_.store(true), open_.notify_all(); }
    std::atomic<bool> entered_{false}, open_{false};
};

/// A queue whose clock stands still.
struct Queue : testing::Test {
    Queue() { at(0); }
    ~Queue() override { q_->stop(); }  // the probe goes before the queue
    void at(longlong ms) { q_->check(Time::milliSeconds(ms)); }
    TimerId set(ulong interval, ulong times) {
        TimerId id;
        q_->setTimer(id, 7, interval, &probe_, times, &probe_);
        return id;
    }
    /// What has been called, once nothing is left to be called. What ends by itself is released in a second round.
    Calls calls() {
        q_->killTimerAndWait({});
        q_->killTimerAndWait({});
        return probe_.take();
    }
    /// Whether these were all records. Of a slot only the beginning is compared. Two threads may write their records
    /// in either order.
    void expectRecords(std::vector<std::string> beginnings) {
        std::vector<std::string> lines = records_.take();
        std::sort(beginnings.begin(), beginnings.end());
        std::sort(lines.begin(), lines.end());
        auto const begins = [](std::string const & line, std::string const & with) { return line.starts_with(with); };
        EXPECT_TRUE(std::equal(lines.begin(), lines.end(), beginnings.begin(), beginnings.end(), begins))
            << testing::PrintToString(lines) << "\ninstead of\n"
            << testing::PrintToString(beginnings);
    }

    Records records_{"src/yon/timer/"};
    Probe probe_;
    Handle<TimerQueue> q_ = new TimerQueue;
};

std::string const slot = "@yon::TimerBlock {";

TEST_F(Queue, KeepsTheRulesOfSlots) {
    for (int i = 0; i < 300; ++i) set(1000, 0);
    EXPECT_TRUE(set(1, 1).empty());
    TimerId const id(1, 17);
    EXPECT_TRUE(q_->killTimer(id));
    for (bool const reused : {false, true}) {
        EXPECT_FALSE(q_->killTimer(id) || q_->resetTimer(id, 1, 1));
        EXPECT_TRUE(reused || set(1000, 0) == TimerId(2, 17)) << "the position just freed";
    }
    expectRecords({"<ERROR> 164 yon::TimerQueue::set: setTimer: timer queue full, no available timer",
                   "<WARNING> 218 yon::TimerQueue::kill: killTimer: idle timer " + slot,
                   "<ERROR> 188 yon::TimerQueue::reset: resetTimer: idle timer " + slot,
                   "<WARNING> 213 yon::TimerQueue::kill: killTimer: invalid timer {1, 17}",
                   "<ERROR> 182 yon::TimerQueue::reset: resetTimer: invalid timer {1, 17}"});
    EXPECT_EQ(calls(), Calls({{Type::released, id}}));
    for (TimerId none : {TimerId(), TimerId(0, 5), TimerId(1, 300), TimerId(1, npos)}) {
        EXPECT_FALSE(q_->killTimer(none));
    }
}

/// The whole life of timers under random calls, beside a plain model.
TEST_F(Queue, FollowsTheModel) {
    struct Timer {
        TimerId id;
        longlong expiry;
        ulong interval, times;
    };
    std::mt19937 random(5);
    auto const below = [&](std::size_t n) { return static_cast<ulong>(random() % n); };
    std::vector<Timer> model;  // as they expire, equal ones in the order in which they were armed
    std::vector<TimerId> free, stale;
    for (ulong i = 300; i > 0; --i) free.push_back({0, i - 1});
    longlong now = 0;
    auto const arm = [&](TimerId id, ulong interval, ulong times) {
        Timer const t{id, now + interval, interval, times};
        auto const later = [](longlong expiry, Timer const & other) { return expiry < other.expiry; };
        model.insert(std::upper_bound(model.begin(), model.end(), t.expiry, later), t);
    };
    for (int round = 0; round < 8000; ++round) {
        ulong const interval = below(40), times = below(3), action = below(6);
        Calls expected;
        std::vector<TimerId> ended;
        if (action < 2) {
            TimerId const id = set(interval, times);
            ASSERT_EQ(id, free.empty() ? TimerId() : TimerId(free.back().serial() + 1, free.back().position()));
            if (!free.empty()) free.pop_back(), arm(id, interval, times);
        } else if (action < 4 && !model.empty()) {
            auto const chosen = model.begin() + below(model.size());
            TimerId const id = chosen->id;
            model.erase(chosen);
            if (below(3) == 0) {
                ASSERT_TRUE(q_->killTimer(id));
                ended.push_back(id);
            } else {
                ASSERT_TRUE(q_->resetTimer(id, interval, times));
                arm(id, interval, times);
            }
        } else if (action == 4 && !stale.empty()) {
            TimerId const id = stale[below(stale.size())];
            ASSERT_FALSE(below(2) ? q_->killTimer(id) : q_->resetTimer(id, 1, 1));
        } else {
            at(now += below(20));
            std::vector<Timer> due;
            for (; !model.empty() && model.front().expiry <= now; model.erase(model.begin())) due.push_back(model[0]);
            for (Timer const & t : due) {
                expected.push_back({Type::fired, t.id});
                t.times == 1 ? ended.push_back(t.id) : arm(t.id, t.interval, t.times - (t.times != 0));
            }
        }
        for (TimerId id : ended) expected.push_back({Type::released, id}), free.push_back(id), stale.push_back(id);
        ASSERT_EQ(calls(), expected) << "round " << round;
        auto const same = [](TimerInfo const & a, Timer const & b) {
            return a.id == b.id && a.times == b.times && a.interval == Time::milliSeconds(b.interval);
        };
        std::vector<TimerInfo> const infos = q_->timers();
        ASSERT_TRUE(std::equal(infos.begin(), infos.end(), model.begin(), model.end(), same));
    }
}

TEST_F(Queue, ReleasesAfterTheLastQueuedEvent) {
    Gate gate;
    probe_.hook_ = [&](Call const &) { gate.pass(); };
    TimerId const id = set(10, 1);
    at(10);
    gate.waitEntered();
    EXPECT_EQ(q_->timers().at(0).status, TimerStatus::paused);
    EXPECT_TRUE(q_->resetTimer(id, 10, 1)) << "revived";
    at(20);
    gate.open();
    EXPECT_EQ(calls(), Calls({{Type::fired, id}, {Type::fired, id}, {Type::released, id}}));
    expectRecords({});
}

TEST_F(Queue, RecordsWhatTheCategoriesAskFor) {
    records_.debug = true;
    TimerId const id = set(10, 2);
    q_->resetTimer(id, 20, 2);
    at(20);
    EXPECT_EQ(calls().size(), 1u);
    at(40);
    EXPECT_EQ(calls().size(), 2u);
    std::string const debug = "TIMER.DEBUG ", trace = "TIMER.TRACE ", timer = "yon::TimerQueue::onTimer: ";
    std::string const object =
        "\n    m_statusPos = 0\n    m_unTimes = 2\n    m_nInterval = \"0:00:00.010\"\n"
        "    *m_pCallBackTimerObject = probe\n    m_nUserTimerID = 7\n    m_pParam = ";
    expectRecords(
        {debug + "171 yon::TimerQueue::set: " + slot + object, debug + "196 yon::TimerQueue::reset: " + slot,
         trace + "266 yon::TimerQueue::doCheck: expired timers = 1", trace + "283 " + timer + "onTimer: " + slot,
         trace + "306 " + timer + "more times " + slot, trace + "266 yon::TimerQueue::doCheck: expired timers = 1",
         trace + "283 " + timer + "onTimer: " + slot, trace + "299 " + timer + "set to paused " + slot,
         trace + "326 yon::TimerQueue::onTimerEnd: release " + slot});
    TimerId null;
    q_->setTimer(null, 0, 0, nullptr, 1, nullptr);
    records_.take();
    at(40);
    EXPECT_EQ(q_->timers().at(0).status, TimerStatus::busy);
    EXPECT_TRUE(q_->killTimer(null));
    expectRecords({trace + "266", trace + "283",
                   "<ERROR> 292 " + timer + "onTimer: null callback object for timer " + slot,
                   debug + "222 yon::TimerQueue::kill: " + slot});
}

TEST_F(Queue, DumpsWallClockTimes) {
    set(1000, 3);
    q_->check();
    dumper d;
    std::string const text = (d << *q_).str();
    std::size_t at = 0;
    for (std::string const part : {"@yon::TimerQueue {", "m_idleBeginPos = 1", "m_idStatus = {0, 1, 2, ", ", 299}",
                                   "m_currTime = \"20", "m_lastTime = \"20", "m_waitTime = \"0:00:00.050\"",
                                   "m_timeoutQueue = @yon::multiset {", "@yon::TimeoutBlock {", "m_expiredTime = \"",
                                   "m_nTimerID = ", "*m_tb = @yon::TimerBlock {", "= probe", "m_status = \"BUSY\""}) {
        at = text.find(part, at);
        ASSERT_NE(at, text.npos) << part << " in\n" << text;
    }
}

TEST_F(Queue, LetsCallbacksDoWhatTheyLike) {
    Gate gate;
    Probe blocker([&](Call const &) { gate.pass(); });
    TimerId id, made;
    q_->setTimer(id, 7, 1000, &blocker, 0, &blocker);
    q_->killTimer(id);
    gate.waitEntered();
    TimerId const other = set(1000, 0), victim = set(0, 0);
    at(0);
    at(0);
    probe_.hook_ = [&](Call const & call) {
        if (call != Call{Type::fired, victim}) return;
        EXPECT_TRUE(q_->killTimer(other));
        // Released here and now, and the second event is dropped.
        EXPECT_TRUE(q_->killTimerAndWait(victim));
        EXPECT_FALSE(q_->killTimerAndWait(victim));
        EXPECT_TRUE(q_->setTimer(made, 7, 0, &probe_, 1, &probe_));
    };
    gate.open();
    EXPECT_EQ(calls(), Calls({{Type::released, victim}, {Type::fired, victim}, {Type::released, other}}));
    EXPECT_EQ(made.position(), victim.position());
    std::string const killed = "<ERROR> 321 yon::TimerQueue::onTimerEnd: onTimerEnd: already killed timer {1, 1}";
    expectRecords({killed, killed});
    at(0);
    EXPECT_EQ(calls(), Calls({{Type::fired, made}, {Type::released, made}}));
}

TEST_F(Queue, RecordsWhatCallbacksThrow) {
    // What is thrown, the tests of threads vary.
    probe_.hook_ = [&](Call const & call) {
        if (call.type == Type::fired) YON_THROW(Exception, "ours");
    };
    TimerId const id = set(0, 1);
    at(0);
    EXPECT_EQ(calls(), Calls({{Type::released, id}}));
    Probe probe;
    TimerCallbackBlock{static_cast<Type>(2), id, &probe, 0, nullptr}.exec();
    EXPECT_TRUE(probe.take().empty());
    EXPECT_EQ(records_.count("Exception: ours"), 1);
    expectRecords({"<ERROR> ", "<WARNING> 47 yon::TimerCallbackBlock::exec: unknown timer callback event type"});
}

TEST_F(Queue, StopDeliversReleasedEventsAndNothingElse) {
    Gate gate;
    probe_.hook_ = [&](Call const &) { gate.pass(); };
    TimerId const running = set(0, 1), queued = set(0, 0), armed = set(1000, 0), killed = set(1000, 0);
    at(0);
    gate.waitEntered();
    q_->killTimer(killed);
    std::thread stopper([&] { q_->stop(); });
    while (q_->resetTimer(armed, 1000, 0)) std::this_thread::yield();
    gate.open();
    stopper.join();
    Calls expected{{Type::fired, running}};
    for (TimerId id : {killed, armed, queued, running}) expected.push_back({Type::released, id});
    EXPECT_EQ(probe_.take(), expected);
    EXPECT_FALSE(q_->killTimer(armed) || q_->killTimerAndWait(armed) || q_->resetTimer(armed, 1, 1));
}

TimerManager * manager() { return TimerManager::instance(); }

/// The service itself, with its clock.
struct Manager : testing::Test {
    ~Manager() override { manager()->stop(); }
    Records silence_{"src/yon/timer/"};  // so that the log needs no timers
    bool set(TimerId & id, ulong interval = 0, ulong times = 0) {
        return manager()->setTimer(id, 7, interval, &probe_, times, &probe_);
    }
    Probe probe_;
};

TEST_F(Manager, StartsAndStops) {
    TimerId id, later;
    EXPECT_FALSE(set(id)) << "before start()";
    manager()->start();
    EXPECT_EQ(manager()->start(), 0);
    ASSERT_TRUE(set(id));
    ASSERT_TRUE(probe_.waitFor(3));
    ASSERT_EQ(manager()->timers().size(), 1u);
    std::ostringstream os;
    manager()->dump(os);
    EXPECT_TRUE(os.str().ends_with("YON_TIMER_MAX_NUM = 300\n    YON_TIMER_CHECK_TIME = 50000\n}")) << os.str();
    TimerManager * const kept = manager();
    kept->stop();
    EXPECT_EQ(probe_.take().back(), (Call{Type::released, id}));
    kept->stop();
    kept->start();
    EXPECT_FALSE(kept->setTimer(later, 7, 0, &probe_, 0, &probe_)) << "a stopped one stays so";
    EXPECT_FALSE(set(later) || manager()->killTimer(id) || manager()->resetTimer(id, 1, 1));
    manager()->start();
    ASSERT_TRUE(set(later));
    EXPECT_EQ(later.position(), id.position());
    EXPECT_FALSE(manager()->killTimer(id)) << "of another life of the service";
    EXPECT_TRUE(probe_.waitFor(2));
}

TEST_F(Manager, RefusesToStopInACallback) {
    manager()->start();
    TimerId id, more;
    probe_.hook_ = [&](Call const &) {
        EXPECT_THROW(manager()->stop(), Exception);
        manager()->start();
        set(more, 0, 1);
    };
    set(id, 0, 1);
    EXPECT_TRUE(probe_.waitFor(5));
    manager()->stop();
}

/// Timers that belong to the library come back.
TEST_F(Manager, BringsServiceTimersBack) {
    std::atomic<int> calls{0};
    ServiceTimer timer(
        10, [](void * n) { ++*static_cast<std::atomic<int> *>(n); }, &calls);
    timer.start();
    EXPECT_FALSE(timer.armed());
    for (int i = 0; i < 2; ++i) {
        manager()->start();
        EXPECT_TRUE(eventually([&, before = calls.load()] { return calls > before + 1; }) && timer.armed());
        manager()->stop();
        EXPECT_FALSE(timer.armed());
    }
    manager()->start();
    timer.stop();
    EXPECT_FALSE(timer.armed());
    for (TimerId id; set(id, 100000);) continue;
    timer.start();
    EXPECT_FALSE(timer.armed()) << "no slot left";
}

/// An owner that notices calls after its death.
struct Owner {
    struct Canary {
        ~Canary() { alive_ = false; }
        volatile bool alive_ = true;
    };
    void tick(void * param) {
        EXPECT_TRUE(canary_.alive_);
        ++*static_cast<std::atomic<int> *>(param);
        if (killsItself_) delete this;
    }
    bool killsItself_ = false;
    Canary canary_;
    Timer_T<Owner> timer_{this, &Owner::tick};
};

TEST_F(Manager, LetsTimersGoInTheirOwnCallback) {
    manager()->start();
    std::atomic<int> ticks{0};
    auto * const owner = new Owner;
    owner->killsItself_ = true;
    ASSERT_TRUE(owner->timer_.setTimer(1, 0, 0, &ticks));
    while (!manager()->timers().empty()) sleep(1);
    EXPECT_EQ(ticks, 1);
}

/// Everybody at once: timers of all kinds set and ended from several threads, while the service stops and starts.
TEST_F(Manager, SurvivesEverybodyAtOnce) {
    std::atomic<int> ticks{0}, settings{0}, releases{0};
    auto const user = [&](int seed) {
        std::mt19937 random(static_cast<unsigned>(seed));
        auto const below = [&](std::size_t n) { return static_cast<ulong>(random() % n); };
        std::set<TimerId> gone;
        Probe probe([&](Call const & call) {
            EXPECT_FALSE(gone.contains(call.id));
            if (call.type == Type::released) gone.insert(call.id), ++releases;
        });
        std::vector<TimerId> ids(1);
        for (int i = 0; i < 300; ++i) {
            auto const pick = [&] { return ids[below(ids.size())]; };
            TimerId id;
            settings += manager()->setTimer(id, 7, below(80), &probe, below(3), &probe);
            ids.push_back(id);
            manager()->resetTimer(pick(), below(80), 1);
            if (below(2)) manager()->killTimer(pick());
            if (below(8) == 0) manager()->killTimerAndWait(pick());
            Owner owner;
            owner.timer_.setTimer(3, 0, 1 + below(2), &ticks);
            if (below(4) == 0) sleep(below(100));
        }
        for (TimerId id : ids) manager()->killTimerAndWait(id);
    };
    std::atomic<bool> done{false};
    {
        InThreads const others(3, [&](int i) {
            while (!done) {
                std::ostringstream os;
                if (i == 2) manager()->dump(os);
                if (i != 2) manager()->start(), sleep(i == 0 ? 150 : 70), manager()->stop();
            }
        });
        InThreads(3, user);
        done = true;
    }
    EXPECT_EQ(releases, settings);
    EXPECT_GT(ticks, 0);
}

using Exit = Manager;

/// Leaves main with timers running, and callbacks in them. While the process is closing nothing fires.
TEST_F(Exit, IsCleanAndQuick) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    TimeCounter const time;
    EXPECT_EXIT(
        {
            static Probe * const probe = new Probe;
            manager()->start();
            TimerId id;
            for (ulong i = 0; i < 100; ++i) manager()->setTimer(id, 7, i, probe, 0, probe);
            probe->waitFor(20);
            System::close();
            Probe last;
            manager()->setTimer(id, 7, 0, &last, 1, &last);
            last.waitFor(1);
            std::exit(last.take() == Calls({{Type::released, id}}) ? 3 : 4);
        },
        testing::ExitedWithCode(3), "");
    EXPECT_LT(time.elapsed(), Time::seconds(15));
}

}  // namespace
}  // namespace yon
