#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "yon/platform/crash.h"

namespace yon::platform {

namespace {

constexpr mode_t permissions = S_IRUSR | S_IWUSR | S_IRGRP;
constexpr std::size_t maxPath = 4096;

int openNamed(char const * name) noexcept {
    return ::open(name, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOCTTY, permissions);
}

/// A file without a name in the directory where the named one is to be.
int openNameless(char const * name) noexcept {
    char directory[maxPath];
    char const * const slash = std::strrchr(name, '/');
    std::size_t const size = slash != nullptr ? static_cast<std::size_t>(slash - name) + 1 : 0;
    if (size >= maxPath) return -1;
    std::memcpy(directory, name, size);
    std::strcpy(directory + size, size == 0 ? "." : "");
    return ::open(directory, O_WRONLY | O_TMPFILE | O_CLOEXEC, permissions);
}

/// Gives an open file a name.
bool link(std::intptr_t fd, char const * name) noexcept {
    char self[64] = "/proc/self/fd/";
    char * p = self + std::strlen(self);
    char digits[20];
    int n = 0;
    do {
        digits[n++] = static_cast<char>('0' + fd % 10);
        fd /= 10;
    } while (fd != 0);
    while (n != 0) *p++ = digits[--n];
    ::unlink(name);
    return ::linkat(AT_FDCWD, self, AT_FDCWD, name, AT_SYMLINK_FOLLOW) == 0;
}

bool writeAll(int fd, char const * data, std::size_t size) noexcept {
    while (size != 0) {
        ssize_t const n = ::write(fd, data, size);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        data += n;
        size -= static_cast<std::size_t>(n);
    }
    return true;
}

}  // namespace

int CrashFile::prepare(char const * name) noexcept {
    abandon();
    name_ = name;
    handle_ = openNameless(name);
    if (handle_ >= 0) return 0;
    // The file system has no such files: all that can be done is to see whether one can be made.
    struct stat status;
    bool const existed = ::stat(name, &status) == 0;
    int const fd = ::open(name, O_WRONLY | O_CREAT | O_CLOEXEC | O_NOCTTY, permissions);
    if (fd < 0) return errno;
    ::close(fd);
    if (!existed) ::unlink(name);
    return 0;
}

void CrashFile::appear() noexcept {
    if (handle_ >= 0 && !link(handle_, name_)) {
        ::close(static_cast<int>(handle_));
        handle_ = -1;
    }
    if (handle_ < 0) handle_ = openNamed(name_);
    visible_ = true;
}

bool CrashFile::write(char const * data, std::size_t size) noexcept {
    if (name_ == nullptr) return false;
    if (!visible_) appear();
    return writeAll(static_cast<int>(handle_), data, size);
}

void CrashFile::abandon() noexcept {
    if (handle_ >= 0) ::close(static_cast<int>(handle_));
    handle_ = -1;
    visible_ = false;
    name_ = nullptr;
}

void CrashFile::rename(char const * name) noexcept {
    abandon();
    name_ = name;
}

}  // namespace yon::platform
