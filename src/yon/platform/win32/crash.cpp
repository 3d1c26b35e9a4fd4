#include "yon/platform/crash.h"

#include <signal.h>
#include <windows.h>

#include <atomic>

namespace yon::platform {

namespace {

using Signal = void(__cdecl *)(int);

std::atomic<CrashHandler> handler{nullptr};
std::atomic<LPTOP_LEVEL_EXCEPTION_FILTER> earlierFilter{nullptr};
std::atomic<Signal> earlierAbort{SIG_DFL};

struct Named {
    DWORD code;
    char const * name;
};

#define YON_NAMED(code) \
    { code, #code }
constexpr Named names[] = {
    YON_NAMED(EXCEPTION_ACCESS_VIOLATION),
    YON_NAMED(EXCEPTION_ARRAY_BOUNDS_EXCEEDED),
    YON_NAMED(EXCEPTION_BREAKPOINT),
    YON_NAMED(EXCEPTION_DATATYPE_MISALIGNMENT),
    YON_NAMED(EXCEPTION_FLT_DENORMAL_OPERAND),
    YON_NAMED(EXCEPTION_FLT_DIVIDE_BY_ZERO),
    YON_NAMED(EXCEPTION_FLT_INEXACT_RESULT),
    YON_NAMED(EXCEPTION_FLT_INVALID_OPERATION),
    YON_NAMED(EXCEPTION_FLT_OVERFLOW),
    YON_NAMED(EXCEPTION_FLT_STACK_CHECK),
    YON_NAMED(EXCEPTION_FLT_UNDERFLOW),
    YON_NAMED(EXCEPTION_GUARD_PAGE),
    YON_NAMED(EXCEPTION_ILLEGAL_INSTRUCTION),
    YON_NAMED(EXCEPTION_IN_PAGE_ERROR),
    YON_NAMED(EXCEPTION_INT_DIVIDE_BY_ZERO),
    YON_NAMED(EXCEPTION_INT_OVERFLOW),
    YON_NAMED(EXCEPTION_INVALID_DISPOSITION),
    YON_NAMED(EXCEPTION_INVALID_HANDLE),
    YON_NAMED(EXCEPTION_NONCONTINUABLE_EXCEPTION),
    YON_NAMED(EXCEPTION_PRIV_INSTRUCTION),
    YON_NAMED(EXCEPTION_STACK_OVERFLOW),
};
#undef YON_NAMED

CrashCause causeOf(EXCEPTION_RECORD const & record) noexcept {
    char const * name = "";
    for (Named const & n : names) {
        if (n.code == record.ExceptionCode) name = n.name;
    }
    // What was read or written stands behind the kind of the access.
    bool const access = record.ExceptionCode == EXCEPTION_ACCESS_VIOLATION && record.NumberParameters >= 2;
    std::size_t const address = access ? static_cast<std::size_t>(record.ExceptionInformation[1])
                                       : reinterpret_cast<std::size_t>(record.ExceptionAddress);
    return {name, record.ExceptionCode, true, address};
}

LONG WINAPI onException(EXCEPTION_POINTERS * exception) {
    CrashHandler const h = handler.load(std::memory_order_acquire);
    bool const wanted = h == nullptr || h(causeOf(*exception->ExceptionRecord));
    LPTOP_LEVEL_EXCEPTION_FILTER const earlier = earlierFilter.load(std::memory_order_acquire);
    return wanted && earlier != nullptr ? earlier(exception) : EXCEPTION_CONTINUE_SEARCH;
}

/// The C library has put the default action back, and ends the process when this returns.
void __cdecl onAbort(int number) {
    CrashHandler const h = handler.load(std::memory_order_acquire);
    bool const wanted = h == nullptr || h({"SIGABRT", static_cast<unsigned>(number), false, 0});
    Signal const earlier = earlierAbort.load(std::memory_order_acquire);
    if (wanted && earlier != SIG_DFL && earlier != SIG_IGN) earlier(number);
}

}  // namespace

void watchCrashes(CrashHandler h) noexcept {
    handler.store(h, std::memory_order_release);
    LPTOP_LEVEL_EXCEPTION_FILTER const filter = ::SetUnhandledExceptionFilter(onException);
    if (filter != onException) earlierFilter.store(filter, std::memory_order_release);
    Signal const onAbortBefore = ::signal(SIGABRT, onAbort);
    if (onAbortBefore == SIG_IGN) {
        ::signal(SIGABRT, SIG_IGN);
    } else if (onAbortBefore != onAbort && onAbortBefore != SIG_ERR) {
        earlierAbort.store(onAbortBefore, std::memory_order_release);
    }
}

void unwatchCrashes() noexcept {
    LPTOP_LEVEL_EXCEPTION_FILTER const filter = ::SetUnhandledExceptionFilter(earlierFilter.load());
    if (filter != onException) ::SetUnhandledExceptionFilter(filter);
    Signal const onAbortNow = ::signal(SIGABRT, earlierAbort.load());
    if (onAbortNow != onAbort) ::signal(SIGABRT, onAbortNow);
    handler.store(nullptr, std::memory_order_release);
}

void pauseInCrash(unsigned milliseconds) noexcept { ::Sleep(milliseconds); }

std::string programPath() {
    char path[32768];
    DWORD const size = ::GetModuleFileNameA(nullptr, path, sizeof path);
    return std::string(path, size);
}

}  // namespace yon::platform
