#include "yon/platform/crash.h"

#include <signal.h>
#include <windows.h>

#include <atomic>
#include <utility>

#include "yon/platform/process_end.h"

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
    return {name, record.ExceptionCode, true, address, ::GetCurrentThreadId()};
}

/// A thread that waits for another one to use up its stack, of which hardly anything is left for a handler then.
class Helper {
public:
    void start() noexcept {
        if (thread_ != nullptr) return;
        wake_ = ::CreateEventW(nullptr, FALSE, FALSE, nullptr);
        done_ = ::CreateEventW(nullptr, FALSE, FALSE, nullptr);
        thread_ = ::CreateThread(nullptr, 64 << 10, run, this, STACK_SIZE_PARAM_IS_A_RESERVATION, &id_);
    }
    void stop() noexcept {
        if (thread_ == nullptr) return;
        cause_ = nullptr;
        ::SetEvent(wake_);
        ::WaitForSingleObject(thread_, INFINITE);
        for (HANDLE * h : {&thread_, &wake_, &done_}) ::CloseHandle(std::exchange(*h, nullptr));
        id_ = 0;
    }

    bool runs() const noexcept { return thread_ != nullptr; }
    bool isThisThread() const noexcept { return id_ == ::GetCurrentThreadId(); }

    /// Calls the handler, for one thread in the life of the process; the others may do it themselves.
    bool handle(CrashCause const & cause) noexcept {
        if (thread_ == nullptr || taken_.exchange(true) || othersAreGone())
            return handler.load(std::memory_order_acquire)(cause);
        cause_ = &cause;
        ::SetEvent(wake_);
        return ::WaitForSingleObject(done_, patience) == WAIT_OBJECT_0 && wanted_;
    }

private:
    static constexpr DWORD patience = 30000;

    static DWORD WINAPI run(void * self) {
        Helper & helper = *static_cast<Helper *>(self);
        ::WaitForSingleObject(helper.wake_, INFINITE);
        if (helper.cause_ == nullptr) return 0;
        helper.wanted_ = handler.load(std::memory_order_acquire)(*helper.cause_);
        ::SetEvent(helper.done_);
        return 0;
    }

    HANDLE wake_ = nullptr;
    HANDLE done_ = nullptr;
    HANDLE thread_ = nullptr;
    DWORD id_ = 0;
    std::atomic<bool> taken_{false};
    CrashCause const * cause_ = nullptr;
    bool wanted_ = false;
};

constinit Helper helper;

LONG WINAPI onException(EXCEPTION_POINTERS * exception) {
    if (helper.isThisThread()) return EXCEPTION_CONTINUE_SEARCH;
    CrashHandler const h = handler.load(std::memory_order_acquire);
    CrashCause const cause = causeOf(*exception->ExceptionRecord);
    bool const overflow = cause.code == EXCEPTION_STACK_OVERFLOW;
    bool const wanted = h == nullptr || (overflow ? !helper.runs() || helper.handle(cause) : h(cause));
    LPTOP_LEVEL_EXCEPTION_FILTER const earlier = earlierFilter.load(std::memory_order_acquire);
    return wanted && earlier != nullptr ? earlier(exception) : EXCEPTION_CONTINUE_SEARCH;
}

/// The C library has put the default action back, and ends the process when this returns.
void __cdecl onAbort(int number) {
    CrashHandler const h = handler.load(std::memory_order_acquire);
    bool const wanted =
        h == nullptr || h({"SIGABRT", static_cast<unsigned>(number), false, 0, ::GetCurrentThreadId()});
    Signal const earlier = earlierAbort.load(std::memory_order_acquire);
    if (wanted && earlier != SIG_DFL && earlier != SIG_IGN) earlier(number);
}

void watch(CrashHandler h) noexcept {
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

}  // namespace

void watchCrashes(CrashHandler h) noexcept {
    helper.start();
    watch(h);
}

// What was there before is always called.
void watchUnclaimedCrashes(CrashHandler h) noexcept {
    if (handler.load(std::memory_order_acquire) == nullptr) watch(h);
}

void unwatchCrashes() noexcept {
    LPTOP_LEVEL_EXCEPTION_FILTER const filter = ::SetUnhandledExceptionFilter(earlierFilter.load());
    if (filter != onException) ::SetUnhandledExceptionFilter(filter);
    Signal const onAbortNow = ::signal(SIGABRT, earlierAbort.load());
    if (onAbortNow != onAbort) ::signal(SIGABRT, onAbortNow);
    helper.stop();
    handler.store(nullptr, std::memory_order_release);
}

void pauseInCrash(unsigned milliseconds) noexcept { ::Sleep(milliseconds); }

std::string programPath() {
    char path[32768];
    DWORD const size = ::GetModuleFileNameA(nullptr, path, sizeof path);
    return std::string(path, size);
}

}  // namespace yon::platform
