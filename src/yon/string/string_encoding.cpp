// The members of the string classes that convert between encodings.

#include <algorithm>
#include <ostream>

#include "yon/base/auto_ptr.h"
#include "yon/base/bytes.h"
#include "yon/base/iwstr.h"
#include "yon/base/string.h"
#include "yon/string/unicode.h"

namespace yon {

namespace {

template <class Char>
AutoPtr<Char> newCopy(Char const * s, std::size_t n) {
    AutoPtr<Char> copy(new Char[n + 1]);
    std::copy_n(s, n, copy.get());
    copy.get()[n] = Char();
    return copy;
}

template <class Text>
auto newCopy(Text const & s) {
    return newCopy(s.data(), s.size());
}

}  // namespace

String::String(wstring const & s) : std::string(wstringToAnsi(s)) {}

String::String(wchar const * s) : std::string(wstringToAnsi(s)) {}

String & String::operator=(wstring const & s) { return *this = wstringToAnsi(s); }

String & String::operator=(wchar const * s) { return *this = wstringToAnsi(s); }

String & String::operator+=(wstring const & s) { return *this += wstringToAnsi(s); }

String & String::operator+=(wchar const * s) { return *this += wstringToAnsi(s); }

String::operator wstring() const { return ansiToWstring(*this); }

String & String::utf8ToAnsi(istr const & s) { return *this = yon::utf8ToAnsi(s); }

void String::ansiToUtf8(Bytes & out) const { yon::ansiToUtf8(*this, out); }

std::ostream & iwstr::dump(std::ostream & os) const { return os << std::to_string(size()) << ", " << *this; }

std::ostream & operator<<(std::ostream & os, iwstr const & s) { return os << istr(wstringToAnsi(s)); }

AutoPtr<char> to_str(char const * s) { return s == nullptr ? AutoPtr<char>() : newCopy(istr(s)); }

AutoPtr<char> to_str(wchar const * s) { return s == nullptr ? AutoPtr<char>() : newCopy(wstringToAnsi(s)); }

AutoPtr<wchar> to_wstr(char const * s) { return s == nullptr ? AutoPtr<wchar>() : newCopy(ansiToWstring(s)); }

AutoPtr<wchar> to_wstr(wchar const * s) { return s == nullptr ? AutoPtr<wchar>() : newCopy(iwstr(s)); }

}  // namespace yon
