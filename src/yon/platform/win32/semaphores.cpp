#include <windows.h>

#include "yon/platform/locks.h"

namespace yon::platform {

namespace {

static_assert(sizeof(HANDLE) <= sizeof(ulonglong));

HANDLE handleOf(ulonglong semaphore) noexcept {
    return reinterpret_cast<HANDLE>(static_cast<std::uintptr_t>(semaphore));
}

int error() noexcept { return static_cast<int>(::GetLastError()); }

int wait(ulonglong semaphore, DWORD milliseconds) noexcept {
    switch (::WaitForSingleObject(handleOf(semaphore), milliseconds)) {
        case WAIT_OBJECT_0:
            return done;
        case WAIT_TIMEOUT:
            return timedOut;
        default:
            return error();
    }
}

}  // namespace

int createSemaphore(ulonglong & semaphore, int count) noexcept {
    HANDLE const handle = ::CreateSemaphoreW(nullptr, count, 0x7fffffff, nullptr);
    semaphore = reinterpret_cast<std::uintptr_t>(handle);
    return handle == INVALID_HANDLE_VALUE ? error() : done;
}

void destroySemaphore(ulonglong & semaphore) noexcept { ::CloseHandle(handleOf(semaphore)); }

int postSemaphore(ulonglong & semaphore, int count) noexcept {
    return ::ReleaseSemaphore(handleOf(semaphore), count, nullptr) ? done : error();
}

int waitSemaphore(ulonglong & semaphore) noexcept { return wait(semaphore, INFINITE); }

int waitSemaphore(ulonglong & semaphore, unsigned milliseconds) noexcept {
    // The greatest value would be for ever.
    return wait(semaphore, milliseconds < INFINITE ? milliseconds : INFINITE - 1);
}

}  // namespace yon::platform
