#include "yon/platform/platform.h"

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#include <windows.h>

#include <cerrno>

namespace yon::platform {

namespace {

std::error_code cError() { return {errno, std::generic_category()}; }
std::error_code systemError() { return {static_cast<int>(::GetLastError()), std::system_category()}; }

}  // namespace

std::error_code openRegular(std::string const & name, std::FILE *& file) {
    DWORD const attributes = ::GetFileAttributesA(name.c_str());
    auto const irregular = std::make_error_code(std::errc::operation_not_supported);
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return irregular;
    int const fd = ::_open(name.c_str(), _O_RDONLY | _O_BINARY | _O_NOINHERIT);
    if (fd < 0) return cError();
    std::error_code error;
    if (::GetFileType(reinterpret_cast<HANDLE>(::_get_osfhandle(fd))) != FILE_TYPE_DISK) {
        error = irregular;
    } else if ((file = ::_fdopen(fd, "rb")) == nullptr) {
        error = cError();
    }
    if (error) ::_close(fd);
    return error;
}

std::string linkTarget(std::string const & name) {
    DWORD const share = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    HANDLE const file = ::CreateFileA(name.c_str(), 0, share, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return name;
    std::string target(MAX_PATH, '\0');
    DWORD size = ::GetFinalPathNameByHandleA(file, target.data(), MAX_PATH, 0);
    if (size > MAX_PATH) {
        target.resize(size);
        size = ::GetFinalPathNameByHandleA(file, target.data(), size, 0);
    }
    ::CloseHandle(file);
    if (size == 0 || size > target.size()) return name;
    target.resize(size);
    return target;
}

std::error_code createLike(std::string const & name, std::string const & model, std::FILE *& file) {
    if (::_access(model.c_str(), 2) != 0) return cError();  // which a file that is read-only does not allow
    int const fd =
        ::_open(name.c_str(), _O_WRONLY | _O_CREAT | _O_EXCL | _O_BINARY | _O_NOINHERIT, _S_IREAD | _S_IWRITE);
    if (fd < 0) return cError();
    file = ::_fdopen(fd, "wb");
    if (file != nullptr) return {};
    std::error_code const error = cError();
    ::_close(fd);
    ::_unlink(name.c_str());
    return error;
}

std::error_code flushToDisk(std::FILE * file) {
    return std::fflush(file) == 0 && ::_commit(::_fileno(file)) == 0 ? std::error_code() : cError();
}

std::error_code replaceFile(std::string const & from, std::string const & to) {
    // The attributes (hidden, system and the like) move with the name.
    DWORD const attributes = ::GetFileAttributesA(to.c_str());
    if (!::MoveFileExA(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
        return systemError();
    if (attributes != INVALID_FILE_ATTRIBUTES) ::SetFileAttributesA(to.c_str(), attributes);
    return {};
}

void setBinary(std::FILE * file) { ::_setmode(::_fileno(file), _O_BINARY); }

}  // namespace yon::platform
