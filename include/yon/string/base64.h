// `Base64`: bytes as printable text and back.
#pragma once

#include "yon/base/bytes.h"
#include "yon/base/string.h"

namespace yon {

/// Base64 of RFC 4648, section 4: the alphabet with '+' and '/', padded with '=', no line breaks. Decoding skips
/// white space anywhere and is strict otherwise: every other character must belong to the alphabet, the padding must
/// be there, and the bits that it leaves over must be 0, so that only one text stands for the same bytes. Reentrant.
class YON_API Base64 {
public:
    /// The size of the text for `n` bytes.
    static constexpr std::size_t encodedSize(std::size_t n) noexcept { return (n + 2) / 3 * 4; }
    /// The most bytes that a text of `n` characters may stand for.
    static constexpr std::size_t maxDecodedSize(std::size_t n) noexcept { return n / 4 * 3; }

    static String encode(istr bytes);
    /// Replaces the content of `out`, which stays as it is when the text is not valid: then false comes back.
    static bool decode(istr text, Bytes & out);

    /// The same at the end of `out`. REQUIRES: a source that is no part of `out`.
    static void appendEncoded(String & out, istr bytes);
    static bool appendDecoded(Bytes & out, istr text);
};

}  // namespace yon
