#include <gtest/gtest.h>

#include <algorithm>
#include <condition_variable>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <random>
#include <set>
#include <sstream>
#include <stdexcept>
#include <thread>

#include "yon/yon.h"

namespace yon {
namespace {

using Type = TimerCallbackBlock::Type;

/// Keeps "tag line function: message" of every record.
struct Records final : diagnostics::Sink {
    Records() { diagnostics::install(this); }
    ~Records() { diagnostics::install(nullptr); }
    void exceptionThrown(diagnostics::Location const &, istr) noexcept override {}
    void record(diagnostics::Level, istr tag, diagnostics::Location const & at, istr message) noexcept override {
        if (!std::string(at.file).starts_with("src/yon/timer/")) return;
        std::ostringstream os;
        os << tag << ' ' << at.line << ' ' << at.func << ": " << message;
        std::lock_guard const lock(mutex_);
        lines_.push_back(os.str());
    }
    bool categoryOn(istr) noexcept override { return debug_; }
    void enter(diagnostics::Location const &) noexcept override {}
    void leave(diagnostics::Location const &) noexcept override {}
    void callStack(CallStack &) noexcept override {}

    /// Whether these were all, and forgets them. Of a slot only the beginning is compared.
    void expect(std::vector<std::string> const & beginnings) {
        std::lock_guard const lock(mutex_);
        EXPECT_EQ(lines_.size(), beginnings.size()) << testing::PrintToString(lines_);
        for (std::size_t i = 0; i < std::min(lines_.size(), beginnings.size()); ++i) {
            EXPECT_TRUE(lines_[i].starts_with(beginnings[i])) << lines_[i] << "\ninstead of\n" << beginnings[i];
        }
        lines_.clear();
    }

    std::atomic<bool> debug_{false};
    std::mutex mutex_;
    std::vector<std::string> lines_;
};

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
        note({Type::fired, {serial, position}}, user, param);
    }
    void onRelease(ulong serial, ulong position, ulong user, void * param) override {
        note({Type::released, {serial, position}}, user, param);
    }
    dumper & dump(dumper & d) const override { return d.raw("probe"); }

    void note(Call const & call, ulong user, void * param) {
        EXPECT_EQ(param, user == 0 ? nullptr : this);
        if (hook_) hook_(call);
        std::lock_guard const lock(mutex_);
        calls_.push_back(call);
        changed_.notify_all();
    }
    bool waitFor(std::size_t count) {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, std::chrono::seconds(20), [&] { return calls_.size() >= count; });
    }
    Calls take() {
        std::lock_guard const lock(mutex_);
        return std::exchange(calls_, {});
    }

    std::function<void(Call const &)> hook_;
    std::mutex mutex_;
    std::condition_variable changed_;
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
    TimerId set(ulong interval, ulong times, ulong user = 7) {
        TimerId id;
        EXPECT_TRUE(q_->setTimer(id, user, interval, &probe_, times, user == 0 ? nullptr : &probe_));
        return id;
    }
    /// What has been called, once nothing is left to be called. What ends by itself is released in a second round.
    Calls calls() {
        q_->killTimerAndWait({});
        q_->killTimerAndWait({});
        return probe_.take();
    }

    Records records_;
    Probe probe_;
    Handle<TimerQueue> q_ = new TimerQueue;
};

std::string const slot = "@yon::TimerBlock {";

TEST_F(Queue, KeepsTheRulesOfSlots) {
    std::vector<TimerId> ids;
    for (ulong i = 0; i < 300; ++i) ids.push_back(set(1000, 0));
    EXPECT_EQ(ids[17], TimerId(1, 17));
    TimerId none;
    EXPECT_FALSE(q_->setTimer(none, 0, 1, &probe_, 1, nullptr));
    EXPECT_TRUE(none.empty());
    records_.expect({"<ERROR> 164 yon::TimerQueue::set: setTimer: timer queue full, no available timer"});
    for (ulong position : {17, 299, 0}) {
        EXPECT_TRUE(q_->killTimer(ids[position]));
        EXPECT_FALSE(q_->killTimer(ids[position]));
        EXPECT_FALSE(q_->resetTimer(ids[position], 1, 1));
        EXPECT_EQ(set(1000, 0), TimerId(2, position)) << "the position just freed";
        EXPECT_FALSE(q_->killTimer(ids[position]));
        EXPECT_FALSE(q_->resetTimer(ids[position], 1, 1));
        std::string const id = "{1, " + std::to_string(position) + "}";
        records_.expect({"<WARNING> 218 yon::TimerQueue::kill: killTimer: idle timer " + slot,
                         "<ERROR> 188 yon::TimerQueue::reset: resetTimer: idle timer " + slot,
                         "<WARNING> 213 yon::TimerQueue::kill: killTimer: invalid timer " + id,
                         "<ERROR> 182 yon::TimerQueue::reset: resetTimer: invalid timer " + id});
        EXPECT_EQ(calls(), Calls({{Type::released, ids[position]}}));
    }
    for (TimerId id : {TimerId(), TimerId(0, 5), TimerId(1, 300), TimerId(1, npos)}) EXPECT_FALSE(q_->killTimer(id));
}

