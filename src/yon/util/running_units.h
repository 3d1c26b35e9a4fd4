// The units that are between their start and their end, so that a signal reaches them.
#pragma once

#include <atomic>

#include "yon/base/spin_lock.h"
#include "yon/util/uow.h"

namespace yon {

/// All functions may be called from any thread; they never wait for a unit.
class RunningUnits {
public:
    static void add(UnitOfWork & unit) noexcept;
    static void remove(UnitOfWork & unit) noexcept;
    /// Stops all, and from now on every unit as soon as it starts. Returns whether that was asked for before.
    static bool stop() noexcept;
    static void reload() noexcept;
};

}  // namespace yon
