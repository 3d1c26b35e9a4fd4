#include "yon/platform/locks.h"

namespace yon::platform {

void closeHandle(void * handle) noexcept { delete static_cast<HandleObject *>(handle); }

}  // namespace yon::platform
