#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "yon/platform/crash.h"
#include "yon/platform/posix/write_all.h"

namespace yon::platform {

namespace {

constexpr mode_t permissions = S_IRUSR | S_IWUSR | S_IRGRP;
constexpr int none = -1;

constinit char fileName[4096] = "";
constinit int file = none;
constinit bool visible = false;

/// Room for a number and its NUL.
using Digits = char[24];

/// Writes a number to the end of the room; returns where it begins.
char * decimal(Digits & room, unsigned long value) noexcept {
    char * p = room + sizeof room - 1;
    *p = '\0';
    do {
        *--p = static_cast<char>('0' + value % 10);
        value /= 10;
    } while (value != 0);
    return p;
}

/// Sets the name, in an absolute form.
bool setName(std::string const & name) noexcept {
    std::size_t size = 0;
    if (name.empty() || name.front() != '/') {
        if (::getcwd(fileName, sizeof fileName) == nullptr) return false;
        size = std::strlen(fileName);
        fileName[size++] = '/';
    }
    // Forked processes add their number.
    if (size + name.size() + sizeof(Digits) > sizeof fileName) {
        fileName[0] = '\0';
        errno = ENAMETOOLONG;
        return false;
    }
    std::memcpy(fileName + size, name.c_str(), name.size() + 1);
    return true;
}

/// Whether a new file may take the place of what has the name now: of a device it may not.
bool replaceable() noexcept {
    struct stat status;
    return ::lstat(fileName, &status) != 0 || S_ISREG(status.st_mode);
}

/// A file without a name in the directory where the named one is to be.
int openNameless() noexcept {
    if (!replaceable()) return none;
    char * const end = std::strrchr(fileName, '/') + 1;
    char const first = *end;
    *end = '\0';
    int const fd = ::open(fileName, O_WRONLY | O_TMPFILE | O_CLOEXEC, permissions);
    *end = first;
    return fd;
}

/// What can be done where there is no nameless file: to see whether the named one can be opened.
int tryOut() noexcept {
    bool const existed = ::access(fileName, F_OK) == 0;
    int const fd = ::open(fileName, O_WRONLY | O_CREAT | O_CLOEXEC | O_NOCTTY, permissions);
    if (fd < 0) return errno;
    ::close(fd);
    if (!existed) ::unlink(fileName);
    return 0;
}

/// Gives the nameless file its name.
bool link() noexcept {
    char self[64] = "/proc/self/fd/";
    Digits room;
    std::strcat(self, decimal(room, static_cast<unsigned long>(file)));
    ::unlink(fileName);
    return ::linkat(AT_FDCWD, self, AT_FDCWD, fileName, AT_SYMLINK_FOLLOW) == 0;
}

void appear() noexcept {
    visible = true;
    if (file != none && replaceable() && link()) return;
    if (file != none) ::close(file);
    file = ::open(fileName, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOCTTY, permissions);
}

}  // namespace

int prepareCrashFile(std::string const & name) noexcept {
    closeCrashFile();
    if (!setName(name)) return errno;
    file = openNameless();
    return file != none ? 0 : tryOut();
}

bool writeCrashFile(char const * data, std::size_t size) noexcept {
    if (fileName[0] == '\0') return false;
    if (!visible) appear();
    return writeAll(file, data, size);
}

void closeCrashFile() noexcept {
    if (file != none) ::close(file);
    file = none;
    visible = false;
    fileName[0] = '\0';
}

void leaveCrashFile() noexcept {
    if (file != none) ::close(file);
    file = none;
    visible = false;
    if (fileName[0] == '\0') return;
    Digits room;
    std::strcat(fileName, ".");
    std::strcat(fileName, decimal(room, static_cast<unsigned long>(::getpid())));
}

}  // namespace yon::platform
