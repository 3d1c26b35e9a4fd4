#include <windows.h>

#include "yon/platform/locks.h"

namespace yon::platform {

void closeHandle(void * handle) noexcept { ::CloseHandle(handle); }

}  // namespace yon::platform
