#include "yon/platform/append_file.h"

#include <windows.h>

#include "yon/platform/win32/wide_name.h"

namespace yon::platform {

namespace {

constexpr DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

HANDLE native(std::intptr_t handle) noexcept { return reinterpret_cast<HANDLE>(handle); }

int lastFailure() noexcept { return static_cast<int>(::GetLastError()); }

}  // namespace

int AppendFile::open(char const * name) noexcept {
    close();
    HANDLE const file = ::CreateFileW(WideName(name).get(), FILE_APPEND_DATA | FILE_READ_ATTRIBUTES | SYNCHRONIZE,
                                      shareAll, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return lastFailure();
    handle_ = reinterpret_cast<std::intptr_t>(file);
    LARGE_INTEGER size;
    // What is no regular file has no size.
    size_ = ::GetFileSizeEx(file, &size) ? static_cast<ulonglong>(size.QuadPart) : 0;
    return 0;
}

int AppendFile::write(char const * data, std::size_t size) noexcept {
    constexpr std::size_t most = 1u << 30;
    start_ = size_;
    while (size != 0) {
        DWORD written = 0;
        auto const part = static_cast<DWORD>(size < most ? size : most);
        if (!::WriteFile(native(handle_), data, part, &written, nullptr)) return lastFailure();
        if (written == 0) return ERROR_DISK_FULL;
        data += written;
        size -= written;
        size_ += written;
    }
    return 0;
}

// The right to append is not enough for this.
void AppendFile::truncate(char const * name, ulonglong size) noexcept {
    HANDLE const file = ::CreateFileW(WideName(name).get(), GENERIC_WRITE, shareAll, nullptr, OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return;
    LARGE_INTEGER end;
    end.QuadPart = static_cast<LONGLONG>(size);
    if (::SetFilePointerEx(file, end, nullptr, FILE_BEGIN) && ::SetEndOfFile(file)) size_ = size;
    ::CloseHandle(file);
}

void AppendFile::rest() noexcept { close(); }

void AppendFile::close() noexcept {
    if (handle_ != closed) ::CloseHandle(native(handle_));
    handle_ = closed;
}

int moveFile(char const * from, char const * to) noexcept {
    DWORD const flags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_COPY_ALLOWED;
    return ::MoveFileExW(WideName(from).get(), WideName(to).get(), flags) ? 0 : lastFailure();
}

}  // namespace yon::platform
