#include <windows.h>

#include "yon/platform/crash.h"
#include "yon/platform/win32/wide_name.h"

namespace yon::platform {

namespace {

constinit wchar_t fileName[32768] = L"";
HANDLE file = INVALID_HANDLE_VALUE;
constinit bool visible = false;

HANDLE open(DWORD disposition) noexcept {
    return ::CreateFileW(fileName, GENERIC_WRITE | DELETE, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr, disposition,
                         FILE_ATTRIBUTE_NORMAL, nullptr);
}

/// While a file is marked, nobody else can open it, and it vanishes when it is closed, whoever ends the process.
void markForRemoval(bool marked) noexcept {
    FILE_DISPOSITION_INFO info;
    info.DeleteFile = marked;
    ::SetFileInformationByHandle(file, FileDispositionInfo, &info, sizeof info);
}

void appear() noexcept {
    visible = true;
    if (file == INVALID_HANDLE_VALUE) {
        file = open(CREATE_ALWAYS);
    } else {
        markForRemoval(false);
        ::SetEndOfFile(file);
    }
}

}  // namespace

int prepareCrashFile(std::string const & name) noexcept {
    closeCrashFile();
    DWORD const room = sizeof fileName / sizeof *fileName;
    DWORD const size = ::GetFullPathNameW(WideName(name.c_str()).get(), room, fileName, nullptr);
    if (size == 0 || size >= room) {
        fileName[0] = L'\0';
        return size == 0 ? static_cast<int>(::GetLastError()) : ERROR_FILENAME_EXCED_RANGE;
    }
    file = open(CREATE_NEW);
    if (file != INVALID_HANDLE_VALUE) {
        markForRemoval(true);
        return 0;
    }
    // An earlier report stays until it is replaced.
    file = open(OPEN_EXISTING);
    return file != INVALID_HANDLE_VALUE ? 0 : static_cast<int>(::GetLastError());
}

bool writeCrashFile(char const * data, std::size_t size) noexcept {
    if (fileName[0] == L'\0') return false;
    if (!visible) appear();
    DWORD written = 0;
    return ::WriteFile(file, data, static_cast<DWORD>(size), &written, nullptr) && written == size;
}

void closeCrashFile() noexcept {
    if (file != INVALID_HANDLE_VALUE) ::CloseHandle(file);
    file = INVALID_HANDLE_VALUE;
    visible = false;
    fileName[0] = L'\0';
}

void leaveCrashFile() noexcept {}

}  // namespace yon::platform
