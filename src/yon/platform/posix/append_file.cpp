#include "yon/platform/append_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>

namespace yon::platform {

namespace {

constexpr mode_t permissions = 0666;

int descriptor(std::intptr_t handle) noexcept { return static_cast<int>(handle); }

}  // namespace

int AppendFile::open(char const * name) noexcept {
    struct stat status;
    bool const same =
        handle_ != closed && ::stat(name, &status) == 0 && status.st_dev == volume_ && status.st_ino == file_;
    if (!same) {
        close();
        handle_ = ::open(name, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY, permissions);
        if (handle_ == closed || ::fstat(descriptor(handle_), &status) != 0) return errno;
        volume_ = status.st_dev;
        file_ = status.st_ino;
    }
    // What is no regular file has no size.
    size_ = S_ISREG(status.st_mode) ? static_cast<ulonglong>(status.st_size) : 0;
    return 0;
}

int AppendFile::write(char const * data, std::size_t size) noexcept {
    while (size != 0) {
        ssize_t const n = ::write(descriptor(handle_), data, size);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) return errno;
        data += n;
        size -= static_cast<std::size_t>(n);
        size_ += static_cast<std::size_t>(n);
    }
    return 0;
}

void AppendFile::truncate(char const *, ulonglong size) noexcept {
    if (::ftruncate(descriptor(handle_), static_cast<off_t>(size)) == 0) size_ = size;
}

void AppendFile::rest() noexcept {}

void AppendFile::close() noexcept {
    if (handle_ != closed) ::close(descriptor(handle_));
    handle_ = closed;
}

int moveFile(char const * from, char const * to) noexcept {
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
