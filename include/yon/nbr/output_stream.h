// `nbr::OutputStream`: values into nbr bytes.
//
//     nbr::OutputStream out;
//     out.beginComplex();
//     out.tag(1) << "name";
//     out.tag(2) << 7400;
//     out.endComplex();
#pragma once

#include "yon/base/bytes.h"
#include "yon/base/exception.h"
#include "yon/base/scalars.h"
#include "yon/base/time.h"
#include "yon/nbr/value.h"

namespace yon::nbr {

/// Appends values to a buffer of its own. Items are those of `BinaryOutStream`, with the same widths and exceptions,
/// but text is marked as such: `String`, standard strings, text pointers and wide text; not `istr` and `Bytes`. What
/// cannot be written leaves nothing behind. A part of this stream's own buffer has to be copied before it is written.
///
/// Within a complex value each value is an element: it has the tag that was set right before it, or none. What is
/// written while all complex values are closed is a sequence of values. Writing allocates only where the buffer
/// grows. One object belongs to one thread at a time.
class YON_API OutputStream {
public:
    template <yon::detail::BuiltinScalar T>
    OutputStream & operator<<(T value) {
        ulonglong const bits = yon::detail::BinaryField<T>::bits(value);
        if (open_ != 0) {
            // A tag never stands alone, not even when the memory is used up.
            items_.buffer().prepare(1 + items_.integerRoom);
            writeTag();
        }
        items_.integer(bits, yon::detail::BinaryField<T>::width);
        return *this;
    }
    template <ScalarWrapper W>
    OutputStream & operator<<(W const & scalar) {
        return *this << scalar.value();
    }
    OutputStream & operator<<(Time const & time) { return *this << time.toMicroSeconds(); }

    OutputStream & operator<<(istr const & bytes);
    OutputStream & operator<<(Bytes const & bytes) { return *this << istr(bytes); }
    OutputStream & operator<<(String const & text) { return writeText(text); }
    OutputStream & operator<<(std::string const & text) { return writeText(text); }
    OutputStream & operator<<(std::string_view text) { return writeText(text); }
    OutputStream & operator<<(char const * text) { return writeText(text); }
    OutputStream & operator<<(unsigned char const * text) { return writeText(text); }
    OutputStream & operator<<(iwstr const & text);
    OutputStream & operator<<(wstring const & text) { return *this << iwstr(text); }
    OutputStream & operator<<(wchar const * text) { return *this << iwstr(text); }

    /// Elements that are null or empty vanish when they are read.
    OutputStream & operator<<(null_type);
    OutputStream & operator<<(empty_type) { return *this << istr(); }

    template <yon::detail::OtherPointer P>
    OutputStream & operator<<(P) = delete;
    OutputStream & operator<<(std::nullptr_t) = delete;

    /// Open and close a complex value; they nest.
    OutputStream & beginComplex();
    OutputStream & endComplex();
    /// Sets the tag of the next value, 0 to 254; 255 means none. Raises `OutOfRangeException` beyond that.
    ///
    /// These three raise `UnsupportedFunctionException` where no complex value is open, and for a tag without a
    /// value.
    OutputStream & tag(unsigned n);

    /// Append bytes as they are, behind the tag if one is set.
    OutputStream & writeRaw(char const * data, unsigned long size) { return writeRaw(istr(data, toLength(size))); }
    OutputStream & writeRaw(unsigned char byte) { return writeRaw(istr(&byte, 1)); }
    OutputStream & writeRaw(istr bytes);

    /// The bytes written; valid until something is written.
    istr str() const noexcept { return items_.buffer().str(); }
    /// Empties the stream, and forgets open values and tags.
    void reset() noexcept;
    void swap(OutputStream & o) noexcept { std::swap(*this, o); }
    dumper & dump(dumper & d) const;

private:
    static constexpr int unset = -1;

    OutputStream & writeText(istr text);
    template <class Write>
    OutputStream & writeElement(Write write);
    /// Writes the tag of an element; returns it.
    int writeTag() {
        int const tag = tag_ == unset ? noTag : tag_;
        items_.buffer().append(static_cast<unsigned char>(tag));
        tag_ = unset;
        return tag;
    }

    yon::detail::ItemWriter items_;
    ulong open_ = 0;   ///< complex values that are not closed
    int tag_ = unset;  ///< of the next value
};

}  // namespace yon::nbr
