// Single items of the binary encodings: a byte that tells how many bytes the size takes, the size, and the data.
#pragma once

#include "yon/base/string.h"
#include "yon/string/string_buffer.h"
#include "yon/util/binary_stream.h"

namespace yon::detail {

/// Appends items to a buffer. No item costs an allocation of its own, and one that fails leaves nothing behind.
class YON_API ItemWriter {
public:
    StringBuffer & buffer() noexcept { return buffer_; }
    StringBuffer const & buffer() const noexcept { return buffer_; }

    /// The room that an integer asks for.
    static constexpr ulong integerRoom = 2 + sizeof(ulonglong);
    void integer(ulonglong bits, unsigned width) {
        unsigned const size = integerSize(bits, width);
        // All eight bytes, of which those beyond the size are overwritten next.
        char * const p = buffer_.prepare(integerRoom);
        p[0] = 1;
        p[1] = static_cast<char>(size);
        store64(p + 2, bits);
        buffer_.commit(2 + size);
    }
    /// Bytes as they are. `mark` is joined to the first byte; the size takes at least `sizeBytes` bytes. The data
    /// must not be a part of the buffer.
    void bytes(istr data, unsigned char mark = 0, unsigned sizeBytes = 1);
    /// Text of the system code page, and wide text, as UTF-8. They raise `UTFConversionException`.
    void ansi(istr text, unsigned char mark = 0);
    void wide(iwstr text, unsigned char mark = 0);

private:
    /// Room for an item, its head written; `at` is where the data goes.
    char * begin(ulong size, unsigned char mark, unsigned sizeBytes, unsigned & headSize);

    StringBuffer buffer_;
    wstring scratch_;  ///< where narrow text passes through when the code page is not UTF-8
};

/// UTF-8 text of an item into the system code page, and into wide text. They raise `UTFConversionException`.
YON_API void textFromItem(istr utf8, std::string & out);
YON_API void textFromItem(istr utf8, wstring & out);

}  // namespace yon::detail
