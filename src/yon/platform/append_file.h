// The seam for files that lines are appended to. Nothing in here raises; errors are the system's codes, 0 for none.
//
// Names are in UTF-8 or, where they are no UTF-8, in the system's code page.
#pragma once

#include <cstddef>
#include <cstdint>

#include "yon/base/types.h"

namespace yon::platform {

/// A file that is open for appending in binary form and not inherited by child processes. The name stays the
/// caller's. One thread at a time.
class AppendFile {
public:
    AppendFile() noexcept = default;
    AppendFile(AppendFile const &) = delete;
    AppendFile & operator=(AppendFile const &) = delete;
    ~AppendFile() { close(); }

    /// Gets the file that has this name now ready for writing; one that is missing is made, with the permissions that
    /// the process gives new files. A file that is still open is used again if the name means it.
    int open(char const * name) noexcept;
    /// Bytes in the file: when it was opened, some milliseconds ago at most, and those written since.
    ulonglong size() const noexcept { return size_; }
    /// Writes everything. After an error, what stands between `start()` and `size()` has been written.
    int write(char const * data, std::size_t size) noexcept;
    /// Where in the file the last write has begun.
    ulonglong start() const noexcept { return start_; }
    /// Takes off what stands behind `size` bytes, if the system allows it. REQUIRES: an open file of this name.
    void truncate(char const * name, ulonglong size) noexcept;
    /// Writing is over for now: where an open file keeps others from moving or removing it, it is closed.
    void rest() noexcept;
    void close() noexcept;

private:
    static constexpr std::intptr_t closed = -1;

    std::intptr_t handle_ = closed;
    ulonglong size_ = 0;
    ulonglong start_ = 0;

    // Where a file stays open: what tells it from others, and what was known when that was last looked at.
    bool isStill(char const * name, longlong now) noexcept;
    void measure(int from) noexcept;
    ulonglong volume_ = 0;
    ulonglong file_ = 0;
    bool isRegular_ = false;
    int watch_ = -1;
    unsigned changes_ = 0;
    longlong checked_ = 0;
    longlong measured_ = 0;
    ulonglong writes_ = 0;
};

/// Moves a file, and replaces one that has the new name. Between volumes it copies.
int moveFile(char const * from, char const * to) noexcept;

}  // namespace yon::platform
