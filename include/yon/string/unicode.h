// Conversions between the system code page, UTF-8 and UTF-16.
//
// "Ansi" is the system code page: CP_ACP on Windows, elsewhere the character set of the process's locale, and UTF-8
// when the program has set no locale. The library never sets one. Conversions are strict and complete, or they fail:
// nothing is left out or replaced, and over-long forms, surrogates on their own and values above 10FFFF hex are no
// characters. All functions are reentrant.
#pragma once

#include <iosfwd>

#include "yon/base/bytes.h"
#include "yon/base/conversion_result.h"
#include "yon/base/exception.h"
#include "yon/base/iwstr.h"
#include "yon/base/string.h"

namespace yon {

/// Writes the name, such as "sourceIllegal".
YON_API std::ostream & operator<<(std::ostream & os, ConversionResult result);

/// Text could not be converted. The message is the name of the result.
class YON_API UTFConversionException : public Exception {
public:
    UTFConversionException(char const * file, unsigned int line, char const * func, ConversionResult result);
    ConversionResult result() const noexcept { return result_; }
    YON_EXCEPTION_DECLARE

private:
    ConversionResult result_;
};

/// Whole texts. They raise `UTFConversionException`.
YON_API wstring ansiToWstring(istr s);
YON_API String wstringToAnsi(iwstr s);
YON_API wstring utf8ToWstring(istr s);
YON_API String wstringToUtf8(iwstr s);
YON_API String ansiToUtf8(istr s);
YON_API String utf8ToAnsi(istr s);

/// The same into `out`, whose content is replaced, or stays when they raise. `s` may be a part of `out`.
YON_API void wstringToUtf8(iwstr s, Bytes & out);
YON_API void ansiToUtf8(istr s, Bytes & out);

/// Convert piece by piece into the caller's room, raising nothing: until the source is used up, the target has no
/// room for the next character, or there is no next character. Both pointers are moved behind what was converted,
/// never into a character, so that the caller can go on with new room or with more of the source.
YON_API ConversionResult utf8ToUtf16(char const *& source, char const * sourceEnd, wchar *& target,
                                     wchar * targetEnd) noexcept;
YON_API ConversionResult utf16ToUtf8(wchar const *& source, wchar const * sourceEnd, char *& target,
                                     char * targetEnd) noexcept;

}  // namespace yon
