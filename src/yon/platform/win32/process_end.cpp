#include "yon/platform/process_end.h"

#include <windows.h>

#include <atomic>

namespace yon::platform {

bool othersAreGone() noexcept {
    using Query = BOOLEAN(WINAPI *)();
    static constinit std::atomic<Query> known{nullptr};
    Query query = known.load(std::memory_order_relaxed);
    if (query == nullptr) {
        FARPROC const found = ::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), "RtlDllShutdownInProgress");
        query = reinterpret_cast<Query>(reinterpret_cast<void *>(found));
        known.store(query, std::memory_order_relaxed);
    }
    return query != nullptr && query() != FALSE;
}

void tellStandardError(char const * data, std::size_t size) noexcept {
    DWORD written = 0;
    ::WriteFile(::GetStdHandle(STD_ERROR_HANDLE), data, static_cast<DWORD>(size), &written, nullptr);
}

}  // namespace yon::platform
