// Locks, conditions, semaphores and handles beside those of the standard library and Boost.
#include <benchmark/benchmark.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <boost/smart_ptr/intrusive_ref_counter.hpp>
#include <boost/thread/shared_mutex.hpp>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <semaphore>
#include <shared_mutex>
#include <string>
#include <thread>

#include "yon/mt/handle.h"
#include "yon/mt/rwrecmutex.h"
#include "yon/mt/shared.h"

namespace {

template <class Work>
void add(std::string const & name, Work work) {
    benchmark::RegisterBenchmark(name.c_str(), [work](benchmark::State & state) {
        for (auto _ : state) work();
    });
}

// Mutexes.

std::recursive_mutex standardMutex;
yon::RecMutex ourMutex;

template <class M>
void addMutex(std::string const & contestant, M & mutex) {
    add("mutex/free/" + contestant, [&mutex] {
        mutex.lock();
        mutex.unlock();
    });
    add("mutex/taken twice/" + contestant, [&mutex] {
        mutex.lock();
        mutex.lock();
        mutex.unlock();
        mutex.unlock();
    });
    for (int threads : {2, 4}) {
        benchmark::RegisterBenchmark(("mutex/" + std::to_string(threads) + " threads/" + contestant).c_str(),
                                     [&mutex](benchmark::State & state) {
                                         static int shared = 0;
                                         for (auto _ : state) {
                                             mutex.lock();
                                             benchmark::DoNotOptimize(++shared);
                                             mutex.unlock();
                                             for (int i = 0; i < 20; ++i) benchmark::DoNotOptimize(i);
                                         }
                                     })
            ->Threads(threads)
            ->UseRealTime();
    }
}

// Locks for readers and writers, with the names of ours.

struct StandardShared {
    void readLock() { mutex_.lock_shared(); }
    void readUnlock() { mutex_.unlock_shared(); }
    void writeLock() { mutex_.lock(); }
    void writeUnlock() { mutex_.unlock(); }
    std::shared_mutex mutex_;
};
struct BoostUpgrade {
    void readLock() { mutex_.lock_shared(); }
    void readUnlock() { mutex_.unlock_shared(); }
    void writeLock() { mutex_.lock(); }
    void writeUnlock() { mutex_.unlock(); }
    boost::upgrade_mutex mutex_;
};
struct Ours {
    void readLock() { mutex_.readLock(); }
    void readUnlock() { mutex_.unlock(); }
    void writeLock() { mutex_.writeLock(); }
    void writeUnlock() { mutex_.unlock(); }
    yon::RWRecMutex mutex_;
};

template <class M>
void addReaderWriter(std::string const & contestant) {
    static M mutex;
    add("shared mutex/read/" + contestant, [] {
        mutex.readLock();
        mutex.readUnlock();
    });
    add("shared mutex/write/" + contestant, [] {
        mutex.writeLock();
        mutex.writeUnlock();
    });
    benchmark::RegisterBenchmark(("shared mutex/2 threads, 1 of 100 writes/" + contestant).c_str(),
                                 [](benchmark::State & state) {
                                     int n = 0;
                                     for (auto _ : state) {
                                         if (++n % 100 == 0) {
                                             mutex.writeLock();
                                             mutex.writeUnlock();
                                         } else {
                                             mutex.readLock();
                                             mutex.readUnlock();
                                         }
                                     }
                                 })
        ->Threads(2)
        ->UseRealTime();
}

// Hand-over: two threads take turns.

struct StandardTurns {
    void await(bool turn) {
        std::unique_lock lock(mutex_);
        while (turn_ != turn) changed_.wait(lock);
    }
    void set(bool turn) {
        std::lock_guard const lock(mutex_);
        turn_ = turn;
        changed_.notify_one();
    }
    std::mutex mutex_;
    std::condition_variable changed_;
    bool turn_ = false;
};
struct OurTurns {
    void await(bool turn) {
        yon::Lock const lock(mutex_);
        while (turn_ != turn) changed_.wait(lock);
    }
    void set(bool turn) {
        yon::Lock const lock(mutex_);
        turn_ = turn;
        changed_.signal();
    }
    yon::RecMutex mutex_;
    yon::Cond changed_;
    bool turn_ = false;
};
struct StandardSemaphores {
    void await(bool turn) { turns_[turn].acquire(); }
    void set(bool turn) { turns_[turn].release(); }
    std::counting_semaphore<> turns_[2]{std::counting_semaphore<>(0), std::counting_semaphore<>(0)};
};
struct OurSemaphores {
    void await(bool turn) { turns_[turn].wait(); }
    void set(bool turn) { turns_[turn].post(); }
    yon::Semaphore turns_[2];
};

template <class Turns>
void addHandOver(std::string const & name) {
    benchmark::RegisterBenchmark(name.c_str(), [](benchmark::State & state) {
        Turns turns;
        std::atomic<bool> ends{false};
        std::thread partner([&] {
            for (;;) {
                turns.await(true);
                if (ends) return;
                turns.set(false);
            }
        });
        for (auto _ : state) {
            turns.set(true);
            turns.await(false);
        }
        ends = true;
        turns.set(true);
        partner.join();
    })->UseRealTime();
}

// Handles.

struct OurObject : yon::Shared {};
struct BoostObject : boost::intrusive_ref_counter<BoostObject> {
    virtual ~BoostObject() = default;
};

template <class Pointer>
void addCopy(std::string const & contestant, Pointer const & p) {
    add("handle/copy/" + contestant, [p] {
        Pointer copy(p);
        benchmark::DoNotOptimize(copy);
    });
}

template <class S>
void addFree(std::string const & contestant) {
    static S semaphores;
    add("semaphore/free/" + contestant, [] {
        semaphores.set(true);
        semaphores.await(true);
    });
}

bool const registered = [] {
    // Alone in its process a thread may get its locks without atomic operations; programs with locks have more.
    std::thread([] { std::this_thread::sleep_for(std::chrono::hours(24)); }).detach();
    addMutex("zuvyon", ourMutex);
    addMutex("std::recursive_mutex", standardMutex);
    addReaderWriter<Ours>("zuvyon");
    addReaderWriter<StandardShared>("std::shared_mutex");
    addReaderWriter<BoostUpgrade>("boost::upgrade_mutex");
    addHandOver<OurTurns>("condition/hand-over/zuvyon");
    addHandOver<StandardTurns>("condition/hand-over/std::condition_variable");
    addFree<OurSemaphores>("zuvyon");
    addFree<StandardSemaphores>("std::counting_semaphore");
    addHandOver<OurSemaphores>("semaphore/hand-over/zuvyon");
    addHandOver<StandardSemaphores>("semaphore/hand-over/std::counting_semaphore");
    addCopy("zuvyon", yon::Handle<OurObject>(new OurObject));
    addCopy("boost::intrusive_ptr", boost::intrusive_ptr<BoostObject>(new BoostObject));
    addCopy("std::shared_ptr", std::make_shared<BoostObject>());
    return true;
}();

}  // namespace
