// Threads for tests.
#pragma once

#include <chrono>
#include <functional>
#include <thread>
#include <vector>

namespace yon {

/// Calls `work(i)` for each i below n in a thread of its own, and joins the threads at the end of its life.
class InThreads {
public:
    template <class Work>
    InThreads(int n, Work work) {
        for (int i = 0; i < n; ++i) threads_.emplace_back(work, i);
    }

private:
    std::vector<std::jthread> threads_;
};

/// What `f` answers in another thread.
inline bool elsewhere(std::function<bool()> const & f) {
    bool result = false;
    std::thread([&] { result = f(); }).join();
    return result;
}

/// Waits for a condition, but not for ever.
template <class Condition>
bool eventually(Condition condition) {
    using Clock = std::chrono::steady_clock;
    for (auto const end = Clock::now() + std::chrono::seconds(20); !condition();) {
        if (Clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

}  // namespace yon
