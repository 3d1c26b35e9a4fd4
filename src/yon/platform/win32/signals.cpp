#include "yon/platform/signals.h"

#include <windows.h>

#include <atomic>

namespace yon::platform {

namespace {

constinit std::atomic<void (*)(Request)> taker{nullptr};

/// The system calls it on a thread of its own.
BOOL WINAPI handle(DWORD event) {
    if (event == CTRL_LOGOFF_EVENT) return FALSE;
    taker.load(std::memory_order_acquire)(Request::stop);
    // When the console is closed the process ends as soon as this returns: it shall have its time to stop.
    if (event == CTRL_CLOSE_EVENT || event == CTRL_SHUTDOWN_EVENT) Sleep(INFINITE);
    return TRUE;
}

}  // namespace

int takeRequests(void (*take)(Request)) noexcept {
    if (taker.exchange(take, std::memory_order_acq_rel) != nullptr) return 0;
    return SetConsoleCtrlHandler(handle, TRUE) ? 0 : static_cast<int>(GetLastError());
}

}  // namespace yon::platform
