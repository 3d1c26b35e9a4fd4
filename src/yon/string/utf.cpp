// UTF-8 and UTF-16, as chapter 3 of the Unicode standard defines them (tables 3-5 to 3-7).

#include "yon/string/utf.h"

#include <bit>
#include <cstdint>

#include "yon/string/unicode.h"

namespace yon {

namespace {

using Byte8 = unsigned char;

constexpr bool isContinuation(Byte8 b) noexcept { return (b & 0xC0) == 0x80; }
constexpr bool isSurrogate(char32_t c) noexcept { return (c & 0xFFFFF800) == 0xD800; }
constexpr bool isHighSurrogate(char32_t c) noexcept { return (c & 0xFFFFFC00) == 0xD800; }
constexpr bool isLowSurrogate(char32_t c) noexcept { return (c & 0xFFFFFC00) == 0xDC00; }

/// A character and the units that it takes in its source; without units there is none.
struct Decoded {
    char32_t code;
    unsigned units;
};

/// The character beyond ASCII at `p`. REQUIRES: `p != end`, a first byte of 80 hex or above.
Decoded decode(char const * p, char const * end) noexcept {
    auto const byte = [p](int i) { return static_cast<Byte8>(p[i]); };
    auto const bits = [byte](int i) { return static_cast<char32_t>(byte(i) & 0x3F); };
    std::ptrdiff_t const left = end - p;
    Byte8 const first = byte(0);
    if (first < 0xE0) {
        if (first < 0xC2 || left < 2 || !isContinuation(byte(1))) return {};
        return {static_cast<char32_t>(first & 0x1F) << 6 | bits(1), 2};
    }
    if (first < 0xF0) {
        if (left < 3 || !isContinuation(byte(1)) || !isContinuation(byte(2))) return {};
        char32_t const code = static_cast<char32_t>(first & 0x0F) << 12 | bits(1) << 6 | bits(2);
        return code < 0x800 || isSurrogate(code) ? Decoded{} : Decoded{code, 3};
    }
    if (left < 4 || !isContinuation(byte(1)) || !isContinuation(byte(2)) || !isContinuation(byte(3))) return {};
    char32_t const code = static_cast<char32_t>(first & 0x0F) << 18 | bits(1) << 12 | bits(2) << 6 | bits(3);
    return first > 0xF4 || code < 0x10000 || code > 0x10FFFF ? Decoded{} : Decoded{code, 4};
}

/// Why there is no character at `p`: is the text the beginning of one? REQUIRES: as `decode`, which found none.
ConversionResult reason(char const * p, char const * end) noexcept {
    Byte8 const first = static_cast<Byte8>(*p);
    if (first < 0xC2 || first > 0xF4) return ConversionResult::sourceIllegal;
    std::ptrdiff_t const size = first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    if (end - p >= size) return ConversionResult::sourceIllegal;
    if (end - p > 1) {
        // The second byte is limited by the first one.
        Byte8 const least = first == 0xE0 ? 0xA0 : first == 0xF0 ? 0x90 : 0x80;
        Byte8 const greatest = first == 0xED ? 0x9F : first == 0xF4 ? 0x8F : 0xBF;
        Byte8 const second = static_cast<Byte8>(p[1]);
        if (second < least || second > greatest) return ConversionResult::sourceIllegal;
    }
    bool const legal = end - p < 3 || isContinuation(static_cast<Byte8>(p[2]));
    return legal ? ConversionResult::sourceExhausted : ConversionResult::sourceIllegal;
}

/// How many of the eight bytes at `p` are ASCII, from the first one on.
std::ptrdiff_t asciiRun(char const * p) noexcept {
    std::uint64_t word;
    std::memcpy(&word, p, sizeof word);
    word &= 0x8080808080808080;
    return (std::endian::native == std::endian::little ? std::countr_zero(word) : std::countl_zero(word)) / 8;
}

/// Whether all of the eight units at `p` are ASCII.
bool isAscii8(wchar const * p) noexcept {
    std::uint64_t words[2];
    std::memcpy(words, p, sizeof words);
    return ((words[0] | words[1]) & 0xFF80FF80FF80FF80) == 0;
}

/// Moves eight characters; both sides have room for them.
template <class From, class To>
void copy8(From const * from, To * to) noexcept {
    for (int i = 0; i < 8; ++i) to[i] = static_cast<To>(from[i]);
}

wchar * put(char32_t code, wchar * p) noexcept {
    if (code < 0x10000) {
        *p = static_cast<wchar>(code);
        return p + 1;
    }
    p[0] = static_cast<wchar>(0xD7C0 + (code >> 10));
    p[1] = static_cast<wchar>(0xDC00 | (code & 0x3FF));
    return p + 2;
}

constexpr int utf8Size(char32_t code) noexcept { return code < 0x80 ? 1 : code < 0x800 ? 2 : code < 0x10000 ? 3 : 4; }

char * put(char32_t code, int size, char * p) noexcept {
    static constexpr Byte8 marks[] = {0, 0, 0xC0, 0xE0, 0xF0};
    for (int i = size - 1; i > 0; --i, code >>= 6) p[i] = static_cast<char>(0x80 | (code & 0x3F));
    p[0] = static_cast<char>(marks[size] | code);
    return p + size;
}

}  // namespace

ConversionResult utf8ToUtf16(char const *& source, char const * sourceEnd, wchar *& target,
                             wchar * targetEnd) noexcept {
    char const * p = source;
    wchar * out = target;
    ConversionResult result = ConversionResult::ok;
    while (p != sourceEnd) {
        Byte8 const first = static_cast<Byte8>(*p);
        if (first < 0x80 && sourceEnd - p >= 8 && targetEnd - out >= 8) {
            // All eight, and what is not ASCII is overwritten next.
            copy8(reinterpret_cast<Byte8 const *>(p), out);
            std::ptrdiff_t const run = asciiRun(p);
            p += run;
            out += run;
            continue;
        }
        Decoded const next = first < 0x80 ? Decoded{first, 1} : decode(p, sourceEnd);
        if (next.units == 0) {
            result = reason(p, sourceEnd);
            break;
        }
        if (targetEnd - out < (next.code < 0x10000 ? 1 : 2)) {
            result = ConversionResult::targetExhausted;
            break;
        }
        p += next.units;
        out = put(next.code, out);
    }
    source = p;
    target = out;
    return result;
}

ConversionResult utf16ToUtf8(wchar const *& source, wchar const * sourceEnd, char *& target,
                             char * targetEnd) noexcept {
    wchar const * p = source;
    char * out = target;
    ConversionResult result = ConversionResult::ok;
    while (p != sourceEnd) {
        if (sourceEnd - p >= 8 && targetEnd - out >= 8 && isAscii8(p)) {
            copy8(p, out);
            p += 8;
            out += 8;
            continue;
        }
        char32_t code = *p;
        int const units = isHighSurrogate(code) ? 2 : 1;
        if (isLowSurrogate(code) || (units == 2 && sourceEnd - p >= 2 && !isLowSurrogate(p[1]))) {
            result = ConversionResult::sourceIllegal;
            break;
        }
        if (sourceEnd - p < units) {
            result = ConversionResult::sourceExhausted;
            break;
        }
        if (units == 2) code = 0x10000 + ((code & 0x3FF) << 10 | (p[1] & 0x3FFu));
        int const size = utf8Size(code);
        if (targetEnd - out < size) {
            result = ConversionResult::targetExhausted;
            break;
        }
        p += units;
        out = put(code, size, out);
    }
    source = p;
    target = out;
    return result;
}

ConversionResult detail::checkUtf8(istr s) noexcept {
    char const * p = s.begin();
    char const * const end = s.end();
    while (p != end) {
        bool const ascii = static_cast<Byte8>(*p) < 0x80;
        if (ascii && end - p >= 8) {
            p += asciiRun(p);
            continue;
        }
        unsigned const units = ascii ? 1 : decode(p, end).units;
        if (units == 0) return reason(p, end);
        p += units;
    }
    return ConversionResult::ok;
}

}  // namespace yon
