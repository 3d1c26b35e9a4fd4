#include "yon/platform/platform.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <memory>

namespace yon::platform {

namespace {

std::error_code systemError() { return {errno, std::generic_category()}; }

struct Free {
    void operator()(char * p) const noexcept { std::free(p); }
};

/// A new name is on the disk only with its directory. Some file systems cannot do that: then nothing can be done.
void flushDirectoryOf(std::string const & file) {
    std::size_t const slash = file.rfind('/');
    std::string const directory = slash == file.npos ? "." : file.substr(0, slash + 1);
    int const fd = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) return;
    ::fsync(fd);
    ::close(fd);
}

}  // namespace

std::error_code openRegular(std::string const & name, std::FILE *& file) {
    int const fd = ::open(name.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) return systemError();
    struct stat status;
    std::error_code error;
    if (::fstat(fd, &status) == 0 && !S_ISREG(status.st_mode)) {
        error = std::make_error_code(std::errc::operation_not_supported);
    } else if ((file = ::fdopen(fd, "rb")) == nullptr) {
        error = systemError();
    }
    if (error) ::close(fd);
    return error;
}

std::string linkTarget(std::string const & name) {
    std::unique_ptr<char, Free> const target(::realpath(name.c_str(), nullptr));
    return target ? target.get() : name;
}

std::error_code createLike(std::string const & name, std::string const & model, std::FILE *& file) {
    struct stat status;
    if (::stat(model.c_str(), &status) != 0 || ::access(model.c_str(), W_OK) != 0) return systemError();
    if (!S_ISREG(status.st_mode)) return std::make_error_code(std::errc::operation_not_supported);
    int const fd = ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (fd < 0) return systemError();
    // The owner first: giving a file away takes some permissions off.
    bool const owned = ::fchown(fd, status.st_uid, status.st_gid) == 0;
    mode_t const special = owned ? 0 : S_ISUID | S_ISGID;
    std::error_code error;
    if (::fchmod(fd, status.st_mode & 07777 & ~special) != 0 || (file = ::fdopen(fd, "wb")) == nullptr) {
        error = systemError();
        ::close(fd);
        ::unlink(name.c_str());
    }
    return error;
}

std::error_code flushToDisk(std::FILE * file) {
    return std::fflush(file) == 0 && ::fsync(::fileno(file)) == 0 ? std::error_code() : systemError();
}

std::error_code replaceFile(std::string const & from, std::string const & to) {
    if (::rename(from.c_str(), to.c_str()) != 0) return systemError();
    flushDirectoryOf(to);
    return {};
}

void setBinary(std::FILE *) {}

}  // namespace yon::platform
