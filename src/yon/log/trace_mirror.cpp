#include "yon/log/trace_mirror.h"

#include <algorithm>
#include <new>

#include "yon/mt/simple_thread.h"
#include "yon/mt/thread_id.h"

namespace yon {

constinit std::atomic<TraceMirror *> TraceMirror::first_{nullptr};

TraceMirror * TraceMirror::claim() noexcept {
    TraceMirror * m = first_.load(std::memory_order_acquire);
    while (m != nullptr && m->taken_.exchange(true, std::memory_order_acquire)) m = m->next_;
    if (m == nullptr) {
        m = new (std::nothrow) TraceMirror;
        if (m == nullptr) return nullptr;
        m->next_ = first_.load(std::memory_order_relaxed);
        while (!first_.compare_exchange_weak(m->next_, m, std::memory_order_release, std::memory_order_relaxed)) {
        }
    }
    m->name_[0] = '\0';
    m->threadId_.store(ThreadId::current(), std::memory_order_release);
    return m;
}

void TraceMirror::release() noexcept {
    threadId_.store(0, std::memory_order_release);
    size(0);
    taken_.store(false, std::memory_order_release);
}

void TraceMirror::keepOnly(TraceMirror * mine) noexcept {
    for (TraceMirror * m = first_.load(std::memory_order_acquire); m != nullptr; m = m->next_) {
        if (m != mine) m->release();
    }
    if (mine != nullptr) mine->threadId_.store(ThreadId::current(), std::memory_order_release);
}

bool TraceMirror::takeName() noexcept {
    SimpleThread const * const thread = SimpleThread::current().thread_;
    if (thread == nullptr) return false;
    istr const name = thread->name();
    ulong const n = std::min<ulong>(name.size(), sizeof name_ - 1);
    std::fill(std::copy_n(name.data(), n, name_), std::end(name_), '\0');
    return true;
}

}  // namespace yon
