#pragma once

#include <map>
#include <vector>

#include "yon/base/string.h"
#include "yon/mt/noncopyable.h"
#include "yon/mt/thread_id.h"

namespace yon {

class dumper;
class SimpleThread;

namespace detail {
struct ThreadEntry;
}

/// A thread as it stood at one moment.
struct KnownThread {
    ThreadId id;
    String identity;  ///< "{process.thread}" for threads of the library, "<process.thread>" for others
    String name;      ///< empty for others
    bool ofLibrary = false;
    bool living = true;  ///< false once a library thread has been told to end
};

/// Knows the threads that run: those that the library has started from their begin to their end, others from their
/// first look-up until they end. One object for the process, made on first use. Callable from any thread.
class YON_API ThreadFactory : private noncopyable {
public:
    ThreadFactory() = default;

    static ThreadFactory * instance();

    /// How many threads it knows.
    std::size_t size() const;
    /// The threads it knows, by their ids.
    std::vector<KnownThread> threads() const;

    // For the library itself.

    static void know_i(detail::ThreadEntry & entry, SimpleThread * thread);
    static void forget_i(detail::ThreadEntry & entry) noexcept;
    static void destroy_i();

private:
    friend YON_API dumper & operator<<(dumper & d, ThreadFactory const & factory);

    static ThreadFactory & made_i();

    std::map<ThreadId, detail::ThreadEntry *> entries_;
    unsigned generation_ = 0;  ///< made in
};

using THREAD_FACTORY = ThreadFactory;

/// Writes what is known of each thread.
YON_API dumper & operator<<(dumper & d, THREAD_FACTORY const & factory);

}  // namespace yon
