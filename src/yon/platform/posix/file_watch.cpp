#include "yon/platform/posix/file_watch.h"

#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <atomic>

#include "yon/platform/fork.h"

namespace yon::platform {

namespace {

constexpr int none = -1;

constinit std::atomic<int> queue{none};
constinit std::atomic<unsigned> counter{0};

/// A child would take events out of its parent's queue.
void forgetQueue() noexcept {
    if (int const inherited = queue.exchange(none); inherited != none) ::close(inherited);
    counter.fetch_add(1);
}

int theQueue() noexcept {
    int known = queue.load(std::memory_order_acquire);
    if (known != none) return known;
    int const made = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (made == none) return none;
    if (!queue.compare_exchange_strong(known, made)) {
        ::close(made);
        return known;
    }
    static constinit std::atomic<bool> watchesForks{false};
    if (!watchesForks.exchange(true)) onFork(ForkLayer::base, nullptr, nullptr, forgetQueue);
    return made;
}

}  // namespace

int FileWatch::add(char const * name) noexcept {
    int const q = theQueue();
    return q != none ? ::inotify_add_watch(q, name, IN_MOVE_SELF | IN_DELETE_SELF | IN_ATTRIB) : none;
}

void FileWatch::remove(int watch) noexcept {
    int const q = queue.load(std::memory_order_acquire);
    if (q != none && watch != none) ::inotify_rm_watch(q, watch);
}

// Counted before the events are taken, so that nobody finds the queue empty and the counter old, and after it, for
// those who have looked at the counter in between.
unsigned FileWatch::changes() noexcept {
    int waiting = 0;
    int const q = queue.load(std::memory_order_acquire);
    if (q == none || ::ioctl(q, FIONREAD, &waiting) != 0 || waiting == 0)
        return counter.load(std::memory_order_acquire);
    counter.fetch_add(1);
    alignas(inotify_event) char events[4096];
    while (::read(q, events, sizeof events) > 0) {
    }
    return counter.fetch_add(1) + 1;
}

}  // namespace yon::platform
