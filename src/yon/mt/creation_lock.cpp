#include "yon/mt/creation_lock.h"

#include <new>

#include "yon/base/spin_lock.h"
#include "yon/platform/fork.h"
#include "yon/platform/locks.h"

namespace yon::detail {

/// The guards of all threads, those that wait for their mutex included.
struct CreationsUnderWay {
    static void add(CreationLock & c) noexcept {
        SpinGuard const guard(lock);
        c.next_ = first;
        first = &c;
    }
    static void remove(CreationLock const & c) noexcept {
        SpinGuard const guard(lock);
        CreationLock ** at = &first;
        while (*at != &c) at = &(*at)->next_;
        *at = c.next_;
    }

    static void beforeFork() noexcept { lock.lock(); }
    static void inParent() noexcept { lock.unlock(); }
    /// The guards of this thread stay: it forks while it makes something.
    static void inChild() noexcept {
        std::uintptr_t const me = platform::threadToken();
        CreationLock ** at = &first;
        while (CreationLock const * const c = *at) {
            if (c->thread_ == me) {
                at = &(*at)->next_;
            } else {
                *at = c->next_;
                free(c->mutex_);
            }
        }
        lock.unlock();
    }

private:
    /// Unless it is free or this thread's.
    static void free(RecMutex & mutex) noexcept {
        if (mutex.tryLock()) {
            mutex.unlock();
        } else {
            new (&mutex) RecMutex;
        }
    }

    static inline constinit SpinLock lock;
    static inline constinit CreationLock * first = nullptr;
};

namespace {

[[maybe_unused]] bool const survivesFork = (platform::onFork(platform::ForkLayer::base, CreationsUnderWay::beforeFork,
                                                             CreationsUnderWay::inParent, CreationsUnderWay::inChild),
                                            true);

}  // namespace

CreationLock::CreationLock(RecMutex & mutex) noexcept YON_NO_THREAD_SAFETY_ANALYSIS
    : mutex_(mutex),
      thread_(platform::threadToken()) {
    CreationsUnderWay::add(*this);
    mutex_.lock();
}

CreationLock::~CreationLock() YON_NO_THREAD_SAFETY_ANALYSIS {
    mutex_.unlock();
    CreationsUnderWay::remove(*this);
}

}  // namespace yon::detail
