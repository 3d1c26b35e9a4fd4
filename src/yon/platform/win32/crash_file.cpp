#include <windows.h>

#include "yon/platform/crash.h"

namespace yon::platform {

namespace {

constexpr std::intptr_t none = -1;

HANDLE handleOf(std::intptr_t h) noexcept { return reinterpret_cast<HANDLE>(h); }

std::intptr_t open(char const * name, DWORD disposition) noexcept {
    return reinterpret_cast<std::intptr_t>(::CreateFileA(name, GENERIC_WRITE | DELETE, FILE_SHARE_READ | FILE_SHARE_DELETE,
                                                         nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr));
}

/// While a file is marked, nobody else can open it, and it vanishes when it is closed, whoever ends the process.
void markForRemoval(std::intptr_t handle, bool marked) noexcept {
    FILE_DISPOSITION_INFO info;
    info.DeleteFile = marked;
    ::SetFileInformationByHandle(handleOf(handle), FileDispositionInfo, &info, sizeof info);
}

}  // namespace

int CrashFile::prepare(char const * name) noexcept {
    abandon();
    name_ = name;
    handle_ = open(name, CREATE_NEW);
    if (handle_ != none) {
        markForRemoval(handle_, true);
        return 0;
    }
    // An earlier report stays until it is replaced.
    handle_ = open(name, OPEN_EXISTING);
    return handle_ != none ? 0 : static_cast<int>(::GetLastError());
}

void CrashFile::appear() noexcept {
    if (handle_ == none) handle_ = open(name_, CREATE_ALWAYS);
    markForRemoval(handle_, false);
    ::SetEndOfFile(handleOf(handle_));
    visible_ = true;
}

bool CrashFile::write(char const * data, std::size_t size) noexcept {
    if (name_ == nullptr) return false;
    if (!visible_) appear();
    DWORD written = 0;
    return ::WriteFile(handleOf(handle_), data, static_cast<DWORD>(size), &written, nullptr) && written == size;
}

void CrashFile::abandon() noexcept {
    if (handle_ != none) ::CloseHandle(handleOf(handle_));
    handle_ = none;
    visible_ = false;
    name_ = nullptr;
}

void CrashFile::rename(char const * name) noexcept {
    abandon();
    name_ = name;
}

}  // namespace yon::platform
