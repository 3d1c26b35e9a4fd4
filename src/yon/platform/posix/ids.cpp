#include <unistd.h>

#include "yon/platform/fork.h"
#include "yon/platform/locks.h"

namespace yon::platform {

namespace {

// Small enough for the room that the system keeps for libraries loaded later.
[[gnu::tls_model("initial-exec")]] thread_local unsigned cachedId = 0;

void forgetId() noexcept { cachedId = 0; }
[[maybe_unused]] bool const survivesFork = (onFork(ForkLayer::base, nullptr, nullptr, forgetId), true);

[[gnu::noinline]] unsigned askForId() noexcept { return cachedId = static_cast<unsigned>(::gettid()); }

}  // namespace

unsigned currentThreadId() noexcept { return cachedId != 0 ? cachedId : askForId(); }

unsigned currentProcessId() noexcept { return static_cast<unsigned>(::getpid()); }

}  // namespace yon::platform
