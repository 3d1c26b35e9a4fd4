#include "yon/platform/crash.h"

#include <signal.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdint>

#include "yon/platform/locks.h"

namespace yon::platform {

namespace {

struct Watched {
    int number;
    char const * name;
    struct sigaction earlier;
    bool active;
};

Watched watched[] = {
    {SIGSEGV, "SIGSEGV", {}, false}, {SIGBUS, "SIGBUS", {}, false},   {SIGFPE, "SIGFPE", {}, false},
    {SIGILL, "SIGILL", {}, false},   {SIGABRT, "SIGABRT", {}, false},
};

std::atomic<CrashHandler> handler{nullptr};

Watched & watchedBy(int number) noexcept {
    Watched * w = watched;
    while (w->number != number) ++w;
    return *w;
}

CrashCause causeOf(int number, siginfo_t const & info) noexcept {
    // Signals that somebody has sent come with no address.
    bool const located = info.si_code > 0 && number != SIGABRT;
    std::size_t const address = located ? reinterpret_cast<std::size_t>(info.si_addr) : 0;
    return {watchedBy(number).name, static_cast<unsigned>(number), located, address, currentThreadId()};
}

void callEarlier(int number, siginfo_t * info, void * context) {
    struct sigaction const & earlier = watchedBy(number).earlier;
    if ((earlier.sa_flags & SA_SIGINFO) != 0) {
        earlier.sa_sigaction(number, info, context);
    } else if (earlier.sa_handler != SIG_DFL && earlier.sa_handler != SIG_IGN) {
        earlier.sa_handler(number);
    }
}

/// The signal is blocked until the handler returns, and comes then, where the fault was and with what is known of it.
void raiseAgain(int number, siginfo_t * info) noexcept {
    if (::syscall(SYS_rt_tgsigqueueinfo, ::getpid(), ::gettid(), number, info) != 0) ::raise(number);
}

void onSignal(int number, siginfo_t * info, void * context) {
    int const error = errno;
    CrashHandler const h = handler.load(std::memory_order_acquire);
    bool const wanted = h == nullptr || h(causeOf(number, *info));
    ::signal(number, SIG_DFL);
    if (wanted) callEarlier(number, info, context);
    raiseAgain(number, info);
    errno = error;
}

bool isOurs(struct sigaction const & action) noexcept {
    return (action.sa_flags & SA_SIGINFO) != 0 && action.sa_sigaction == onSignal;
}

bool leavesTo(struct sigaction const & action, void (*what)(int)) noexcept {
    return (action.sa_flags & SA_SIGINFO) == 0 && action.sa_handler == what;
}

/// Takes over the signals whose present action `wanted` accepts.
template <class Wanted>
void watch(CrashHandler h, Wanted wanted) noexcept {
    handler.store(h, std::memory_order_release);
    struct sigaction action = {};
    action.sa_sigaction = onSignal;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    // A fault within the handler comes with its signal blocked, which ends the process by the default action.
    for (Watched const & w : watched) ::sigaddset(&action.sa_mask, w.number);
    for (Watched & w : watched) {
        struct sigaction now;
        if (::sigaction(w.number, nullptr, &now) != 0 || isOurs(now) || !wanted(now)) continue;
        w.earlier = now;
        w.active = ::sigaction(w.number, &action, nullptr) == 0;
    }
}

}  // namespace

void watchCrashes(CrashHandler h) noexcept {
    watch(h, [](struct sigaction const & now) { return !leavesTo(now, SIG_IGN); });
}

void watchUnclaimedCrashes(CrashHandler h) noexcept {
    if (handler.load(std::memory_order_acquire) != nullptr) return;
    watch(h, [](struct sigaction const & now) { return leavesTo(now, SIG_DFL); });
}

void unwatchCrashes() noexcept {
    for (Watched & w : watched) {
        struct sigaction now;
        if (!w.active || ::sigaction(w.number, nullptr, &now) != 0 || !isOurs(now)) continue;
        w.active = false;
        ::sigaction(w.number, &w.earlier, nullptr);
    }
    handler.store(nullptr, std::memory_order_release);
}

void pauseInCrash(unsigned milliseconds) noexcept {
    timespec const pause = {static_cast<time_t>(milliseconds / 1000),
                            static_cast<long>(milliseconds % 1000) * 1000000};
    ::nanosleep(&pause, nullptr);
}

std::string programPath() {
    char path[4096];
    ssize_t const size = ::readlink("/proc/self/exe", path, sizeof path);
    return size > 0 ? std::string(path, static_cast<std::size_t>(size)) : std::string(program_invocation_name);
}

}  // namespace yon::platform
