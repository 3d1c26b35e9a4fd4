// `System`: whether the process is closing.
#pragma once

#include <atomic>

#include "yon/base/config.h"

namespace yon {

/// The closing flag of the process, which long-running loops poll. Once set it stays. Callable from any thread.
class YON_API System {
public:
    static bool closing() noexcept { return closing_.load(std::memory_order_acquire); }
    static void close() noexcept { closing_.store(true, std::memory_order_release); }

private:
    static std::atomic<bool> closing_;
};

}  // namespace yon
