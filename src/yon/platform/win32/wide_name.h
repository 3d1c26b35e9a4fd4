// `WideName`: a file name in the form that Windows takes.
#pragma once

#include <windows.h>

#include <cstring>
#include <memory>
#include <new>

namespace yon::platform {

/// Made from UTF-8 or, where the name is no UTF-8, from the code page. Names of usual length need no memory, so that
/// the last words of a crashing process can be written.
class WideName {
public:
    explicit WideName(char const * name) noexcept {
        if (!convert(CP_UTF8, MB_ERR_INVALID_CHARS, name)) convert(CP_ACP, 0, name);
    }
    wchar_t const * get() const noexcept { return long_ ? long_.get() : short_; }

private:
    bool convert(UINT codePage, DWORD flags, char const * name) noexcept {
        if (::MultiByteToWideChar(codePage, flags, name, -1, short_, capacity) != 0) return true;
        if (::GetLastError() != ERROR_INSUFFICIENT_BUFFER) return false;
        int const size = static_cast<int>(std::strlen(name)) + 1;
        long_.reset(new (std::nothrow) wchar_t[static_cast<std::size_t>(size)]());
        return long_ && ::MultiByteToWideChar(codePage, flags, name, -1, long_.get(), size) != 0;
    }

    static constexpr int capacity = 512;
    wchar_t short_[capacity] = {};
    std::unique_ptr<wchar_t[]> long_;
};

}  // namespace yon::platform
