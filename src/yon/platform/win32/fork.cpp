#include "yon/platform/fork.h"

namespace yon::platform {

void onFork(ForkLayer, ForkHook, ForkHook, ForkHook) noexcept {}

}  // namespace yon::platform