/// The whole life of timers under random calls, beside a plain model.
TEST_F(Queue, FollowsTheModel) {
    struct Timer {
        TimerId id;
        longlong expiry;
        ulong interval, times;
    };
    std::mt19937 random(5);
    std::vector<Timer> model;  // equal expiries in the order in which they were armed
    std::vector<ulong> freePositions;
    for (ulong i = 300; i > 0; --i) freePositions.push_back(i - 1);
    std::map<ulong, ulong> serials;
    std::vector<TimerId> stale;
    longlong now = 0;
    auto const arm = [&](Timer t) {
        t.expiry = now + t.interval;
        auto const later = [](longlong expiry, Timer const & other) { return expiry < other.expiry; };
        model.insert(std::upper_bound(model.begin(), model.end(), t.expiry, later), t);
    };
    auto const free = [&](TimerId id, Calls & expected) {
        expected.push_back({Type::released, id});
        freePositions.push_back(id.position());
        stale.push_back(id);
    };
    for (int round = 0; round < 20000; ++round) {
        ulong const interval = static_cast<ulong>(random() % 40), times = static_cast<ulong>(random() % 3);
        Calls expected;
        switch (model.empty() ? 0 : random() % 6) {
            case 0:
            case 1: {
                TimerId id;
                ASSERT_EQ(q_->setTimer(id, 1, interval, &probe_, times, &probe_), !freePositions.empty());
                if (freePositions.empty()) break;
                ulong const position = freePositions.back();
                freePositions.pop_back();
                ASSERT_EQ(id, TimerId(++serials[position], position));
                arm({id, 0, interval, times});
                break;
            }
            case 2:
            case 3: {
                auto const chosen = model.begin() + static_cast<std::ptrdiff_t>(random() % model.size());
                Timer const t = *chosen;
                model.erase(chosen);
                if (random() % 3 == 0) {
                    ASSERT_TRUE(q_->killTimer(t.id));
                    free(t.id, expected);
                } else {
                    ASSERT_TRUE(q_->resetTimer(t.id, interval, times));
                    arm({t.id, 0, interval, times});
                }
                break;
            }
            case 4: {
                if (stale.empty()) break;
                TimerId const id = stale[random() % stale.size()];
                ASSERT_FALSE(random() % 2 ? q_->killTimer(id) : q_->resetTimer(id, 1, 1));
                break;
            }
            default: {
                at(now += static_cast<longlong>(random() % 20));
                std::vector<Timer> due;
                std::vector<TimerId> ended;
                while (!model.empty() && model.front().expiry <= now) {
                    due.push_back(model.front());
                    model.erase(model.begin());
                }
                for (Timer & t : due) {
                    expected.push_back({Type::fired, t.id});
                    if (t.times == 0 || --t.times != 0)
                        arm(t);
                    else
                        ended.push_back(t.id);
                }
                for (TimerId id : ended) free(id, expected);
            }
        }
        if (random() % 4 == 0 || !expected.empty()) {
            ASSERT_EQ(calls(), expected) << "round " << round;
        }
        if (round % 100 != 0) continue;
        std::vector<TimerInfo> const infos = q_->timers();
        ASSERT_EQ(infos.size(), model.size());
        for (std::size_t i = 0; i < infos.size(); ++i) {
            ASSERT_EQ(infos[i].id, model[i].id);
            ASSERT_EQ(infos[i].times, model[i].times);
            ASSERT_EQ(infos[i].interval, Time::milliSeconds(model[i].interval));
        }
    }
    records_.lines_.clear();
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
    TimerId const killed = set(0, 0);
    at(20);
    at(20);
    q_->killTimer(killed);
    EXPECT_EQ(calls(), Calls({{Type::fired, killed}, {Type::fired, killed}, {Type::released, killed}}));
    records_.expect({});
}

