// The report of the allocations that are live when the process ends.
#pragma once

namespace yon {

/// Switches the leak checker on or off. What is live when the process ends, or the library is unloaded, is reported
/// if it is on by this: to the logger "YON", and to standard error when that has no file. Callable from any thread.
void checkLeaks(bool on) noexcept;

}  // namespace yon
