// Threads beside std::thread: what a thread asks of itself, and its start and end.
#include <benchmark/benchmark.h>

#include <thread>

#include "yon/mt/simple_thread.h"

namespace {

using yon::SimpleThread;

class Brief final : public SimpleThread {
public:
    Brief() : SimpleThread(nullptr, "brief") {}

private:
    bool onLoop() override { return false; }
};

/// Runs a benchmark on a thread of the library.
class Runner final : public SimpleThread {
public:
    explicit Runner(benchmark::State & state) : SimpleThread(nullptr, "runner"), state_(state) {}

private:
    bool onLoop() override {
        for (auto _ : state_) benchmark::DoNotOptimize(&threadIdString());
        return false;
    }
    benchmark::State & state_;
};

void currentOfOurs(benchmark::State & state) {
    for (auto _ : state) benchmark::DoNotOptimize(&SimpleThread::current());
}
void idOfTheirs(benchmark::State & state) {
    for (auto _ : state) benchmark::DoNotOptimize(std::this_thread::get_id());
}
void idOfOurs(benchmark::State & state) {
    for (auto _ : state) benchmark::DoNotOptimize(yon::ThreadId::current());
}
void identityOfOurs(benchmark::State & state) {
    yon::Handle<Runner> const runner(new Runner(state));
    runner->start().join();
}

void startOurs(benchmark::State & state) {
    for (auto _ : state) {
        yon::Handle<Brief> const thread(new Brief);
        thread->start().join();
    }
}
void startTheirs(benchmark::State & state) {
    for (auto _ : state) std::thread([] {}).join();
}

BENCHMARK(currentOfOurs)->Name("current/zuvyon");
BENCHMARK(idOfTheirs)->Name("current/std::this_thread");
BENCHMARK(idOfOurs)->Name("thread id/zuvyon");
BENCHMARK(idOfTheirs)->Name("thread id/std::this_thread");
BENCHMARK(identityOfOurs)->Name("identity text/zuvyon")->UseRealTime();
BENCHMARK(startOurs)->Name("start and join/zuvyon")->UseRealTime();
BENCHMARK(startTheirs)->Name("start and join/std::thread")->UseRealTime();

}  // namespace
