// The seam for threads. Nothing in here raises.
#pragma once

#include "yon/base/istr.h"

namespace yon::platform {

// --- threads ---

struct CreatedThread {
    void * handle;  ///< to be closed with `closeHandle`; null after a failure
    unsigned id;
    int error;
};

/// Starts a thread that runs `routine(argument)`, with an `AlternateStack`; a stack size of 0 is the usual one. Where
/// each thread has random numbers of its own, it seeds those of the C library. `routine` lets nothing out but the
/// forced end of a thread.
CreatedThread createThread(void (*routine)(void *), void * argument, unsigned stackSize) noexcept;

/// A handle of the calling thread, whoever has started it, that any thread may use; null when that fails.
void * openThisThread() noexcept;

/// Whether the thread has not ended yet; false if that cannot be told.
bool threadAlive(void * handle) noexcept;

/// Wait until the thread has ended, for any number of callers and times; the second for the limit, in microseconds.
/// Return `done`, `timedOut` or the system's error number.
int joinThread(void * handle) noexcept;
int joinThread(void * handle, longlong limit) noexcept;

/// Shows the beginning of the name as that of the calling thread, as far as the system allows.
void nameThisThread(istr name) noexcept;

/// Pauses the calling thread for at least so many microseconds; 0 and less let others run.
void pauseThread(longlong microseconds) noexcept;

// --- what the library keeps for each thread ---

/// In the order in which they end: the pool takes back what others release, and nobody sees the end of a thread
/// before it.
enum class Slot { info, callStack, pool, thread };
inline constexpr int slotCount = 4;

struct Slots {
    void * value[slotCount];
    void (*end[slotCount])(void *);
};

/// The calling thread's value, null at first. Takes a nanosecond or two, and leaves the last error.
#if defined(_WIN32)
void * slot(Slot s) noexcept;
#else
// Small enough for the room that the system keeps for libraries loaded later.
[[gnu::tls_model("initial-exec")]] extern constinit thread_local Slots slots;
inline void * slot(Slot s) noexcept { return slots.value[static_cast<int>(s)]; }
#endif

/// Sets it; false when the memory is used up. When the thread ends, values other than null are taken out of their
/// slots and given to their `end`, which may set slots again. Not called when the process ends or the library is
/// unloaded before.
///
/// Destructors of thread-local objects cannot do this everywhere: where the compiler emulates thread-local storage,
/// the storage is released before they run.
bool setSlot(Slot s, void * value, void (*end)(void *)) noexcept;

}  // namespace yon::platform
