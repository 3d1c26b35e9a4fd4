// `BinaryOutStream`: values into a compact, self-delimiting byte string.
//
//     BinaryOutStream out;
//     out.write(7).write("abc");
//     send(out.str());               01 01 07  01 03 61 62 63
#pragma once

#include "yon/base/bytes.h"
#include "yon/base/exception.h"
#include "yon/base/scalars.h"
#include "yon/base/time.h"
#include "yon/util/binary_item.h"

namespace yon {

/// Appends one item for each value to a buffer of its own. The bytes are the same on every target. Integers and
/// floating numbers take the fewest bytes that hold their bits, up to the width of their type: 1 `bool` and `unsigned
/// char` (always one byte), 2 `char` and `short`, 4 `int`, `long` and `float`, 8 `long long`, `double` and `Time`.
///
/// Raises `OutOfRangeException` for a `long` that 4 bytes do not hold, `UTFConversionException` for text that is
/// none, `std::length_error` beyond 4 GiB; then nothing is written. Writing allocates only where the buffer grows.
/// One object belongs to one thread at a time.
class BinaryOutStream {
public:
    template <detail::BuiltinScalar T>
    BinaryOutStream & write(T value) {
        items_.integer(detail::BinaryField<T>::bits(value), detail::BinaryField<T>::width);
        return *this;
    }
    /// As the type that it wraps.
    template <ScalarWrapper W>
    BinaryOutStream & write(W const & scalar) {
        return write(scalar.value());
    }
    /// As microseconds.
    BinaryOutStream & write(Time const & time) { return write(time.toMicroSeconds()); }

    /// Bytes as they are. A part of this stream's own buffer has to be copied first.
    BinaryOutStream & write(istr const & bytes) {
        items_.bytes(bytes);
        return *this;
    }
    BinaryOutStream & write(Bytes const & bytes) { return write(istr(bytes)); }
    /// Text of the system code page, and wide text, as UTF-8. A null pointer is the empty text.
    BinaryOutStream & write(String const & text) { return writeText(text); }
    BinaryOutStream & write(std::string const & text) { return writeText(text); }
    BinaryOutStream & write(std::string_view text) { return writeText(text); }
    BinaryOutStream & write(char const * text) { return writeText(text); }
    BinaryOutStream & write(unsigned char const * text) { return writeText(text); }
    BinaryOutStream & write(iwstr const & text) {
        items_.wide(text);
        return *this;
    }
    BinaryOutStream & write(wstring const & text) { return write(iwstr(text)); }
    BinaryOutStream & write(wchar const * text) { return write(iwstr(text)); }

    BinaryOutStream & write(null_type) { return writeRaw('\0'); }
    BinaryOutStream & write(empty_type) { return write(istr()); }

    template <detail::OtherPointer P>
    BinaryOutStream & write(P) = delete;
    BinaryOutStream & write(std::nullptr_t) = delete;

    /// Append bytes without a frame.
    BinaryOutStream & writeRaw(char const * data, unsigned long size) { return writeRaw(istr(data, toLength(size))); }
    BinaryOutStream & writeRaw(unsigned char byte) {
        buffer().append(byte);
        return *this;
    }
    BinaryOutStream & writeRaw(istr bytes) {
        buffer().append(bytes);
        return *this;
    }

    StringBuffer & buffer() noexcept { return items_.buffer(); }
    StringBuffer const & buffer() const noexcept { return items_.buffer(); }
    /// What was written; valid until something is written.
    istr str() const noexcept { return buffer().str(); }

private:
    BinaryOutStream & writeText(istr text) {
        items_.ansi(text);
        return *this;
    }

    detail::ItemWriter items_;
};

}  // namespace yon
