#include <windows.h>

#include "yon/platform/platform.h"

namespace yon::platform {

namespace {

/// The number of UTF-16 units, or 0 when `s` is empty or not valid.
int wideSize(istr s) noexcept {
    return MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, s.data(), static_cast<int>(s.size()), nullptr, 0);
}

bool endsWithinCharacter(istr s) noexcept {
    if (IsDBCSLeadByte(static_cast<BYTE>(s[s.size() - 1])) == FALSE) return false;
    return s.size() == 1 || wideSize(s.removeRight(1)) != 0;
}

}  // namespace

bool codePageIsUtf8() noexcept {
    // The code page of a process does not change.
    static bool const utf8 = GetACP() == CP_UTF8;
    return utf8;
}

ConversionResult codePageToWide(istr s, wstring & out) {
    if (s.empty()) return ConversionResult::ok;
    int const size = wideSize(s);
    if (size == 0)
        return endsWithinCharacter(s) ? ConversionResult::sourceExhausted : ConversionResult::sourceIllegal;
    std::size_t const start = out.size();
    out.resize(start + static_cast<std::size_t>(size));
    MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, s.data(), static_cast<int>(s.size()), &out[start], size);
    return ConversionResult::ok;
}

ConversionResult wideToCodePage(iwstr s, std::string & out) {
    if (s.empty()) return ConversionResult::ok;
    BOOL replaced = FALSE;
    auto const convert = [s, &replaced](char * room, int size) {
        return WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, s.data(), static_cast<int>(s.size()), room, size,
                                   nullptr, &replaced);
    };
    int const size = convert(nullptr, 0);
    if (size == 0 || replaced != FALSE) {
        bool const cut = IS_HIGH_SURROGATE(s[s.size() - 1]);
        return cut ? ConversionResult::sourceExhausted : ConversionResult::sourceIllegal;
    }
    std::size_t const start = out.size();
    out.resize(start + static_cast<std::size_t>(size));
    convert(&out[start], size);
    return ConversionResult::ok;
}

}  // namespace yon::platform
