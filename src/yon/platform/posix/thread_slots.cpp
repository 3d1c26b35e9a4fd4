#include <pthread.h>

#include <atomic>

#include "yon/platform/threads.h"

namespace yon::platform {

constinit thread_local Slots slots{};

namespace {

void endThread(void *) noexcept {
    for (int i = 0; i < slotCount; ++i) {
        void * const value = slots.value[i];
        slots.value[i] = nullptr;
        if (value != nullptr) slots.end[i](value);
    }
}

constexpr unsigned none = ~0U;
static_assert(sizeof(pthread_key_t) == sizeof(unsigned));
std::atomic<unsigned> endKey{none};

/// Made without a lock, which a forked child might find held.
unsigned makeKey() noexcept {
    pthread_key_t mine{};
    if (::pthread_key_create(&mine, endThread) != 0) return none;
    unsigned first = none;
    if (endKey.compare_exchange_strong(first, mine)) return mine;
    ::pthread_key_delete(mine);
    return first;
}

/// Makes sure that `endThread` runs when this thread ends. It comes after the destructors of C++, and again when
/// slots were set while it ran.
bool watchThread() noexcept {
    unsigned key = endKey.load();
    if (key == none) key = makeKey();
    return key != none && ::pthread_setspecific(key, &slots) == 0;
}

}  // namespace

bool setSlot(Slot s, void * value, void (*end)(void *)) noexcept {
    if (value != nullptr && !watchThread()) return false;
    slots.value[static_cast<int>(s)] = value;
    slots.end[static_cast<int>(s)] = end;
    return true;
}

}  // namespace yon::platform
