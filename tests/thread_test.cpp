#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <mutex>
#include <random>

#include "raise_testing.h"
#include "record_testing.h"
#include "thread_testing.h"
#include "yon/yon.h"

namespace yon {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

/// Lets a few microseconds pass, so that others are met at various moments.
void spin(int microseconds) {
    for (auto const end = Clock::now() + std::chrono::microseconds(microseconds); Clock::now() < end;) {
    }
}

std::atomic<int> workers{0};

/// A thread with hooks from outside, which notes what is called.
class Worker : public SimpleThread {
public:
    explicit Worker(ThreadOwner * owner = nullptr, char const * name = "a::worker..one") : SimpleThread(owner, name) {
        ++workers;
    }
    ~Worker() override { --workers; }

    bool onBirth() override { return note("birth"), birth_(); }
    bool onWait() override { return note("wait"), wait_(); }
    bool onLoop() override { return note("loop"), loop_(); }
    void onDeath() override { note("death"); }
    void onStop() override { ++stops_; }

    std::function<bool()> birth_ = [] { return true; }, wait_ = birth_, loop_ = birth_;
    std::atomic<int> stops_{0};
    std::string notes_;

private:
    void note(char const * text) { (notes_ += text) += ' '; }
};

struct Owner : ThreadOwner {
    void onThreadExit(Thread *) override {
        ++told_;
        if (onTold_) onTold_();
    }
    std::atomic<int> told_{0};
    std::function<void()> onTold_;
};

std::string identity(ThreadId id, char const * brackets) {
    std::string const first = SimpleThread::current().sThreadId_;
    return brackets[0] + first.substr(1, first.find('.')) + std::to_string(unsigned(id)) + brackets[1];
}

TEST(Threads, live_from_birth_to_death) {
    Records records("src/yon/mt/thread");
    records.traced = true;
    Owner owner;
    Handle<Worker> const worker(new Worker(&owner));
    EXPECT_EQ(worker->fullname(), "a.worker.one");
    EXPECT_THROW(worker->id(), ThreadNotStartedException);
    EXPECT_THROW(worker->info(), ThreadNotStartedException);
    EXPECT_TRUE(raisedAt<ThreadNotStartedException>([&] {
                    return *worker == *worker;
                }).ends_with(" yon::Thread::operator`=='"));
    int rounds = 0;
    std::string seen;
    worker->wait_ = [&] { return ++rounds != 2; };
    worker->loop_ = [&] {
        ThreadInfo const & mine = SimpleThread::current();
        seen = mine.sThreadId_;
        EXPECT_EQ(mine.sCurrDateTime_, mine.currDateTime_.toDateTime());
        EXPECT_LT(Time::now() - mine.currDateTime_, Time::milliSeconds(500));
        EXPECT_EQ(worker->id(), ThreadId::current());
        EXPECT_EQ(worker->stop(Time::seconds(100)), true) << "a thread does not wait for itself";
        return false;
    };
    ThreadControl const control = worker->start(100000);
    EXPECT_THROW(worker->start(), ThreadStartedException);
    control.join();
    EXPECT_EQ(worker->notes_, "birth wait loop death ");
    EXPECT_EQ(owner.told_, 0) << "it was stopped";
    EXPECT_EQ(seen, identity(worker->id(), "{}"));
    EXPECT_EQ(worker->fullname(), worker->name() + seen);
    EXPECT_EQ(records.take(),
              (std::vector<std::string>{"> 1016", "INFO 1023 yon::SimpleThread::run_i: thread begin.", "> 1042",
                                        "> 1061", "> 1074", "> 1086", "> 848", "> 1101", "> 1110", "> 873", "> 1093",
                                        "INFO 1033 yon::SimpleThread::run_i: thread end."}));
    EXPECT_FALSE(control.isAlive() || worker->living());
    worker->stop();
}

TEST(Threads, end_when_birth_fails_and_skip_work_when_wait_fails) {
    Records records("src/yon/mt/thread");
    Owner owner;
    Handle<Worker> const stillborn(new Worker(&owner));
    stillborn->birth_ = [] { return false; };
    stillborn->start().join();
    EXPECT_EQ(stillborn->notes_, "birth ");
    EXPECT_EQ(owner.told_, 1);
    EXPECT_EQ(records.count("INFO 1065 yon::SimpleThread::onBirth_i: thread begin failure, won't enter run loop."),
              1);
    records.debug = true;
    Handle<Worker> const idle(new Worker);
    int waits = 0;
    idle->wait_ = [&] {
        if (++waits == 3) idle->livingEnd();
        return waits == 3;
    };
    idle->start().join();
    EXPECT_EQ(idle->notes_, "birth wait wait wait death ");
    EXPECT_EQ(records.count("TRACE 1078 yon::SimpleThread::onWait_i: wait failure, won't exec onWork()."), 2);
    EXPECT_TRUE(raisedAt<Exception>([&] { idle->living(true); }).ends_with(":934 yon::SimpleThread::living"));
}

TEST(Threads, that_do_not_end_in_time_go_on_without_owner) {
    Records records("src/yon/mt/thread");
    Owner owner;
    std::atomic<bool> within{false}, go{false};
    Handle<Worker> const slow(new Worker(&owner));
    slow->loop_ = [&] { return within = true, eventually([&] { return go.load(); }); };
    ThreadControl const control = slow->start();
    eventually([&] { return within.load(); });
    auto const begin = Clock::now();
    EXPECT_FALSE(slow->stop(Time(0)));
    EXPECT_GE(Clock::now() - begin, milliseconds(10));
    EXPECT_FALSE(control.join(Time::milliSeconds(5)));
    EXPECT_EQ(slow->owner(), nullptr);
    EXPECT_EQ(
        records.count("INFO 885 yon::SimpleThread::join: thread " + slow->fullname() + " not stopped in 0 seconds."),
        1);
    EXPECT_TRUE(control.isAlive());
    InThreads(5, [&](int i) {
        if (i == 4) go = true;
        i % 2 ? control.join() : void(control.join(Time::max()));
    });
    EXPECT_FALSE(control.isAlive());
    EXPECT_EQ(owner.told_, 0);
}

/// On the stack, and asked for by raw pointer: no reference of the library's own deletes it.
TEST(Threads, that_belong_to_no_handle_stay) {
    Worker unstarted;
    unstarted.stop();
    EXPECT_TRUE(unstarted.stop(Time::seconds(1)) && unstarted.stops_ == 2);
    Worker started;
    started.__setNoDelete(true);
    started.start();
    started.stop();
    EXPECT_EQ(workers, 2);
    (new Worker)->living(false).start();
    EXPECT_TRUE(eventually([] { return workers == 2; })) << "its own reference was the last";
}

TEST(Threads, record_what_their_body_lets_out_and_end_in_order) {
    Records records("src/yon/mt/thread");
    std::size_t const known = ThreadFactory::instance()->size();
    std::pair<std::function<bool()>, std::string> const cases[] = {
        {[]() -> bool { YON_THROW(Exception, "ours"); }, "\n EXCEPTION: Exception: ours\n"},
        {[]() -> bool { YON_THROW(OutOfRangeException, "base"); }, "\n EXCEPTION: OutOfRangeException: base\n"},
        {[]() -> bool { throw std::runtime_error("std"); }, "std::exception: std"},
        {[]() -> bool { throw 7; }, "not of any known class"}};
    for (auto const & [loop, text] : cases) {
        Owner owner;
        owner.onTold_ = [] { throw std::runtime_error("owner"); };
        Handle<Worker> const worker(new Worker(&owner));
        worker->loop_ = loop;
        worker->start().join();
        EXPECT_EQ(owner.told_, 1);
        EXPECT_EQ(records.count("<ERROR> 232 startHook: yon::Thread::run_i(): uncaught exception:"), 2);
        EXPECT_EQ(records.count(text), 1) << text;
        EXPECT_EQ(records.count("uncaught exception:std::exception: owner"), 1);
        EXPECT_EQ(records.count("thread end."), 1);
        EXPECT_TRUE(eventually([&] { return ThreadFactory::instance()->size() == known; }));
        records.take();
    }
}

TEST(Threads, leave_the_factory_when_they_end) {
    SimpleThread::current();
    std::size_t const known = ThreadFactory::instance()->size();
    std::thread foreign([&] {
        EXPECT_EQ(SimpleThread::current().sThreadId_, identity(ThreadId::current(), "<>"));
        Handle<Worker> const worker(new Worker);
        worker->wait_ = [&] { return worker->wait(Time::seconds(50)); };
        worker->start();
        ThreadInfo const & info = worker->info();
        EXPECT_EQ(info.sThreadId_, identity(worker->id(), "{}"));
        EXPECT_LE(info.currDateTime_, worker->currDateTime());
        EXPECT_TRUE(eventually([&] { return ThreadFactory::instance()->size() == known + 2; }));
        dumper d;
        std::string const text = (d << *ThreadFactory::instance()).str();
        EXPECT_NE(text.find(": @yon::ThreadInfo {\n        sThreadId_ = \"{"), text.npos) << text;
        SimpleThread::destroyThreadFactory();
        EXPECT_EQ(ThreadFactory::instance()->size(), 0U);
        worker->stop();
    });
    foreign.join();
    EXPECT_TRUE(eventually([] { return ThreadFactory::instance()->size() == 0; }));
}

TEST(Threads, forget_their_owner_only_between_calls_of_it) {
    for (int i = 0; i < 150; ++i) {
        auto owner = std::make_unique<Owner>();
        std::atomic<bool> within{false};
        owner->onTold_ = [&] {
            within = true;
            spin(5);
            within = false;
        };
        Handle<Worker> const worker(new Worker(owner.get()));
        worker->loop_ = [] { return false; };
        worker->start();
        spin(i % 50);
        worker->detach();
        EXPECT_FALSE(within);
        owner.reset();
        worker->stop();
    }
}

struct Server : Owner {
    bool birth() { return ++calls_ > 0; }
    bool wait() { return ++calls_ < 5; }
    void work() { thread_->livingEnd(); }
    void death() { calls_ += 100; }
    void stop() { calls_ += 1000; }
    int calls_ = 0;
    Handle<OwnedThread<Server>> thread_;
};

TEST(Threads, run_members_of_their_owner) {
    Server server;
    Owner other;
    for (Owner * owner : {static_cast<Owner *>(&server), &other}) {
        server.thread_ = new OwnedThread<Server>(owner, "server");
        OwnedThread<Server> & thread = *server.thread_;
        thread.birth_ = &Server::birth;
        thread.wait_ = &Server::wait;
        thread.work_ = &Server::work;
        thread.death_ = &Server::death;
        thread.stop_ = &Server::stop;
        if (owner == &other) thread.run_ = &Server::work;
        EXPECT_TRUE(owner == &server || (thread.onBirth() && thread.onWait()));
        thread.start().join();
        EXPECT_EQ(server.calls_, 1102) << "birth, wait, work, stop, death; nothing for another owner";
    }
}

TEST(Threads, are_stopped_out_of_any_wait_at_once) {
    for (int i = 0; i < 150; ++i) {
        Handle<Worker> const worker(new Worker);
        worker->wait_ = [&] {
            if (i % 2) worker->wait();
            return i % 2 || worker->wait(Time::seconds(1000));
        };
        worker->start();
        spin(i % 50);
        worker->stop();
        worker->wait();
    }
    Handle<Worker> const waiting(new Worker);
    EXPECT_FALSE(waiting->wait(Time(1)));
    std::thread notifier([&] { eventually([&] { return waiting->notify(), waiting->stops_ == 1; }); });
    EXPECT_TRUE(waiting->wait(Time::seconds(100)));
    waiting->livingEnd();
    notifier.join();
}

/// Many sides start, look at, hand over and stop the same threads; each is started once and ends once.
TEST(Threads, stand_being_started_and_stopped_from_all_sides) {
    Records records("src/yon/mt/thread");
    constexpr int sides = 4, rounds = 60;
    EXPECT_EQ(workers, 0);
    std::atomic<int> refused{0};
    std::mutex mutex;
    std::vector<Handle<Worker>> table(5);
    auto const play = [&](int seed) {
        std::minstd_rand random(static_cast<unsigned>(seed + 1));
        for (int i = 0; i < rounds; ++i) {
            Handle<Worker> worker, old;
            {
                std::lock_guard const lock(mutex);
                Handle<Worker> & place = table[random() % table.size()];
                if (!place || random() % 4 == 0) {
                    old = std::exchange(place, new Worker);
                    place->loop_ = [t = place.get()] { return t->wait(Time::milliSeconds(1)), true; };
                }
                worker = place;
            }
            if (old) old->stop();
            try {
                worker->start();
            } catch (ThreadStartedException const &) {
                ++refused;
            }
            worker->notify();
            EXPECT_EQ(worker->getThreadControl().id(), worker->info().thread_->id());
            EXPECT_EQ(worker->fullname().compare(0, 12, worker->name()), 0);
            EXPECT_TRUE(random() % 2 || worker->stop(Time::seconds(60)));
            if (random() % 8 == 0) worker->stop();
        }
    };
    InThreads(sides, play);
    for (Handle<Worker> const & t : table) {
        if (t) t->stop();
    }
    table.clear();
    EXPECT_TRUE(eventually([] { return workers == 0; }));
    EXPECT_EQ(records.count("thread begin."), sides * rounds - refused);
    EXPECT_EQ(records.count("thread end."), sides * rounds - refused);
}

TEST(ThreadControls, name_threads_that_the_library_has_not_started) {
    std::atomic<bool> go{false};
    ThreadControl control;
    EXPECT_TRUE(control.isAlive() && control == ThreadControl::current());
    control.join();
    std::thread foreign([&] {
        control = ThreadControl::current();
        go = true;
        eventually([&] { return !go; });
    });
    eventually([&] { return go.load(); });
    EXPECT_TRUE(control.isAlive() && control != ThreadControl::current());
    EXPECT_FALSE(control.join(Time::milliSeconds(2)));
    go = false;
    control.join();
    EXPECT_FALSE(control.isAlive());
    foreign.join();
    ThreadControl const none(nullptr, 7);
    EXPECT_THROW(none.join(), NullHandleException);
    EXPECT_FALSE(none.isAlive());
    auto const begin = Clock::now();
    ThreadControl::sleep(Time(10001));
    EXPECT_GE(Clock::now() - begin, std::chrono::microseconds(10001));
}

TEST(ThreadManagers, hold_threads_until_they_end_or_it_closes) {
    Records records("src/yon/mt/thread");
    AsyncThreadManager manager("async");
    Owner owner;
    Handle<Worker> const ended(new Worker);
    ended->loop_ = [] { return false; };
    manager.put(ended);
    EXPECT_EQ(ended->owner(), &manager);
    ended->start().join();
    manager.put(ended);
    dumper held(true);
    EXPECT_EQ((held << manager).str(), "{\"async\", false, {}}") << "it has ended";
    EXPECT_THROW(manager.put(nullptr), NullHandleException);
    auto brief = std::make_unique<AsyncThreadManager>("brief");
    Handle<Worker> const owned(new Worker(&owner)), unstarted(new Worker), running(new Worker), orphan(new Worker);
    for (Handle<Worker> const & t : {owned, unstarted, running, orphan}) {
        t->wait_ = [w = t.get()] { return w->wait(Time::seconds(100)); };
        (t == orphan ? *brief : manager).put(t);
        if (t != unstarted) t->start();
    }
    brief.reset();
    EXPECT_EQ(orphan->owner(), nullptr);
    orphan->stop();
    EXPECT_EQ(owned->owner(), &owner);
    records.take();
    manager.close();
    EXPECT_EQ(
        records.count("NOTICE 28 yon::AsyncThreadManager::close: 3 async threads still living, try stop them..."), 1);
    EXPECT_EQ(records.count("NOTICE 34 yon::AsyncThreadManager::close: 0 async threads stopped,3 remaning"), 1);
    EXPECT_FALSE(running->getThreadControl().isAlive() || owned->getThreadControl().isAlive());
    EXPECT_EQ(owner.told_, 0);
    records.take();
    manager.close();
    AsyncThreadManager(manager).put(new Worker);
    EXPECT_EQ(records.take(),
              std::vector<std::string>{"<WARNING> 46 yon::AsyncThreadManager::put: closing async thread "
                                       "manager, not put new thread into it"});
    EXPECT_EQ(owned->__getRef(), 1);
}

TEST(ThreadManagers, stand_threads_that_end_while_they_are_put) {
    for (int i = 0; i < 150; ++i) {
        AsyncThreadManager manager("race");
        Handle<Worker> const worker(new Worker);
        worker->loop_ = [] { return false; };
        ThreadControl const control = worker->start();
        spin(i % 50);
        manager.put(worker);
        if (i % 3 == 0) manager.close();
        control.join();
        EXPECT_EQ(worker->__getRef(), 1);
    }
}

}  // namespace
}  // namespace yon
