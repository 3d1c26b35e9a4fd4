#include "yon/platform/fork.h"

#include <pthread.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>

namespace yon::platform {

namespace {

struct Hooks {
    std::atomic<bool> ready{false};
    ForkLayer layer = ForkLayer::log;
    ForkHook prepare = nullptr;
    ForkHook parent = nullptr;
    ForkHook child = nullptr;
};

constexpr std::size_t capacity = 16;
constinit Hooks table[capacity];
constinit std::atomic<std::size_t> taken{0};
constinit std::atomic<bool> watching{false};

void callAll(ForkLayer layer, ForkHook Hooks::*which) noexcept {
    for (Hooks const & h : table) {
        if (!h.ready.load(std::memory_order_acquire) || h.layer != layer) continue;
        if (ForkHook const hook = h.*which; hook != nullptr) hook();
    }
}

void prepareAll() {
    for (int layer = static_cast<int>(ForkLayer::log); layer <= static_cast<int>(ForkLayer::base); ++layer)
        callAll(static_cast<ForkLayer>(layer), &Hooks::prepare);
}

void resumeAll(ForkHook Hooks::*which) noexcept {
    for (int layer = static_cast<int>(ForkLayer::base); layer >= static_cast<int>(ForkLayer::log); --layer)
        callAll(static_cast<ForkLayer>(layer), which);
}

void resumeParent() { resumeAll(&Hooks::parent); }
void resumeChild() { resumeAll(&Hooks::child); }

}  // namespace

void onFork(ForkLayer layer, ForkHook prepare, ForkHook parent, ForkHook child) noexcept {
    std::size_t const at = taken.fetch_add(1, std::memory_order_relaxed);
    if (at >= capacity) std::abort();
    Hooks & h = table[at];
    h.layer = layer;
    h.prepare = prepare;
    h.parent = parent;
    h.child = child;
    h.ready.store(true, std::memory_order_release);
    if (!watching.exchange(true)) ::pthread_atfork(prepareAll, resumeParent, resumeChild);
}

}  // namespace yon::platform
