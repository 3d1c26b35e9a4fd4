// Timers beside libuv, Asio and ACE. Real time counts: ours have a thread of their own for the callbacks, and a round
// ends when the last one has run.
#include <ace/Event_Handler.h>
#include <ace/Recursive_Thread_Mutex.h>
#include <ace/Timer_Heap.h>
#include <benchmark/benchmark.h>
#include <uv.h>

#include <asio.hpp>
#include <chrono>
#include <deque>
#include <string>

#include "yon/yon.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t timers = 300;
constexpr std::size_t pairs = 1000;
constexpr yon::ulong farAway = 100'000'000;

/// Measures `work()`, which does `count` things.
template <class Work>
void measure(benchmark::State & state, std::size_t count, Work work) {
    for (auto _ : state) work();
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(count));
}

// --- ours ---

struct Counter : yon::ITimerObject {
    void onTimeout(yon::ulong, yon::ulong, yon::ulong, void *) override { ++fired; }
    void onRelease(yon::ulong, yon::ulong, yon::ulong, void *) override { ++released; }
    std::size_t fired = 0, released = 0;
};

/// Through the manager, as programs do, each released event delivered.
void setAndKillOurs(benchmark::State & state) {
    yon::TimerManager & manager = *yon::TimerManager::instance();
    manager.start();
    Counter counter;
    yon::TimerId id;
    for (std::size_t i = 1; i < timers; ++i) manager.setTimer(id, 0, farAway, &counter, 0, nullptr);
    std::size_t rounds = 0;
    measure(state, pairs, [&] {
        for (std::size_t i = 0; i < pairs; ++i) {
            manager.setTimer(id, 0, 1000, &counter, 0, nullptr);
            manager.killTimer(id);
        }
        manager.killTimerAndWait(id);
        ++rounds;
    });
    if (counter.released != rounds * pairs) state.SkipWithError("released events are missing");
    manager.stop();
}

void fireOurs(benchmark::State & state) {
    yon::Handle<yon::TimerQueue> const queue = new yon::TimerQueue;
    Counter counter;
    yon::Time now;
    std::size_t rounds = 0;
    queue->check(now);
    yon::TimerId id;
    for (std::size_t i = 0; i < timers; ++i) queue->setTimer(id, 0, 1, &counter, 0, nullptr);
    measure(state, timers, [&] {
        queue->check(now += yon::Time::milliSeconds(1));
        queue->killTimerAndWait({});
        ++rounds;
    });
    if (counter.fired != rounds * timers) state.SkipWithError("shots are missing");
    queue->stop();
}

// --- libuv, whose stop tells nobody ---

struct Uv {
    Uv() : handles(timers) {
        uv_loop_init(&loop);
        for (uv_timer_t & t : handles) uv_timer_init(&loop, &t);
    }
    ~Uv() {
        for (uv_timer_t & t : handles) uv_close(reinterpret_cast<uv_handle_t *>(&t), nullptr);
        uv_run(&loop, UV_RUN_DEFAULT);
        uv_loop_close(&loop);
    }
    static void fire(uv_timer_t * t) { ++*static_cast<std::size_t *>(t->data); }
    uv_loop_t loop;
    std::deque<uv_timer_t> handles;
};

void setAndKillUv(benchmark::State & state) {
    Uv uv;
    for (uv_timer_t & t : uv.handles) uv_timer_start(&t, Uv::fire, farAway, 0);
    uv_timer_t & t = uv.handles.back();
    uv_timer_stop(&t);
    measure(state, pairs, [&] {
        for (std::size_t i = 0; i < pairs; ++i) {
            uv_timer_start(&t, Uv::fire, 1000, 0);
            uv_timer_stop(&t);
        }
    });
}

void fireUv(benchmark::State & state) {
    Uv uv;
    std::size_t fired = 0;
    for (uv_timer_t & t : uv.handles) t.data = &fired;
    measure(state, timers, [&] {
        for (uv_timer_t & t : uv.handles) uv_timer_start(&t, Uv::fire, 0, 0);
        uv_run(&uv.loop, UV_RUN_DEFAULT);
    });
}

// --- Asio ---

void setAndKillAsio(benchmark::State & state) {
    asio::io_context io;
    std::deque<asio::steady_timer> all;
    auto const nothing = [](asio::error_code) {};
    for (std::size_t i = 0; i < timers; ++i) all.emplace_back(io, std::chrono::hours(20)).async_wait(nothing);
    asio::steady_timer & t = all.back();
    std::size_t cancelled = 0;
    measure(state, pairs, [&] {
        for (std::size_t i = 0; i < pairs; ++i) {
            t.expires_after(std::chrono::seconds(1));
            t.async_wait([&](asio::error_code) { ++cancelled; });
            t.cancel();
        }
        io.restart();
        io.poll();
    });
}

void fireAsio(benchmark::State & state) {
    asio::io_context io;
    std::deque<asio::steady_timer> all;
    for (std::size_t i = 0; i < timers; ++i) all.emplace_back(io);
    std::size_t fired = 0;
    measure(state, timers, [&] {
        for (asio::steady_timer & t : all) {
            t.expires_at(Clock::now());
            t.async_wait([&](asio::error_code) { ++fired; });
        }
        io.restart();
        io.run();
    });
}

// --- ACE ---

struct AceCounter : ACE_Event_Handler {
    int handle_timeout(ACE_Time_Value const &, void const *) override {
        ++fired;
        return 0;
    }
    std::size_t fired = 0;
};

void setAndKillAce(benchmark::State & state) {
    ACE_Timer_Heap heap(timers, true);
    AceCounter counter;
    ACE_Time_Value const later(farAway);
    for (std::size_t i = 1; i < timers; ++i) heap.schedule(&counter, nullptr, later);
    measure(state, pairs, [&] {
        for (std::size_t i = 0; i < pairs; ++i) heap.cancel(heap.schedule(&counter, nullptr, ACE_Time_Value(1)));
    });
}

void fireAce(benchmark::State & state) {
    ACE_Timer_Heap heap(timers, true);
    AceCounter counter;
    ACE_Time_Value now(1);
    ACE_Time_Value const second(1);
    for (std::size_t i = 0; i < timers; ++i) heap.schedule(&counter, nullptr, now, second);
    measure(state, timers, [&] {
        heap.expire(now);
        now += second;
    });
}

BENCHMARK(setAndKillOurs)->Name("set and kill/zuvyon")->UseRealTime();
BENCHMARK(setAndKillUv)->Name("set and kill/libuv")->UseRealTime();
BENCHMARK(setAndKillAsio)->Name("set and kill/Asio")->UseRealTime();
BENCHMARK(setAndKillAce)->Name("set and kill/ACE")->UseRealTime();
BENCHMARK(fireOurs)->Name("fire 300/zuvyon")->UseRealTime();
BENCHMARK(fireAsio)->Name("fire 300/Asio")->UseRealTime();
BENCHMARK(fireUv)->Name("fire 300/libuv")->UseRealTime();
BENCHMARK(fireAce)->Name("fire 300/ACE")->UseRealTime();

}  // namespace