TEST_F(Queue, RecordsWhatTheCategoriesAskFor) {
    records_.debug_ = true;
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
    records_.expect(
        {debug + "171 yon::TimerQueue::set: " + slot + object, debug + "196 yon::TimerQueue::reset: " + slot,
         trace + "266 yon::TimerQueue::doCheck: expired timers = 1", trace + "283 " + timer + "onTimer: " + slot,
         trace + "306 " + timer + "more times " + slot, trace + "266 yon::TimerQueue::doCheck: expired timers = 1",
         trace + "283 " + timer + "onTimer: " + slot, trace + "299 " + timer + "set to paused " + slot,
         trace + "326 yon::TimerQueue::onTimerEnd: release " + slot});
    TimerId null;
    q_->setTimer(null, 0, 0, nullptr, 1, nullptr);
    records_.lines_.clear();
    at(40);
    EXPECT_EQ(q_->timers().at(0).status, TimerStatus::busy);
    EXPECT_TRUE(q_->killTimer(null));
    records_.expect({trace + "266", trace + "283",
                     "<ERROR> 292 " + timer + "onTimer: null callback object for timer " + slot,
                     debug + "222 yon::TimerQueue::kill: " + slot});
}

TEST_F(Queue, DumpsWallClockTimes) {
    TimerId const id = set(1000, 3);
    q_->check();
    std::ostringstream os;
    dumper(os, false) << *q_;
    std::string const text = os.str();
    std::size_t at = 0;
    for (std::string const part : {"@yon::TimerQueue {", "m_idleBeginPos = 1", "m_idStatus = {0, 1, 2, ", ", 299}",
                                   "m_currTime = \"20", "m_lastTime = \"20", "m_waitTime = \"0:00:00.050\"",
                                   "m_timeoutQueue = @yon::multiset {", "@yon::TimeoutBlock {", "m_expiredTime = \"",
                                   "m_nTimerID = ", "*m_tb = @yon::TimerBlock {", "= probe", "m_status = \"BUSY\""}) {
        at = text.find(part, at);
        ASSERT_NE(at, text.npos) << part << " in\n" << text;
    }
    EXPECT_TRUE(q_->killTimer(id));
    EXPECT_STREQ(timerStatusName(static_cast<TimerStatus>(3)), "UNKNOWN");
}

TEST_F(Queue, LetsCallbacksDoWhatTheyLike) {
    Gate gate;
    Probe blocker([&](Call const &) { gate.pass(); });
    TimerId id, made;
    q_->setTimer(id, 1, 1000, &blocker, 0, &blocker);
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
    records_.expect({killed, killed});
    at(0);
    EXPECT_EQ(calls(), Calls({{Type::fired, made}, {Type::released, made}}));
}

TEST_F(Queue, RecordsWhatCallbacksThrow) {
    int round = 0;
    probe_.hook_ = [&](Call const &) {
        if (++round == 1) YON_THROW(Exception, "ours");
        if (round == 2) throw std::runtime_error("theirs");
        if (round == 3) throw 3;
    };
    TimerId const id = set(0, 3);
    for (int i = 0; i < 3; ++i) at(0);
    EXPECT_EQ(calls(), Calls({{Type::released, id}}));
    Probe probe;
    TimerCallbackBlock{static_cast<Type>(2), id, &probe, 0, nullptr}.exec();
    EXPECT_TRUE(probe.take().empty());
    for (char const * text : {"Exception: ours", "theirs", "not of any known class"}) {
        EXPECT_NE(records_.lines_.at(0).find(text), std::string::npos) << records_.lines_[0];
        EXPECT_TRUE(records_.lines_[0].starts_with("<ERROR> ")) << records_.lines_[0];
        records_.lines_.erase(records_.lines_.begin());
    }
    records_.expect({"<WARNING> 47 yon::TimerCallbackBlock::exec: unknown timer callback event type"});
}

