// For calls of the C library that take locks of its own, which a forked child may find held.
#pragma once

namespace yon::platform {

/// Held by one thread at a time, around a single such call; processes fork while nobody holds it.
class LibcLock {
public:
    LibcLock() noexcept;
    LibcLock(LibcLock const &) = delete;
    LibcLock & operator=(LibcLock const &) = delete;
    ~LibcLock();
};

}  // namespace yon::platform
