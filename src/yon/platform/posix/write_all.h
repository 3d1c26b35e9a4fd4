#pragma once

#include <unistd.h>

#include <cerrno>
#include <cstddef>

namespace yon::platform {

/// Writes everything, or returns false. Safe in a signal handler.
inline bool writeAll(int fd, char const * data, std::size_t size) noexcept {
    while (size != 0) {
        ssize_t const n = ::write(fd, data, size);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        data += n;
        size -= static_cast<std::size_t>(n);
    }
    return true;
}

}  // namespace yon::platform
