#include <windows.h>

#include <process.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <new>

#include "yon/platform/alternate_stack.h"
#include "yon/platform/locks.h"
#include "yon/platform/platform.h"
#include "yon/platform/threads.h"

namespace yon::platform {

namespace {

struct Start {
    void (*routine)(void *);
    void * argument;
};

unsigned __stdcall run(void * argument) {
    AlternateStack const stack;
    Start * const start = static_cast<Start *>(argument);
    Start const copy = *start;
    delete start;
    std::srand(static_cast<unsigned>(wallMicroseconds()));
    copy.routine(copy.argument);
    return 0;  // and not the code that stands for a thread that is alive
}

longlong deadlineAfter(longlong microseconds) noexcept {
    longlong deadline = 0;
    return __builtin_add_overflow(monotonicMicroseconds(), microseconds, &deadline) ? LLONG_MAX : deadline;
}

/// What is left, in milliseconds, rounded up; long times come in pieces, none of which is the endless one.
DWORD leftUntil(longlong deadline) noexcept {
    longlong const left = std::max(deadline - monotonicMicroseconds(), 0LL);
    return static_cast<DWORD>(std::min(left / 1000 + (left % 1000 != 0), longlong{LONG_MAX}));
}

int waitUntil(void * handle, longlong deadline) noexcept {
    for (;;) {
        DWORD const left = leftUntil(deadline);
        DWORD const result = ::WaitForSingleObject(handle, left);
        if (result == WAIT_OBJECT_0) return done;
        if (result != WAIT_TIMEOUT) return lastError();
        if (left == 0) return timedOut;
    }
}

}  // namespace

CreatedThread createThread(void (*routine)(void *), void * argument, unsigned stackSize) noexcept {
    Start * const start = new (std::nothrow) Start{routine, argument};
    if (start == nullptr) return {nullptr, 0, ERROR_NOT_ENOUGH_MEMORY};
    CreatedThread created{};
    created.handle = reinterpret_cast<void *>(::_beginthreadex(nullptr, stackSize, run, start, 0, &created.id));
    if (created.handle == nullptr) {
        created.error = lastError();
        delete start;
    }
    return created;
}

void * openThisThread() noexcept {
    HANDLE handle = nullptr;
    HANDLE const process = ::GetCurrentProcess();
    if (!::DuplicateHandle(process, ::GetCurrentThread(), process, &handle, 0, FALSE, DUPLICATE_SAME_ACCESS))
        return nullptr;
    return handle;
}

bool threadAlive(void * handle) noexcept { return ::WaitForSingleObject(handle, 0) == WAIT_TIMEOUT; }

int joinThread(void * handle) noexcept {
    return ::WaitForSingleObject(handle, INFINITE) == WAIT_OBJECT_0 ? done : lastError();
}

int joinThread(void * handle, longlong limit) noexcept { return waitUntil(handle, deadlineAfter(limit)); }

void nameThisThread(istr name) noexcept {
    // Not in all versions of the system.
    using SetDescription = HRESULT(WINAPI *)(HANDLE, PCWSTR);
    static SetDescription const setDescription = reinterpret_cast<SetDescription>(
        reinterpret_cast<void *>(::GetProcAddress(::GetModuleHandleW(L"kernel32.dll"), "SetThreadDescription")));
    if (setDescription == nullptr) return;
    wchar_t text[64] = {};
    int const length = static_cast<int>(std::min<std::size_t>(name.size(), std::size(text) - 1));
    ::MultiByteToWideChar(CP_ACP, 0, name.data(), length, text, static_cast<int>(std::size(text) - 1));
    setDescription(::GetCurrentThread(), text);
}

void pauseThread(longlong microseconds) noexcept {
    longlong const deadline = deadlineAfter(std::max(microseconds, 0LL));
    // A pause of 0 lets others run.
    do {
        ::Sleep(leftUntil(deadline));
    } while (leftUntil(deadline) > 0);
}

}  // namespace yon::platform
