#include <windows.h>

#include <atomic>
#include <cstdlib>

#include "yon/platform/process_end.h"
#include "yon/platform/threads.h"

namespace yon::platform {

namespace {

// The compiler's own thread-local variables are many times as slow here.
std::atomic<DWORD> place{TLS_OUT_OF_INDEXES};

DWORD makePlace() noexcept {
    DWORD const mine = TlsAlloc();
    DWORD first = TLS_OUT_OF_INDEXES;
    if (place.compare_exchange_strong(first, mine)) return mine;
    TlsFree(mine);
    return first;
}

/// Reading a place sets the last error.
Slots * slotsAt(DWORD index) noexcept {
    if (index == TLS_OUT_OF_INDEXES) return nullptr;
    DWORD const error = GetLastError();
    void * const slots = TlsGetValue(index);
    SetLastError(error);
    return static_cast<Slots *>(slots);
}

void endThread() noexcept {
    DWORD const index = place.load();
    Slots * const slots = slotsAt(index);
    if (slots == nullptr) return;
    // What is ended may need others again.
    constexpr int rounds = 4;
    for (int i = 0; i < rounds * slotCount; ++i) {
        void * const value = slots->value[i % slotCount];
        slots->value[i % slotCount] = nullptr;
        if (value != nullptr) slots->end[i % slotCount](value);
    }
    TlsSetValue(index, nullptr);
    std::free(slots);
}

/// The library goes, and perhaps the process with it.
std::atomic<bool> detached{false};

void WINAPI watchThreads(PVOID, DWORD reason, PVOID) {
    if (reason == DLL_THREAD_DETACH) endThread();
    if (reason == DLL_PROCESS_DETACH) detached = true;
}

/// A process has about a thousand places, and may load and unload the library more often than that.
class PlaceOwner {
public:
    PlaceOwner() noexcept {}
    ~PlaceOwner() {
        if (!detached || othersAreGone()) return;
        endThread();
        if (DWORD const index = place.exchange(TLS_OUT_OF_INDEXES); index != TLS_OUT_OF_INDEXES) TlsFree(index);
    }
};

// The first static object of the library, and so the last one to go.
__attribute__((init_priority(101))) PlaceOwner placeOwner;

}  // namespace

// The loader calls what stands in this section at the beginning and end of each thread.
extern "C" __attribute__((section(".CRT$XLY"), used)) PIMAGE_TLS_CALLBACK const yonThreadCallback = watchThreads;

void * slot(Slot s) noexcept {
    Slots const * const slots = slotsAt(place.load(std::memory_order_acquire));
    return slots == nullptr ? nullptr : slots->value[static_cast<int>(s)];
}

bool setSlot(Slot s, void * value, void (*end)(void *)) noexcept {
    DWORD index = place.load(std::memory_order_acquire);
    if (index == TLS_OUT_OF_INDEXES) index = makePlace();
    if (index == TLS_OUT_OF_INDEXES) return value == nullptr;
    Slots * slots = slotsAt(index);
    if (slots == nullptr) {
        slots = static_cast<Slots *>(std::calloc(1, sizeof(Slots)));
        if (slots == nullptr || !TlsSetValue(index, slots)) {
            std::free(slots);
            return false;
        }
    }
    slots->value[static_cast<int>(s)] = value;
    slots->end[static_cast<int>(s)] = end;
    return true;
}

}  // namespace yon::platform
