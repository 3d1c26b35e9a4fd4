// Work at the end of a thread that needs what the thread has in memory.
#pragma once

namespace yon::platform {

/// Has `work(value)` called when the calling thread ends, and nothing when the library is unloaded before. A second
/// call replaces the value; `work` itself may be followed by another call, for a value that was made since. There is
/// one `work` for the whole library.
///
/// Destructors of thread-local objects cannot do this everywhere: where the compiler emulates thread-local storage,
/// the storage is released before they run.
void atThreadEnd(void (*work)(void *), void * value) noexcept;

}  // namespace yon::platform
