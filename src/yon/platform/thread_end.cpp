#include "yon/platform/thread_end.h"

#include <pthread.h>

#include <atomic>

namespace yon::platform {

namespace {

std::atomic<void (*)(void *)> endWork{nullptr};

void runEndWork(void * value) {
    if (auto const work = endWork.load(std::memory_order_acquire)) work(value);
}

/// Goes when the library is unloaded, so that the end of a thread never leads into it then.
class Key {
public:
    Key() noexcept : made_(::pthread_key_create(&key_, runEndWork) == 0) {}
    ~Key() {
        if (made_.exchange(false)) ::pthread_key_delete(key_);
    }
    void set(void * value) noexcept {
        if (made_) ::pthread_setspecific(key_, value);
    }

private:
    pthread_key_t key_{};
    std::atomic<bool> made_;
};

// The first static object of the library, and so the last one to go.
__attribute__((init_priority(101))) Key key;

}  // namespace

void atThreadEnd(void (*work)(void *), void * value) noexcept {
    endWork.store(work, std::memory_order_release);
    key.set(value);
}

}  // namespace yon::platform
