#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <optional>
#include <random>

#include "raise_testing.h"
#include "thread_testing.h"
#include "yon/yon.h"

namespace yon {
namespace {

Time const shortly = Time::milliSeconds(20);

StaticMutex staticMutex;

template <class M>
void excludes(M const & mutex) {
    int counter = 0;
    InThreads(4, [&](int) {
        for (int n = 0; n < 5000; ++n) {
            Lock const lock(mutex), again(mutex);
            TryLock third(mutex);
            counter += third.acquired();
        }
    });
    EXPECT_EQ(counter, 20000);
    Lock lock(mutex);
    EXPECT_FALSE(elsewhere([&] { return TryLock(mutex).acquired(); }));
    lock.release();
    EXPECT_TRUE(elsewhere([&] { return TryLock(mutex).acquired(); }));
}

TEST(Locks, ExcludeEachOther) {
    MemLeakChecker::enable(true);
    excludes(RecMutex());
    excludes(Monitor());
    excludes(staticMutex);
    excludes(globalMutex);
    std::ostringstream made;
    MemLeakChecker::report(made);
    MemLeakChecker::enable(false);
    EXPECT_NE(made.str().find("yon::StaticMutex::initialize: 2 blocks"), std::string::npos) << made.str();
}

TEST(RecMutex, IsReleasedAsOftenAsTaken) {
    RecMutex const mutex;
    for (int i = 0; i < 3; ++i) mutex.lock();
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(mutex.willUnlock(), i == 2);
        EXPECT_FALSE(elsewhere([&] { return mutex.tryLock(); }));
        mutex.unlock();
    }
    EXPECT_TRUE(mutex.tryLock());
    mutex.unlock();
}

TEST(Semaphore, CountsAndFails) {
    Semaphore const semaphore(2);
    semaphore.wait();
    EXPECT_TRUE(semaphore.timedWait(Time()));
    EXPECT_FALSE(semaphore.timedWait(Time::min()));
    semaphore.post(0x7fffffff);
    Semaphore const broken(-1);
    auto const place = [](auto fails) { return raisedAt<ThreadSyscallException>(fails); };
    EXPECT_EQ(place([&] { semaphore.post(); }), "src/yon/mt/cond:61 yon::Semaphore::post");
    EXPECT_EQ(place([&] { semaphore.post(-1); }), "src/yon/mt/cond:61 yon::Semaphore::post");
    EXPECT_EQ(place([&] { broken.wait(); }), "src/yon/mt/cond:40 yon::Semaphore::wait");
    EXPECT_EQ(place([&] { broken.timedWait(shortly); }), "src/yon/mt/cond:50 yon::Semaphore::timedWait");
}

/// Waits of every kind last as long as asked, and for ever is not over at once.
TEST(Locks, TakeTheirTime) {
    Semaphore const semaphore;
    Cond cond;
    RecMutex const mutex;
    Monitor const monitor;
    RWRecMutex const rw;
    Lock const lock(mutex), again(mutex);
    Lock const held(monitor);
    auto const waits = [&](Time t) {
        return std::vector<std::function<bool()>>{
            [&, t] { return semaphore.timedWait(t); },
            [&, t] { return cond.timedWait(lock, t); },
            [&, t] { return monitor.timedWait(t); },
            [&, t] { return elsewhere([&] { return TryReadLock(rw, t).acquired(); }); },
            [&, t] { return elsewhere([&] { return TryWriteLock(rw, t).acquired(); }); },
        };
    };
    rw.writeLock();
    for (auto const & wait : waits(shortly)) {
        Stopwatch watch;
        watch.start();
        EXPECT_FALSE(wait());
        EXPECT_GE(watch.total(), shortly);
    }
    EXPECT_FALSE(elsewhere([&] { return mutex.tryLock(); }));
    rw.unlock();
    InThreads const wakers(3, [&](int i) {
        if (i == 0) return semaphore.post();
        // The locks are free once the other side waits.
        if (i == 1) return Lock(mutex), cond.signal();
        Lock const all(monitor);
        monitor.notifyAll();
    });
    for (auto const & wait : waits(Time::max())) EXPECT_TRUE(wait());
}

TEST(Cond, WakesWhomItShould) {
    Cond cond;
    RecMutex const mutex;
    int waiting = 0, woken = 0;
    cond.signal();  // for nobody
    std::optional<InThreads> threads(std::in_place, 3, [&](int) {
        Lock const lock(mutex), again(mutex);
        ++waiting;
        cond.wait(again);
        ++woken;
    });
    auto const reaches = [&](int const & value, int expected) {
        for (;;) {
            Lock const lock(mutex);
            if (value == expected) return;
            // Somebody else's limited wait neither ends early nor takes a signal.
            EXPECT_FALSE(waiting < 3 && cond.timedWait(lock, Time::milliSeconds(1)));
        }
    };
    reaches(waiting, 3);
    cond.signal();
    reaches(woken, 1);
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    reaches(woken, 1);
    cond.broadcast();
    threads.reset();
    EXPECT_EQ(woken, 3);
    Lock lock(mutex);
    lock.release();
    EXPECT_EQ(raisedAt<ThreadLockedException>([&] { cond.wait(lock); }), "include/yon/mt/cond:90 yon::Cond::wait");
    EXPECT_EQ(raisedAt<ThreadLockedException>([&] { cond.timedWait(lock, shortly); }),
              "include/yon/mt/cond:107 yon::Cond::timedWait");
}

TEST(Cond, ReleasesStaticMutexesAltogether) {
    Cond cond;
    Lock const lock(staticMutex), again(staticMutex);
    InThreads const threads(1, [&](int) {
        Lock const own(staticMutex);
        cond.signal();
    });
    cond.wait(again);
}

/// As many takers as givers over a small stock, with and without limits that run out all the time: nothing is lost,
/// nobody is left over.
TEST(Cond, LosesNoWakeUp) {
    Cond some, room;
    RecMutex const mutex;
    int stock = 0;
    InThreads(6, [&](int i) {
        bool const gives = i % 2 == 0;
        for (int n = 0; n < 3000; ++n) {
            Lock const lock(mutex);
            while (stock == (gives ? 2 : 0)) {
                Cond & cond = gives ? room : some;
                i < 2 ? cond.wait(lock) : void(cond.timedWait(lock, Time(1)));
            }
            stock += gives ? 1 : -1;
            Cond & cond = gives ? some : room;
            n % 50 == 0 ? cond.broadcast() : cond.signal();
        }
    });
    EXPECT_EQ(stock, 0);
}

TEST(Monitor, KeepsNotificationsUntilItIsReleased) {
    Monitor const monitor;
    int waiting = 0, woken = 0;
    {
        InThreads const threads(3, [&](int) {
            Lock const lock(monitor), again(monitor);
            ++waiting;
            monitor.wait();
            ++woken;
        });
        for (bool all = false; !all; std::this_thread::yield()) {
            Lock const lock(monitor);
            if (waiting < 3) continue;
            all = true;
            for (int i = 0; i < 2; ++i) {
                Lock const again(monitor);
                monitor.notify();
            }
            EXPECT_FALSE(elsewhere([&] { return TryLock(monitor).acquired(); }));
        }
        for (bool two = false; !two; std::this_thread::yield()) {
            Lock const lock(monitor);
            two = woken == 2;
        }
        Lock const lock(monitor);
        monitor.notifyAll();
        monitor.notify();
    }
    EXPECT_EQ(woken, 3);
    Lock const lock(monitor);
    EXPECT_FALSE(monitor.timedWait(Time::milliSeconds(1)));
}

TEST(RWRecMutex, PrefersWriters) {
    RWRecMutex const rw;
    ReadLock reader(rw);
    EXPECT_TRUE(elsewhere([&] { return TryReadLock(rw).acquired(); }));
    EXPECT_FALSE(elsewhere([&] { return TryWriteLock(rw).acquired(); }));
    std::atomic<int> order{0};
    InThreads const threads(2, [&](int i) {
        if (i == 0) {
            WriteLock const lock(rw);
            EXPECT_EQ(order++, 0);
            return;
        }
        while (TryReadLock(rw).acquired()) std::this_thread::yield();
        // The writer waits. One that gives up lets the readers go.
        EXPECT_FALSE(TryWriteLock(rw, Time::milliSeconds(1)).acquired());
        reader.release();
        ReadLock const lock(rw);
        EXPECT_EQ(order++, 1);
    });
}

TEST(RWRecMutex, ChangesBetweenReadingAndWriting) {
    RWRecMutex const rw;
    auto const readable = [&] { return elsewhere([&] { return TryReadLock(rw).acquired(); }); };
    rw.writeLock();
    EXPECT_TRUE(rw.tryWriteLock() && rw.timedWriteLock(Time()));
    for (bool reading : {false, false, true}) {
        rw.downgrade();
        EXPECT_EQ(readable(), reading);
    }
    rw.upgrade();
    EXPECT_FALSE(readable());
    {
        InThreads const waiting(1, [&](int) { ReadLock const lock(rw); });
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        rw.downgrade();
    }
    EXPECT_TRUE(rw.timedUpgrade(Time()));
    rw.downgrade();
    std::atomic<bool> upgrading{false};
    {
        InThreads const threads(1, [&](int) {
            ReadLock const lock(rw);
            EXPECT_FALSE(rw.timedUpgrade(shortly));
            EXPECT_FALSE(elsewhere([&] { return TryWriteLock(rw).acquired(); }));
            upgrading = true;
            rw.upgrade();
        });
        while (!upgrading || readable()) std::this_thread::yield();
        EXPECT_FALSE(rw.timedUpgrade(Time::seconds(9)));
        EXPECT_EQ(raisedAt<DeadlockException>([&] { rw.upgrade(); }),
                  "src/yon/mt/rwrecmutex:297 yon::RWRecMutex::upgrade");
        EXPECT_FALSE(TryWriteLock(rw).acquired());
        rw.unlock();
    }
    EXPECT_TRUE(rw.tryWriteLock());
    rw.unlock();
}

TEST(RWRecMutex, KeepsWritersAlone) {
    RWRecMutex const rw;
    int value = 0;  // the thread sanitizer watches it
    std::atomic<int> readers{0}, writes{0};
    InThreads(6, [&](int i) {
        std::mt19937 random(static_cast<unsigned>(i));
        auto const time = [&] { return Time(random() % 100); };
        auto const write = [&] {
            EXPECT_EQ(readers, 0);
            ++value;
            ++writes;
        };
        for (int n = 0; n < 3000; ++n) {
            auto const action = random() % 4;
            if (action < 2) {
                TryReadLock lock(rw, time());
                if (random() % 2 != 0) lock.acquire();
                if (!lock.acquired()) continue;
                ++readers;
                EXPECT_GE(value, 0);
                --readers;
                if (random() % 2 != 0 && rw.timedUpgrade(time())) write();
            } else if (action == 2) {
                TryWriteLock const lock(rw, time());
                if (lock.acquired()) write();
            } else {
                WriteLock const lock(rw), again(rw);
                rw.downgrade();
                rw.writeLock();
                write();
            }
        }
    });
    EXPECT_EQ(value, writes);
    EXPECT_TRUE(rw.tryWriteLock());
}

}  // namespace
}  // namespace yon
