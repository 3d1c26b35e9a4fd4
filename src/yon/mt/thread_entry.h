#pragma once

#include <atomic>

#include "yon/base/types.h"
#include "yon/mt/thread_id.h"
#include "yon/mt/thread_info.h"
#include "yon/platform/threads.h"

namespace yon::detail {

/// "{process.thread}" for threads of the library, "<process.thread>" for others.
String identityText(ThreadId id, bool ofLibrary);

/// Changes when the factory is destroyed and when the process has forked: what was known before is void.
extern constinit std::atomic<unsigned> generation;

/// What the factory knows of a thread. Belongs to the thread, which finds it without a lock and alone changes and
/// reads its time; the factory's lock guards the rest.
struct ThreadEntry : ThreadInfo {
    /// Of the calling thread; null when the factory does not know it yet, or not any more.
    static ThreadEntry * find() noexcept {
        ThreadEntry * const entry = ofCaller();
        return entry != nullptr && entry->generation_ == generation.load(std::memory_order_relaxed) ? entry : nullptr;
    }
    /// The same, made known if need be.
    static ThreadEntry & get() {
        ThreadEntry * const known = find();
        return known != nullptr ? *known : makeKnown();
    }
    /// Makes the calling thread known as that of a library's object.
    static void begin(SimpleThread & thread);
    /// Makes the factory forget the calling thread.
    static void end() noexcept;

    /// What the thread has, whether the factory knows it or not.
    static ThreadEntry * ofCaller() noexcept {
        return static_cast<ThreadEntry *>(platform::slot(platform::Slot::info));
    }

    ThreadId id_;
    unsigned generation_ = 0;  ///< of the factory that knows it
    longlong tick_ = 0;        ///< of the last update

private:
    [[gnu::cold]] static ThreadEntry & makeKnown();
};

}  // namespace yon::detail
