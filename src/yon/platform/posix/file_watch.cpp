#include "yon/platform/posix/file_watch.h"

#include <sys/epoll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <atomic>

#include "yon/platform/fork.h"

namespace yon::platform {

namespace {

constexpr int none = -1;
constexpr unsigned watched = IN_OPEN | IN_MOVE_SELF | IN_DELETE_SELF | IN_ATTRIB;

/// The queue of events, and what tells at once whether there are any: asking the queue itself takes twice as long.
struct Queue {
    int events = none;
    int poll = none;

    static Queue make() noexcept {
        Queue q;
        q.events = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
        q.poll = q.events != none ? ::epoll_create1(EPOLL_CLOEXEC) : none;
        epoll_event wanted{};
        wanted.events = EPOLLIN;
        if (q.poll != none && ::epoll_ctl(q.poll, EPOLL_CTL_ADD, q.events, &wanted) == 0) return q;
        q.close();
        return {};
    }
    void close() const noexcept {
        if (poll != none) ::close(poll);
        if (events != none) ::close(events);
    }
    bool exists() const noexcept { return events != none; }
    bool hasEvents() const noexcept {
        epoll_event event;
        return ::epoll_wait(poll, &event, 1, 0) > 0;
    }
};

constinit std::atomic<Queue> queue{Queue{}};
static_assert(std::atomic<Queue>::is_always_lock_free);
constinit std::atomic<unsigned> counter{0};

/// A child would take events out of its parent's queue.
void forgetQueue() noexcept {
    queue.exchange(Queue{}).close();
    counter.fetch_add(1);
}
[[maybe_unused]] bool const survivesFork = (onFork(ForkLayer::base, nullptr, nullptr, forgetQueue), true);

Queue theQueue() noexcept {
    Queue known = queue.load(std::memory_order_acquire);
    if (known.exists()) return known;
    Queue const made = Queue::make();
    if (!made.exists()) return made;
    if (!queue.compare_exchange_strong(known, made)) {
        made.close();
        return known;
    }
    return made;
}

}  // namespace

int FileWatch::add(char const * name) noexcept {
    Queue const q = theQueue();
    return q.exists() ? ::inotify_add_watch(q.events, name, watched) : none;
}

void FileWatch::remove(int watch) noexcept {
    Queue const q = queue.load(std::memory_order_acquire);
    if (q.exists() && watch != none) ::inotify_rm_watch(q.events, watch);
}

// Counted before the events are taken, so that nobody finds the queue empty and the counter old, and after it, for
// those who have looked at the counter in between.
unsigned FileWatch::changes() noexcept {
    Queue const q = queue.load(std::memory_order_acquire);
    if (!q.exists() || !q.hasEvents()) return counter.load(std::memory_order_acquire);
    counter.fetch_add(1);
    alignas(inotify_event) char events[4096];
    while (::read(q.events, events, sizeof events) > 0) {
    }
    return counter.fetch_add(1) + 1;
}

}  // namespace yon::platform
