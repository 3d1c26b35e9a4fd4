// `BinaryInStream`: reads what `BinaryOutStream` has written.
#pragma once

#include "yon/base/bytes.h"
#include "yon/base/exception.h"
#include "yon/base/scalars.h"
#include "yon/base/time.h"
#include "yon/util/binary_item.h"

namespace yon {

/// Reads items from bytes that it does not own, and that must outlive it.
///
/// `read` is lenient: past the end of the input, and for null and empty items, numbers are 0 and byte strings empty;
/// an item that is cut off leaves a notice in the log and reads as 0, or as what there is of a byte string; of a
/// number that is wider than its target the low bytes count. What no stream can have written raises
/// `BinaryDecodeException`, text that is no UTF-8 `UTFConversionException`; the position is then where the read has
/// failed.
///
/// `readStrict` raises `BinaryDecodeException` in all these cases, whether an item is missing, null, cut off, too
/// wide, or an empty number; target and position are then as they were. One object belongs to one thread at a time.
class YON_API BinaryInStream {
public:
    BinaryInStream() noexcept = default;
    explicit BinaryInStream(istr input) noexcept { str(input); }
    template <detail::OwnedText S>
    explicit BinaryInStream(S const & input YON_LIFETIMEBOUND) noexcept : BinaryInStream(istr(input)) {}

    /// Starts over with other bytes.
    BinaryInStream & str(istr const & input) noexcept {
        at_ = input.begin();
        end_ = input.end();
        return *this;
    }

    template <detail::BuiltinScalar T>
    BinaryInStream & read(T & value) {
        value = T();
        value = detail::BinaryField<T>::fromBits(readBits(detail::BinaryField<T>::width));
        return *this;
    }
    template <ScalarWrapper W>
    BinaryInStream & read(W & scalar) {
        return read(scalar.value());
    }
    BinaryInStream & read(Time & time);

    BinaryInStream & read(Bytes & bytes);
    /// A view of the bytes in the input.
    BinaryInStream & read(istr & bytes);
    /// Text in the system code page.
    BinaryInStream & read(String & text) { return read(static_cast<std::string &>(text)); }
    BinaryInStream & read(std::string & text);
    BinaryInStream & read(wstring & text);

    template <detail::BuiltinScalar T>
    BinaryInStream & readStrict(T & value) {
        value = detail::BinaryField<T>::fromBits(readBitsStrictly(detail::BinaryField<T>::width));
        return *this;
    }
    template <ScalarWrapper W>
    BinaryInStream & readStrict(W & scalar) {
        return readStrict(scalar.value());
    }
    BinaryInStream & readStrict(Time & time);
    BinaryInStream & readStrict(Bytes & bytes);
    BinaryInStream & readStrict(istr & bytes);
    BinaryInStream & readStrict(String & text) { return readStrict(static_cast<std::string &>(text)); }
    BinaryInStream & readStrict(std::string & text);
    BinaryInStream & readStrict(wstring & text);

    /// Takes one byte, with which the next item begins: the number of bytes of its size. 0 at the end.
    unsigned char readLos() noexcept { return eof() ? 0 : static_cast<unsigned char>(*at_++); }
    /// Take bytes as they are; 0 at the end.
    BinaryInStream & readRaw(char & byte) noexcept {
        byte = static_cast<char>(readLos());
        return *this;
    }
    BinaryInStream & readRaw(unsigned char & byte) noexcept {
        byte = readLos();
        return *this;
    }
    /// Copies up to `*n` bytes and sets `*n` to their number.
    BinaryInStream & readRaw(char * out, ulong * n) noexcept;

    bool eof() const noexcept { return at_ == end_; }
    /// What has not been read.
    istr rest() const noexcept { return istr(at_, left()); }

private:
    ulong left() const noexcept { return toLength(static_cast<std::size_t>(end_ - at_)); }
    istr take(ulong n) noexcept {
        istr const taken(at_, n);
        at_ += n;
        return taken;
    }

    /// The number of an item, of at most `width` bytes.
    ulonglong readBits(unsigned width) {
        constexpr std::ptrdiff_t mostBytes = 2 + sizeof(ulonglong);
        if (end_ - at_ >= mostBytes && at_[0] == 1) {
            unsigned const size = static_cast<unsigned char>(at_[1]);
            if (size - 1 < sizeof(ulonglong)) {
                ulonglong const bits = detail::load64(at_ + 2);
                at_ += 2 + size;
                return detail::lowBytes(bits, std::min(size, width));
            }
        }
        return readUnusualBits(width);
    }
    ulonglong readUnusualBits(unsigned width);
    istr readData();
    ulonglong readBitsStrictly(unsigned width);
    istr peekStrictly(char const *& next) const;
    template <class T>
    BinaryInStream & readTextStrictly(T & text);

    char const * at_ = nullptr;
    char const * end_ = nullptr;
};

}  // namespace yon
