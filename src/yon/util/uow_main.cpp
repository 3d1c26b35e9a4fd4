#include <atomic>
#include <chrono>
#include <cstdlib>
#include <thread>

#include "yon/base/throw.h"
#include "yon/log/logger_factory.h"
#include "yon/log/macros.h"
#include "yon/mt/threadexception.h"
#include "yon/platform/signals.h"
#include "yon/util/running_units.h"

namespace yon {

namespace {

constexpr char file[] = "src/yon/util/uow";

constinit main_uow slot;
constinit std::atomic<longlong> limitMicroseconds{0};

/// Runs on the thread for requests.
void take(platform::Request request) {
    if (request == platform::Request::reload) {
        logger_factory::reload();
        RunningUnits::reload();
        return;
    }
    bool const again = RunningUnits::stop();
    if (!again) return;
    std::this_thread::sleep_for(std::chrono::microseconds(limitMicroseconds.load(std::memory_order_relaxed)));
    logger_factory::flush();
    std::_Exit(1);
}

}  // namespace

main_uow & main_uow::instance() noexcept { return slot; }

UnitOfWork & app() {
    if (UnitOfWork * const unit = slot.get()) return *unit;
    YON_THROW_AT(YON_LOCATION(file, 174, "yon::app"), yon::NullPointerException);
}

UowMain::UowMain(int argc, char ** argv) : UnitOfWork("main") {
    cmdline().init(argc, argv);
    slot.set(this);
}

UowMain::~UowMain() noexcept(false) { slot.clear(this); }

void UowMain::on_loop() {
    int code = exitCode();
    for (UnitOfWork * const child : children()) {
        if (!running()) return;
        try {
            int const childCode = child->start();
            if (code == 0) code = childCode;
        } catch (...) {
            // It is logged; what has been done is not done again.
            stop(1);
            throw;
        }
    }
    stop(code);
}

String const & UowMain::argAt(unsigned long i) const {
    if (i >= args().size())
        YON_THROW(yon::OutOfRangeException,
                  "there are " + std::to_string(args().size()) + " arguments, not " + std::to_string(i + 1));
    return args()[i];
}

String const & UowMain::argNext() {
    if (argLeft() == 0) {
        YON_THROW(yon::OutOfRangeException,
                  current_.empty() ? "an argument is missing" : "an argument is missing after " + current_);
    }
    return current_ = args()[next_++];
}

void UowMain::catchSignals(Time limit) {
    limitMicroseconds.store(limit.toMicroSeconds(), std::memory_order_relaxed);
    if (int const error = platform::takeRequests(take); error != 0) {
        YON_THROW(yon::ThreadSyscallException, error);
    }
}

}  // namespace yon
