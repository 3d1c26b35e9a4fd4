#include "yon/string/base64.h"

#include <array>
#include <cstdint>
#include <new>
#include <stdexcept>

namespace yon {

namespace {

constexpr char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

/// Two characters for each twelve bits.
constexpr auto pairs = [] {
    std::array<std::array<char, 2>, 4096> t{};
    for (std::size_t i = 0; i < t.size(); ++i) t[i] = {alphabet[i >> 6], alphabet[i & 63]};
    return t;
}();

/// In a word of a group: some character is no letter of the alphabet.
constexpr std::uint32_t bad = 1u << 31;

/// For each place in a group of four and each character: its six bits where they belong in the word, or `bad`.
constexpr auto words = [] {
    std::array<std::array<std::uint32_t, 256>, 4> t{};
    for (auto & place : t) place.fill(bad);
    for (std::uint32_t place = 0; place < 4; ++place) {
        for (std::uint32_t v = 0; v < 64; ++v)
            t[place][static_cast<unsigned char>(alphabet[v])] = v << (18 - 6 * place);
    }
    return t;
}();

std::uint32_t wordOf(char const * group) noexcept {
    auto const at = [group](std::size_t i) { return words[i][static_cast<unsigned char>(group[i])]; };
    return at(0) | at(1) | at(2) | at(3);
}

void put(unsigned char *& out, std::uint32_t word, int count) noexcept {
    for (int shift = 16; count > 0; --count, shift -= 8) *out++ = static_cast<unsigned char>(word >> shift);
}

constexpr bool isBlank(char c) noexcept { return c == ' ' || (c >= '\t' && c <= '\r'); }

char const * skipBlanks(char const * p, char const * end) noexcept {
    while (p != end && isBlank(*p)) ++p;
    return p;
}

/// Takes the next four characters that are no blanks; returns how many there were.
int takeGroup(char const *& p, char const * end, char (&group)[4]) noexcept {
    int n = 0;
    for (p = skipBlanks(p, end); p != end && n < 4; p = skipBlanks(p, end)) group[n++] = *p++;
    return n;
}

/// Decodes a last group with padding.
bool putPadded(unsigned char *& out, char (&group)[4]) noexcept {
    if (group[3] != '=') return false;
    int const padding = group[2] == '=' ? 2 : 1;
    for (int i = 4 - padding; i < 4; ++i) group[i] = alphabet[0];
    std::uint32_t const word = wordOf(group);
    std::uint32_t const leftOver = (1u << 8 * padding) - 1;
    if ((word & (bad | leftOver)) != 0) return false;
    put(out, word, 3 - padding);
    return true;
}

/// Decodes all and moves `out` behind the bytes; false when the text is not valid.
bool decodeAll(char const * p, char const * end, unsigned char *& out) noexcept {
    for (;;) {
        for (; end - p >= 4; p += 4) {
            std::uint32_t const word = wordOf(p);
            if ((word & bad) != 0) break;
            put(out, word, 3);
        }
        // The end, a group with blanks or padding in it, or no Base64.
        char group[4];
        int const n = takeGroup(p, end, group);
        if (n == 0) return true;
        if (n < 4) return false;
        std::uint32_t const word = wordOf(group);
        if ((word & bad) != 0) return putPadded(out, group) && p == end;
        put(out, word, 3);
    }
}

}  // namespace

String Base64::encode(istr bytes) {
    String text;
    appendEncoded(text, bytes);
    return text;
}

void Base64::appendEncoded(String & out, istr bytes) {
    auto const byte = [p = bytes.data()](std::size_t i) -> std::uint32_t { return static_cast<unsigned char>(p[i]); };
    std::size_t const size = bytes.size();
    std::size_t const start = out.size();
    out.resize(start + encodedSize(size), '=');
    char * text = out.data() + start;
    std::size_t i = 0;
    for (; i + 3 <= size; i += 3, text += 4) {
        std::uint32_t const word = byte(i) << 16 | byte(i + 1) << 8 | byte(i + 2);
        std::memcpy(text, pairs[word >> 12].data(), 2);
        std::memcpy(text + 2, pairs[word & 4095].data(), 2);
    }
    if (i == size) return;
    std::uint32_t const word = byte(i) << 16 | (i + 1 < size ? byte(i + 1) << 8 : 0);
    std::memcpy(text, pairs[word >> 12].data(), 2);
    if (i + 1 < size) text[2] = alphabet[word >> 6 & 63];
}

bool Base64::decode(istr text, Bytes & out) {
    Bytes decoded;
    if (!appendDecoded(decoded, text)) return false;
    out.swap(decoded);
    return true;
}

bool Base64::appendDecoded(Bytes & out, istr text) {
    ulong const room = static_cast<ulong>(maxDecodedSize(text.size()));
    if (room > npos - out.size()) throw std::length_error("yon::Base64: longer than 32 bits can count");
    out.resize(out.size() + room);
    if (out.buffer() == nullptr && room != 0) throw std::bad_alloc();
    unsigned char * end = out.buffer() + out.size();
    if (!decodeAll(text.begin(), text.end(), end)) return false;
    out.size(static_cast<ulong>(end - out.buffer()));
    return true;
}

}  // namespace yon
