#include "yon/platform/fork.h"

#include <pthread.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "yon/platform/locks.h"

namespace yon::platform {

namespace {

struct Hooks {
    std::atomic<bool> ready{false};
    ForkLayer layer = ForkLayer::log;
    ForkHook prepare = nullptr;
    ForkHook parent = nullptr;
    ForkHook child = nullptr;
    bool prepared = false;  ///< by the fork under way
};

constexpr std::size_t capacity = 16;
constinit Hooks table[capacity];
constinit std::atomic<std::size_t> taken{0};
constinit std::atomic<bool> watching{false};

/// Held from the first hook of a fork to its last: processes fork one at a time.
constinit std::uintptr_t forking = 0;

void prepareAll() {
    lockWord(forking);
    for (int layer = static_cast<int>(ForkLayer::log); layer <= static_cast<int>(ForkLayer::base); ++layer) {
        for (Hooks & h : table) {
            if (!h.ready.load(std::memory_order_acquire) || static_cast<int>(h.layer) != layer) continue;
            if (h.prepare != nullptr) h.prepare();
            h.prepared = true;
        }
    }
}

/// Hooks that were registered since have prepared nothing.
void resumeAll(ForkHook Hooks::*which) noexcept {
    for (int layer = static_cast<int>(ForkLayer::base); layer >= static_cast<int>(ForkLayer::log); --layer) {
        for (Hooks & h : table) {
            if (!h.prepared || static_cast<int>(h.layer) != layer) continue;
            h.prepared = false;
            if (ForkHook const hook = h.*which; hook != nullptr) hook();
        }
    }
    unlockWord(forking);
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
