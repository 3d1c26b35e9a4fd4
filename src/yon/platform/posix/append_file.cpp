#include "yon/platform/append_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <utility>

#include "yon/platform/posix/file_watch.h"

namespace yon::platform {

namespace {

constexpr mode_t permissions = 0666;

constexpr longlong second = 1'000'000'000;
constexpr longlong never = 0;

/// Of all files of the process.
constinit std::atomic<ulonglong> writes{0};

/// In nanoseconds; moves on by some milliseconds at a time.
longlong roughTime() noexcept {
    timespec t;
    ::clock_gettime(CLOCK_MONOTONIC_COARSE, &t);
    return t.tv_sec * second + t.tv_nsec;
}

int descriptor(std::intptr_t handle) noexcept { return static_cast<int>(handle); }

/// What the system says of a file. Its times are not asked for: a file whose times were looked at has them written to
/// its inode by the next write, which then takes twice as long.
class FileStatus {
public:
    int get(int directory, char const * name, int flags) noexcept {
        return ::statx(directory, name, flags, STATX_TYPE | STATX_INO, &status_) == 0 ? 0 : errno;
    }
    ulonglong volume() const noexcept { return ulonglong{status_.stx_dev_major} << 32 | status_.stx_dev_minor; }
    ulonglong file() const noexcept { return status_.stx_ino; }
    bool isRegular() const noexcept { return S_ISREG(status_.stx_mode); }

private:
    struct statx status_;
};

}  // namespace

/// Whether the open file is the one that has this name. Where it can be watched, its name is looked at only after
/// something has happened to it, and every second for what cannot be seen.
bool AppendFile::isStill(char const * name, longlong now) noexcept {
    unsigned const changes = FileWatch::changes();
    if (watch_ >= 0 && changes == changes_ && now - checked_ < second) return true;
    changes_ = changes;
    checked_ = now;
    measured_ = never;
    watch_ = FileWatch::add(name);
    FileStatus status;
    return status.get(AT_FDCWD, name, 0) == 0 && status.volume() == volume_ && status.file() == file_;
}

int AppendFile::open(char const * name) noexcept {
    longlong const now = roughTime();
    if (handle_ == closed || !isStill(name, now)) {
        close();
        handle_ = ::open(name, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY, permissions);
        if (handle_ == closed) return errno;
        FileStatus status;
        if (int const error = status.get(descriptor(handle_), "", AT_EMPTY_PATH); error != 0) return error;
        volume_ = status.volume();
        file_ = status.file();
        isRegular_ = status.isRegular();
        measured_ = never;
    }
    // The size is what it was, and what was written here since, if nobody else in this process has written anything,
    // nobody has opened the file, and the clock has not moved on.
    if (now != measured_ || writes_ != writes.load(std::memory_order_acquire)) {
        measured_ = now;
        writes_ = writes.load(std::memory_order_acquire);
        measure(SEEK_END);
    }
    return 0;
}

void AppendFile::measure(int from) noexcept {
    // What is no regular file has no size.
    off_t const end = isRegular_ ? ::lseek(descriptor(handle_), 0, from) : 0;
    size_ = end > 0 ? static_cast<ulonglong>(end) : 0;
}

int AppendFile::write(char const * data, std::size_t size) noexcept {
    start_ = size_;
    for (std::size_t done = 0; done != size;) {
        ssize_t const n = ::write(descriptor(handle_), data + done, size - done);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) {
            int const error = errno;
            writes.fetch_add(1, std::memory_order_acq_rel);
            measure(done != 0 ? SEEK_CUR : SEEK_END);
            start_ = size_ - std::min<ulonglong>(done, size_);
            return error;
        }
        done += static_cast<std::size_t>(n);
        size_ += static_cast<std::size_t>(n);
    }
    // Another one's write in between leaves its mark.
    if (writes.fetch_add(1, std::memory_order_acq_rel) == writes_) ++writes_;
    return 0;
}

void AppendFile::truncate(char const *, ulonglong size) noexcept {
    if (::ftruncate(descriptor(handle_), static_cast<off_t>(size)) == 0) size_ = size;
}

void AppendFile::rest() noexcept {}

void AppendFile::close() noexcept {
    if (handle_ == closed) return;
    FileWatch::remove(std::exchange(watch_, -1));
    ::close(descriptor(handle_));
    handle_ = closed;
}

// An old file is removed first: where one file replaces another, some file systems write out all of the new one at
// once to be safe, and the logging threads would wait for that.
int moveFile(char const * from, char const * to) noexcept {
    if (::access(from, F_OK) == 0) ::unlink(to);
    if (std::rename(from, to) == 0) return 0;
    if (errno != EXDEV) return errno;
    try {
        std::error_code error;
        std::filesystem::copy_file(from, to, std::filesystem::copy_options::overwrite_existing, error);
        if (!error) std::filesystem::remove(from, error);
        return error.value();
    } catch (std::exception const &) {
        return ENOMEM;
    }
}

}  // namespace yon::platform
