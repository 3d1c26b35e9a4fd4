#include "yon/base/chars.h"

#include <algorithm>
#include <ostream>

#include "yon/base/throw.h"

namespace yon {

namespace {

constexpr char const * controlNames[32] = {
    "<NUL>", "^A", "^B", "^C", "^D", "^E", "^F", "^G", "<BS>", "<HT>", "<LF>", "<VT>",  "<FF>", "<CR>", "^N", "^O",
    "^P",    "^Q", "^R", "^S", "^T", "^U", "^V", "^W", "^X",   "^Y",   "^Z",   "<ESC>", "^\\",  "^]",   "^^", "^_",
};

unsigned char upper(char c) noexcept { return static_cast<unsigned char>(CharToUpper(c)); }

int compareNoCase(char const * a, char const * b, ulong n) noexcept {
    // The count comes first: views have no terminator behind their last character.
    for (; n != 0; ++a, ++b, --n) {
        if (*a == '\0' || *b == '\0') return static_cast<unsigned char>(*a) - static_cast<unsigned char>(*b);
        if (int const r = upper(*a) - upper(*b); r != 0) return r;
    }
    return 0;
}

bool isEmpty(char const * s) noexcept { return s == nullptr || *s == '\0'; }

char * convert(char * s, ulong n, char (*to)(char) noexcept) noexcept {
    if (s == nullptr) return nullptr;
    for (char * p = s; n != 0 && *p != '\0'; ++p, --n) *p = to(*p);
    return s;
}

template <class Char>
Char & checkedAt(Char * s, ulong size, ulong i, diagnostics::Location const & where) {
    if (s == nullptr || i > size) YON_THROW_AT(where, yon::OutOfRangeException);
    return s[i];
}

}  // namespace

void * MemCopyZ(void * dst, void const * src, ulong n) noexcept {
    if (dst == nullptr || dst == src) return dst;
    ulong const length = src != nullptr ? n : 0;
    MemCopy(dst, src, length);
    static_cast<char *>(dst)[length] = '\0';
    return dst;
}

unsigned char HexFromChar(char c) noexcept {
    if (c >= '0' && c <= '9') return static_cast<unsigned char>(c - '0');
    if (c >= 'A' && c <= 'F') return static_cast<unsigned char>(c - 'A' + 10);
    if (c >= 'a' && c <= 'f') return static_cast<unsigned char>(c - 'a' + 10);
    return 255;
}

char * StrCopy(char * dst, char const * src, ulong n) noexcept {
    if (dst == nullptr || dst == src) return dst;
    ulong const length = StrLenN(src, n);
    ulong const room = src == nullptr || n == npos ? length : n;
    MemCopy(dst, src, length);
    std::memset(dst + length, 0, std::size_t{room} - length + 1);
    return dst;
}

char * StrCat(char * dst, char const * src, ulong n) noexcept {
    if (dst == nullptr || src == nullptr || n == 0) return dst;
    ulong const length = StrLenN(src, n);
    char * const end = dst + std::strlen(dst);
    MemCopy(end, src, length);
    end[length] = '\0';
    return dst;
}

int StrCmp(char const * a, char const * b, ulong n, bool noCase) noexcept {
    if (a == b || n == 0) return 0;
    if (isEmpty(a) || isEmpty(b)) return isEmpty(b) - isEmpty(a);
    return StrCmpUnsafe(a, b, n, noCase);
}

int StrCmp(istr a, istr b, ulong n, bool noCase) noexcept {
    if (a.data() == b.data() || n == 0) return 0;
    if (a.empty() || b.empty()) return b.empty() - a.empty();
    ulong const sizeA = std::min(a.size(), n);
    ulong const sizeB = std::min(b.size(), n);
    int const r = StrCmpUnsafe(a.data(), b.data(), std::min(sizeA, sizeB), noCase);
    return r != 0 ? r : static_cast<int>(sizeA - sizeB);
}

int StrCmpUnsafe(char const * a, char const * b, ulong n, bool noCase) noexcept {
    if (noCase) return compareNoCase(a, b, n);
    if (n != npos) return std::strncmp(a, b, n);
    int const r = std::strcmp(a, b);
    return (r > 0) - (r < 0);
}

char * StrToUpper(char * s, ulong n) noexcept { return convert(s, n, CharToUpper); }

char * StrToLower(char * s, ulong n) noexcept { return convert(s, n, CharToLower); }

bool StrIsAllDigits(char const * s) noexcept {
    if (isEmpty(s)) return false;
    while (CharIsDigit(*s)) ++s;
    return *s == '\0';
}

void StrTrimRight(String & s) {
    while (!s.empty() && CharIsSpace(s.back())) s.pop_back();
}

bool StrBeginWith(char const * s, istr prefix) noexcept { return StrCmp(s, prefix.data(), prefix.size()) == 0; }

char const & CharAt(char const * s, ulong size, ulong i) noexcept {
    static constexpr char terminator = '\0';
    return s != nullptr && i <= size ? s[i] : terminator;
}

unsigned char const & CharAt(unsigned char const * s, ulong size, ulong i) noexcept {
    static constexpr unsigned char terminator = '\0';
    return s != nullptr && i <= size ? s[i] : terminator;
}

char & CharAt(char * s, ulong size, ulong i) { return checkedAt(s, size, i, YON_HERE); }

unsigned char & CharAt(unsigned char * s, ulong size, ulong i) { return checkedAt(s, size, i, YON_HERE); }

std::ostream & Print(std::ostream & os, char c) {
    auto const code = static_cast<unsigned char>(c);
    if (code < 32) return os << controlNames[code];
    if (CharIsPrint(c)) return os << c;
    char const octal[] = {'\\', static_cast<char>('0' + (code >> 6)), static_cast<char>('0' + (code >> 3 & 7)),
                          static_cast<char>('0' + (code & 7)), '\0'};
    return os << octal << std::dec;
}

std::ostream & Print(std::ostream & os, char const * s) { return os << SafeStr(s); }

}  // namespace yon