TEST_F(Queue, StopDeliversReleasedEventsAndNothingElse) {
    Gate gate;
    probe_.hook_ = [&](Call const &) { gate.pass(); };
    TimerId const running = set(0, 1), queued = set(0, 0), armed = set(1000, 0), killed = set(1000, 0);
    at(0);
    gate.waitEntered();
    q_->killTimer(killed);
    std::thread stopper([&] { q_->stop(); });
    while (q_->setTimer(*std::make_unique<TimerId>(), 0, 1000, nullptr, 0, nullptr)) std::this_thread::yield();
    probe_.hook_ = {};
    gate.open();
    stopper.join();
    Calls calls = probe_.take();
    ASSERT_EQ(calls.size(), 5u);
    EXPECT_EQ(calls[0], (Call{Type::fired, running}));
    std::set<TimerId> released;
    for (std::size_t i = 1; i < calls.size(); ++i) {
        EXPECT_EQ(calls[i].type, Type::released);
        released.insert(calls[i].id);
    }
    EXPECT_EQ(released, std::set<TimerId>({running, queued, armed, killed}));
    EXPECT_FALSE(q_->killTimer(armed) || q_->killTimerAndWait(armed) || q_->resetTimer(armed, 1, 1));
}

TimerManager * manager() { return TimerManager::instance(); }

/// The service itself, with its clock.
struct Manager : testing::Test {
    ~Manager() override { manager()->stop(); }
    Probe probe_;
};

TEST_F(Manager, StartsAndStops) {
    TimerId id, later;
    auto const set = [&](TimerId & to) { return manager()->setTimer(to, 1, 0, &probe_, 0, &probe_); };
    EXPECT_FALSE(set(id)) << "before start()";
    manager()->start();
    EXPECT_EQ(manager()->start(), 0);
    ASSERT_TRUE(set(id));
    ASSERT_TRUE(probe_.waitFor(3));
    ASSERT_EQ(manager()->timers().size(), 1u);
    std::ostringstream os;
    manager()->dump(os);
    EXPECT_TRUE(os.str().starts_with("@yon::TimerManager {\n    *m_timerQueue = @yon::TimerQueue {")) << os.str();
    EXPECT_TRUE(os.str().ends_with("YON_TIMER_MAX_NUM = 300\n    YON_TIMER_CHECK_TIME = 50000\n}")) << os.str();
    TimerManager * const kept = manager();
    kept->stop();
    Calls const calls = probe_.take();
    EXPECT_EQ(calls.back(), (Call{Type::released, id}));
    kept->stop();
    kept->start();
    EXPECT_FALSE(kept->setTimer(later, 1, 0, &probe_, 0, &probe_)) << "a stopped one stays so";
    EXPECT_FALSE(set(later) || manager()->killTimer(id) || manager()->resetTimer(id, 1, 1));
    manager()->start();
    ASSERT_TRUE(set(later));
    EXPECT_EQ(later.position(), id.position());
    EXPECT_FALSE(manager()->killTimer(id)) << "of another life of the service";
    EXPECT_TRUE(probe_.waitFor(2));
}

TEST_F(Manager, RefusesToStopInACallback) {
    manager()->start();
    std::atomic<int> refused{0};
    probe_.hook_ = [&](Call const &) {
        try {
            manager()->stop();
        } catch (Exception const &) {
            ++refused;
        }
        TimerId id;
        manager()->start();
        manager()->setTimer(id, 1, 0, &probe_, 1, &probe_);
    };
    TimerId id;
    manager()->setTimer(id, 1, 0, &probe_, 1, &probe_);
    EXPECT_TRUE(probe_.waitFor(5));
    manager()->stop();
    EXPECT_GE(refused.load(), 5);
}

TEST_F(Manager, KeepsPeriods) {
    manager()->start();
    std::vector<std::chrono::steady_clock::time_point> shots;
    probe_.hook_ = [&](Call const &) { shots.push_back(std::chrono::steady_clock::now()); };
    TimerId id;
    manager()->setTimer(id, 1, 120, &probe_, 4, &probe_);
    ASSERT_TRUE(probe_.waitFor(5));
    // A check may be late and the next one not, by as much as this machine makes it.
    EXPECT_GE(shots[3] - shots[0], std::chrono::milliseconds(3 * 120 - 50));
}

