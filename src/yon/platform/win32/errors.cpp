#include <windows.h>

#include <cstring>

#include "yon/platform/platform.h"

namespace yon::platform {

int lastError() noexcept { return static_cast<int>(::GetLastError()); }

std::string errnoText(int code) {
    char buffer[256];
    return ::strerror_s(buffer, sizeof buffer, code) == 0 ? buffer : "";
}

std::string systemText(int code) {
    DWORD const last = ::GetLastError();
    char buffer[4097];
    DWORD size =
        ::FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK,
                         nullptr, static_cast<DWORD>(code), 0, buffer, sizeof buffer, nullptr);
    ::SetLastError(last);
    // A blank stands where the line break at the end was.
    while (size != 0 && buffer[size - 1] == ' ') --size;
    return std::string(buffer, size);
}

std::string failureText(int code) { return systemText(code); }

}  // namespace yon::platform
