#include <pthread.h>

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

pthread_key_t makeKey(bool & made) noexcept {
    pthread_key_t key{};
    made = ::pthread_key_create(&key, endThread) == 0;
    return key;
}

/// Makes sure that `endThread` runs when this thread ends. It comes after the destructors of C++, and again when
/// slots were set while it ran.
bool watchThread() noexcept {
    static bool made = false;
    static pthread_key_t const key = makeKey(made);
    return made && ::pthread_setspecific(key, &slots) == 0;
}

}  // namespace

bool setSlot(Slot s, void * value, void (*end)(void *)) noexcept {
    if (value != nullptr && !watchThread()) return false;
    slots.value[static_cast<int>(s)] = value;
    slots.end[static_cast<int>(s)] = end;
    return true;
}

}  // namespace yon::platform
