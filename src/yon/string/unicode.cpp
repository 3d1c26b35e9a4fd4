#include "yon/string/unicode.h"

#include <ostream>

#include "yon/base/throw.h"
#include "yon/platform/platform.h"
#include "yon/string/utf.h"

namespace yon {

namespace {

char const * nameOf(ConversionResult result) noexcept {
    switch (result) {
        case ConversionResult::ok:
            return "ok";
        case ConversionResult::sourceExhausted:
            return "sourceExhausted";
        case ConversionResult::targetExhausted:
            return "targetExhausted";
        case ConversionResult::sourceIllegal:
            break;
    }
    return "sourceIllegal";
}

ConversionResult fromUtf8(istr s, wstring & out) {
    // No character takes more units than bytes.
    out.resize(s.size());
    char const * p = s.begin();
    wchar * end = out.data();
    ConversionResult const result = utf8ToUtf16(p, s.end(), end, out.data() + out.size());
    out.resize(static_cast<std::size_t>(end - out.data()));
    return result;
}

ConversionResult toUtf8(iwstr s, std::string & out) {
    wchar const * p = s.begin();
    std::size_t done = 0;
    // Room for plain ASCII first; what is more is known when that is used up.
    for (std::size_t room = s.size();; room = done + 3 * static_cast<std::size_t>(s.end() - p)) {
        out.resize(room);
        char * end = out.data() + done;
        ConversionResult const result = utf16ToUtf8(p, s.end(), end, out.data() + room);
        done = static_cast<std::size_t>(end - out.data());
        if (result != ConversionResult::targetExhausted) {
            out.resize(done);
            return result;
        }
    }
}

ConversionResult fromCodePage(istr s, wstring & out) {
    return platform::codePageIsUtf8() ? fromUtf8(s, out) : platform::codePageToWide(s, out);
}

ConversionResult toCodePage(iwstr s, std::string & out) {
    return platform::codePageIsUtf8() ? toUtf8(s, out) : platform::wideToCodePage(s, out);
}

}  // namespace

std::ostream & operator<<(std::ostream & os, ConversionResult result) { return os << nameOf(result); }

YON_EXCEPTION_DEFINE(UTFConversionException, "yon::UTFConversionException")

UTFConversionException::UTFConversionException(char const * file, unsigned int line, char const * func,
                                               ConversionResult result)
    : Exception(file, line, func, nameOf(result)), result_(result) {}

wstring ansiToWstring(istr s) {
    wstring out;
    if (auto const r = fromCodePage(s, out); r != ConversionResult::ok) YON_THROW(UTFConversionException, r);
    return out;
}

String wstringToAnsi(iwstr s) {
    String out;
    if (auto const r = toCodePage(s, out); r != ConversionResult::ok) YON_THROW(UTFConversionException, r);
    return out;
}

wstring utf8ToWstring(istr s) {
    wstring out;
    if (auto const r = fromUtf8(s, out); r != ConversionResult::ok) YON_THROW(UTFConversionException, r);
    return out;
}

String wstringToUtf8(iwstr s) {
    String out;
    if (auto const r = toUtf8(s, out); r != ConversionResult::ok) YON_THROW(UTFConversionException, r);
    return out;
}

String ansiToUtf8(istr s) {
    if (!platform::codePageIsUtf8()) return wstringToUtf8(ansiToWstring(s));
    if (auto const r = detail::checkUtf8(s); r != ConversionResult::ok) YON_THROW(UTFConversionException, r);
    return s;
}

String utf8ToAnsi(istr s) {
    if (!platform::codePageIsUtf8()) return wstringToAnsi(utf8ToWstring(s));
    if (auto const r = detail::checkUtf8(s); r != ConversionResult::ok) YON_THROW(UTFConversionException, r);
    return s;
}

void wstringToUtf8(iwstr s, Bytes & out) { out = istr(wstringToUtf8(s)); }

void ansiToUtf8(istr s, Bytes & out) {
    if (!platform::codePageIsUtf8()) {
        wstringToUtf8(ansiToWstring(s), out);
        return;
    }
    if (auto const r = detail::checkUtf8(s); r != ConversionResult::ok) YON_THROW(UTFConversionException, r);
    out = s;
}

}  // namespace yon
