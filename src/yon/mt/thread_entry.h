#pragma once

#include "yon/base/types.h"
#include "yon/mt/thread_id.h"
#include "yon/mt/thread_info.h"

namespace yon::detail {

/// "{process.thread}" for threads of the library, "<process.thread>" for others.
String identityText(ThreadId id, bool ofLibrary);

/// What the factory knows of a thread. Belongs to the thread, which finds it without a lock and alone changes and
/// reads its time; the factory's lock guards the rest.
struct ThreadEntry : ThreadInfo {
    /// Of the calling thread; null when the factory does not know it yet, or not any more.
    static ThreadEntry * find() noexcept;
    /// The same, made known if need be.
    static ThreadEntry & get();
    /// Makes the calling thread known as that of a library's object.
    static void begin(SimpleThread & thread);
    /// Makes the factory forget the calling thread.
    static void end() noexcept;

    ThreadId id_;
    unsigned generation_ = 0;  ///< of the factory that knows it
    longlong tick_ = 0;        ///< of the last update
};

}  // namespace yon::detail
