#include "yon/util/running_units.h"

#include <mutex>

namespace yon {

namespace {

constinit SpinLock lock;
constinit UnitOfWork * first = nullptr;
constinit bool stopped = false;

}  // namespace

void RunningUnits::add(UnitOfWork & unit) noexcept {
    std::lock_guard const guard(lock);
    unit.running_.store(!stopped, std::memory_order_release);
    unit.nextRunning_ = std::exchange(first, &unit);
}

void RunningUnits::remove(UnitOfWork & unit) noexcept {
    std::lock_guard const guard(lock);
    unit.running_.store(false, std::memory_order_release);
    UnitOfWork ** link = &first;
    while (*link != &unit) link = &(*link)->nextRunning_;
    *link = unit.nextRunning_;
}

bool RunningUnits::stop() noexcept {
    std::lock_guard const guard(lock);
    for (UnitOfWork * unit = first; unit != nullptr; unit = unit->nextRunning_) unit->stop(unit->exitCode());
    return std::exchange(stopped, true);
}

void RunningUnits::reload() noexcept {
    std::lock_guard const guard(lock);
    for (UnitOfWork * unit = first; unit != nullptr; unit = unit->nextRunning_) {
        unit->reload_.store(true, std::memory_order_release);
    }
}

}  // namespace yon
