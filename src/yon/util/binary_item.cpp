#include "yon/util/binary_item.h"

#include <stdexcept>

#include "yon/base/throw.h"
#include "yon/platform/platform.h"
#include "yon/string/unicode.h"
#include "yon/string/utf.h"

namespace yon::detail {

namespace {

void check(ConversionResult result) {
    if (result != ConversionResult::ok) YON_THROW(UTFConversionException, result);
}

/// How many bytes the text takes in UTF-8. What is no text counts as something.
ulonglong utf8Size(iwstr text) noexcept {
    ulonglong size = 0;
    for (wchar const c : text) {
        bool const surrogate = (c & 0xF800) == 0xD800;
        size += c < 0x80 ? 1 : c < 0x800 || surrogate ? 2 : 3;
    }
    return size;
}

}  // namespace

char * ItemWriter::begin(ulong size, unsigned char mark, unsigned sizeBytes, unsigned & headSize) {
    constexpr ulong mostHead = 1 + sizeof(ulonglong);
    unsigned const los = std::max(sizeBytes, integerSize(size, 4));
    if (size > npos - mostHead) throw std::length_error("yon: an item longer than 32 bits can count");
    char * const p = buffer_.prepare(size + mostHead);
    *p = static_cast<char>(los | mark);
    store64(p + 1, size);
    headSize = 1 + los;
    return p + headSize;
}

void ItemWriter::bytes(istr data, unsigned char mark, unsigned sizeBytes) {
    unsigned headSize = 0;
    char * const p = begin(data.size(), mark, sizeBytes, headSize);
    if (!data.empty()) std::memcpy(p, data.data(), data.size());
    buffer_.commit(headSize + data.size());
}

void ItemWriter::ansi(istr text, unsigned char mark) {
    if (platform::codePageIsUtf8()) {
        check(checkUtf8(text));
        bytes(text, mark);
    } else {
        scratch_.clear();
        check(platform::codePageToWide(text, scratch_));
        wide(scratch_, mark);
    }
}

void ItemWriter::wide(iwstr text, unsigned char mark) {
    ulong const size = static_cast<ulong>(std::min<ulonglong>(utf8Size(text), npos));
    unsigned headSize = 0;
    char * p = begin(size, mark, 1, headSize);
    wchar const * from = text.begin();
    check(utf16ToUtf8(from, text.end(), p, p + size));
    buffer_.commit(headSize + size);
}

void textFromItem(istr utf8, std::string & out) {
    if (platform::codePageIsUtf8()) {
        check(checkUtf8(utf8));
        out = std::string_view(utf8);
    } else {
        out = utf8ToAnsi(utf8);
    }
}

void textFromItem(istr utf8, wstring & out) { out = utf8ToWstring(utf8); }

}  // namespace yon::detail