/// Timers that belong to the library come back.
TEST_F(Manager, BringsServiceTimersBack) {
    std::atomic<int> calls{0};
    ServiceTimer timer(
        10, [](void * n) { ++*static_cast<std::atomic<int> *>(n); }, &calls);
    timer.start();
    EXPECT_FALSE(timer.armed());
    auto const moreCalls = [&] {
        for (int const before = calls, ms = 0; calls < before + 2 && ms < 20000;) sleep(5);
        return timer.armed();
    };
    for (int i = 0; i < 2; ++i) {
        manager()->start();
        EXPECT_TRUE(moreCalls());
        manager()->stop();
        EXPECT_FALSE(timer.armed());
    }
    manager()->start();
    timer.stop();
    int const before = calls;
    EXPECT_FALSE(timer.armed());
    timer.start();
    EXPECT_TRUE(moreCalls());
    EXPECT_GT(calls, before);
    timer.stop();
    std::vector<TimerId> ids(300);
    for (TimerId & id : ids) manager()->setTimer(id, 1, 100000, &probe_, 0, &probe_);
    timer.start();
    EXPECT_FALSE(timer.armed()) << "no slot left";
}

/// An owner that notices calls after its death.
struct Owner {
    ~Owner() { alive_ = 0; }
    void tick(void * param) {
        EXPECT_EQ(alive_, 0xA11Eu);
        ++*static_cast<std::atomic<int> *>(param);
        if (killsItself_) delete this;
    }
    bool killsItself_ = false;
    volatile unsigned alive_ = 0xA11E;
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
    constexpr int rounds = 300;
    std::atomic<int> ticks{0}, settings{0}, releases{0};
    std::atomic<bool> done{false};
    auto const user = [&](unsigned seed) {
        std::mt19937 random(seed);
        std::set<TimerId> open;
        std::mutex mutex;
        Probe probe([&](Call const & call) {
            std::lock_guard const lock(mutex);
            // Not known yet when it comes at once.
            if (call.type == Type::released) ++releases;
            EXPECT_TRUE(open.count(call.id) == 0 || call.type == Type::fired) << "after its release";
            if (call.type == Type::released) open.insert(call.id);
        });
        std::vector<TimerId> ids;
        for (int i = 0; i < rounds; ++i) {
            TimerId id;
            auto const pick = [&] { return ids.empty() ? TimerId() : ids[random() % ids.size()]; };
            if (manager()->setTimer(id, 1, static_cast<ulong>(random() % 80), &probe,
                                    static_cast<ulong>(random() % 3), &probe)) {
                ++settings;
                ids.push_back(id);
            }
            manager()->resetTimer(pick(), static_cast<ulong>(random() % 80), 1);
            if (random() % 2) manager()->killTimer(pick());
            if (random() % 8 == 0) manager()->killTimerAndWait(pick());
            std::unique_ptr<Owner> owner(new Owner);
            owner->timer_.setTimer(3, 0, 1 + random() % 2, &ticks);
            if (random() % 4 == 0) sleep(random() % 100);
        }
        for (TimerId id : ids) manager()->killTimerAndWait(id);
    };
    std::vector<std::thread> users;
    for (unsigned i = 1; i <= 3; ++i) users.emplace_back(user, i);
    std::thread dumper([&] {
        while (!done) {
            std::ostringstream os;
            manager()->dump(os);
            EXPECT_LE(manager()->timers().size(), 300u);
            sleep(1);
        }
    });
    std::vector<std::thread> switches;
    for (int i = 0; i < 2; ++i) {
        switches.emplace_back([&, i] {
            while (!done) {
                manager()->start();
                sleep(i == 0 ? 150 : 70);
                manager()->stop();
            }
        });
    }
    for (std::thread & t : users) t.join();
    done = true;
    dumper.join();
    for (std::thread & t : switches) t.join();
    manager()->stop();
    EXPECT_EQ(releases, settings);
    EXPECT_GT(ticks, 0);
}

using Exit = Manager;

/// Leaves main with timers running, and callbacks in them.
TEST_F(Exit, IsCleanAndQuick) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    TimeCounter const time;
    EXPECT_EXIT(
        {
            static Probe * const probe = new Probe;
            manager()->start();
            TimerId id;
            for (ulong i = 0; i < 100; ++i) manager()->setTimer(id, 1, i, probe, 0, probe);
            probe->waitFor(20);
            std::exit(3);
        },
        testing::ExitedWithCode(3), "");
    EXPECT_LT(time.elapsed(), Time::seconds(15));
}

}  // namespace
}  // namespace yon
