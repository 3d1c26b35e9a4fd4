#include <cstring>

#include "yon/platform/platform.h"

namespace yon::platform {

int lastError() noexcept { return 0; }

std::string errnoText(int code) {
    char buffer[256];
    return ::strerror_r(code, buffer, sizeof buffer);
}

// The codes of the system are those of the C library, which was asked before.
std::string systemText(int) { return {}; }

std::string failureText(int code) {
    char const * const text = ::strerrordesc_np(code);
    return text != nullptr ? text : "";
}

}  // namespace yon::platform
