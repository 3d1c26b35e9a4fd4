// `TraceMirror`: the traced call stack of a thread as a crash handler can read it.
#pragma once

#include <atomic>

#include "yon/base/diagnostics.h"

namespace yon {

/// The outermost calls of one thread. The thread writes, any thread reads at any time, without a lock or an
/// allocation; while the thread runs, what is read may be a mixture of moments, but every pointer in it is good.
/// Mirrors stand in a list that only grows; those of ended threads serve new ones.
class TraceMirror {
public:
    static constexpr unsigned capacity = 64;

    /// A mirror for the calling thread; null without memory.
    static TraceMirror * claim() noexcept;
    /// The thread ends.
    void release() noexcept;
    /// In a child process, where the calling thread is the only one: frees all others, and gives this one its new id.
    static void keepOnly(TraceMirror * mine) noexcept;
    /// Notes the name of the calling thread, which a library thread has once it runs. Returns whether it has one.
    bool takeName() noexcept;

    void put(unsigned i, diagnostics::Location const & where) noexcept {
        entries_[i].file.store(where.file, relaxed);
        entries_[i].line.store(where.line, relaxed);
        entries_[i].func.store(where.func, relaxed);
    }
    void size(unsigned n) noexcept { size_.store(n, std::memory_order_release); }

    /// The number of calls, of which the first `capacity` are here.
    unsigned size() const noexcept { return size_.load(std::memory_order_acquire); }
    /// REQUIRES: `i < capacity`.
    diagnostics::Location at(unsigned i) const noexcept {
        return {entries_[i].file.load(relaxed), entries_[i].line.load(relaxed), entries_[i].func.load(relaxed)};
    }
    /// 0 while no thread uses it.
    unsigned threadId() const noexcept { return threadId_.load(std::memory_order_acquire); }
    /// The beginning of the name of a library thread, otherwise empty.
    char const * threadName() const noexcept { return name_; }

    /// Calls `visit` with the mirror of each thread.
    template <class Visit>
    static void forEach(Visit visit) {
        for (TraceMirror * m = first_.load(std::memory_order_acquire); m != nullptr; m = m->next_) {
            if (m->threadId() != 0) visit(static_cast<TraceMirror const &>(*m));
        }
    }

private:
    struct Entry {
        std::atomic<char const *> file{nullptr};
        std::atomic<unsigned> line{0};
        std::atomic<char const *> func{nullptr};
    };
    static constexpr auto relaxed = std::memory_order_relaxed;

    static constinit std::atomic<TraceMirror *> first_;

    TraceMirror * next_ = nullptr;
    std::atomic<bool> taken_{true};
    std::atomic<unsigned> threadId_{0};
    std::atomic<unsigned> size_{0};
    char name_[32] = {};
    Entry entries_[capacity];
};

}  // namespace yon
