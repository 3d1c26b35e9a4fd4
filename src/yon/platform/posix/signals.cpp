#include "yon/platform/signals.h"

#include <pthread.h>
#include <signal.h>

#include <atomic>

namespace yon::platform {

namespace {

constinit std::atomic<void (*)(Request)> taker{nullptr};

sigset_t requests() noexcept {
    sigset_t set;
    sigemptyset(&set);
    for (int const s : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&set, s);
    return set;
}

extern "C" void * yonWaitForRequests(void *) {
    sigset_t const set = requests();
    for (;;) {
        int signal = 0;
        if (sigwait(&set, &signal) != 0) continue;
        taker.load(std::memory_order_acquire)(signal == SIGHUP ? Request::reload : Request::stop);
    }
}

}  // namespace

int takeRequests(void (*take)(Request)) noexcept {
    if (taker.exchange(take, std::memory_order_acq_rel) != nullptr) return 0;
    sigset_t const set = requests();
    if (int const error = pthread_sigmask(SIG_BLOCK, &set, nullptr); error != 0) return error;
    pthread_t thread;
    int const error = pthread_create(&thread, nullptr, yonWaitForRequests, nullptr);
    if (error == 0) pthread_detach(thread);
    return error;
}

}  // namespace yon::platform
