#include <pthread.h>
#include <unistd.h>

#include <atomic>

#include "yon/platform/locks.h"

namespace yon::platform {

namespace {

// Small enough for the room that the system keeps for libraries loaded later.
[[gnu::tls_model("initial-exec")]] thread_local unsigned cachedId = 0;

[[gnu::noinline]] unsigned askForId() noexcept {
    static std::atomic<bool> watchesForks{false};
    if (!watchesForks.exchange(true)) pthread_atfork(nullptr, nullptr, [] { cachedId = 0; });
    return cachedId = static_cast<unsigned>(::gettid());
}

}  // namespace

unsigned currentThreadId() noexcept { return cachedId != 0 ? cachedId : askForId(); }

unsigned currentProcessId() noexcept { return static_cast<unsigned>(::getpid()); }

}  // namespace yon::platform
