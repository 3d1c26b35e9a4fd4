// The values of the nbr encoding in memory.
//
//     value   = simple | complex
//     simple  = head size data      head: bytes of the size, 0 to 4; F0 hex is added for text
//     complex = FF 01 28 { tag value } FF 01 29
#pragma once

#include <atomic>
#include <list>

#include "yon/base/bytes.h"
#include "yon/base/leak_checker.h"
#include "yon/base/pooled.h"
#include "yon/base/scalars.h"
#include "yon/base/time.h"
#include "yon/util/binary_item.h"

namespace yon {

class dumper;

namespace nbr {

class SimpleValue;
class ComplexValue;

/// The tag of elements that have none.
inline constexpr unsigned char noTag = 0xFF;

/// A value: a `SimpleValue` or a `ComplexValue`, no other class. A tree belongs to one thread at a time; threads that
/// only read may share it.
class YON_API ValueBase {
public:
    virtual ~ValueBase();
    virtual bool simple() const = 0;
    /// Of complex values, the outer levels are shown.
    virtual dumper & dump(dumper & d) const = 0;

    /// The value when it is of that kind, otherwise null.
    inline SimpleValue const * simpleValue() const noexcept;
    inline ComplexValue const * complexValue() const noexcept;
    inline ComplexValue * complexValue() noexcept;
    /// A deep copy, which the caller owns.
    ValueBase * clone() const;

private:
    friend class SimpleValue;
    friend class ComplexValue;
    ValueBase() noexcept = default;
    ValueBase(ValueBase const &) noexcept = default;
    ValueBase & operator=(ValueBase const &) noexcept = default;
};

/// The data of an item: a view of parsed bytes, which must outlive it. Copies view the same bytes.
class YON_API SimpleValue final : public ValueBase, public yon::detail::Pooled<SimpleValue> {
public:
    explicit SimpleValue(bool text = false) noexcept : text_(text) {}
    SimpleValue(istr data, bool text) noexcept : data_(data), text_(text) {}

    bool simple() const override { return true; }
    dumper & dump(dumper & d) const override;

    istr const & data() const noexcept { return data_; }
    /// Whether the item was written as text.
    bool text() const noexcept { return text_; }

    /// The data as a little-endian number, cut to the width of the type, on which see `BinaryOutStream`. False, and
    /// 0, when there is no data.
    template <yon::detail::BuiltinScalar T>
    bool read(T & value) const noexcept {
        value =
            yon::detail::BinaryField<T>::fromBits(BinaryStream::readUint(data_, yon::detail::BinaryField<T>::width));
        return !data_.empty();
    }
    template <ScalarWrapper W>
    bool read(W & scalar) const noexcept {
        return read(scalar.value());
    }
    bool read(Time & time) const noexcept {
        longlong microseconds = 0;
        bool const has = read(microseconds);
        time = Time(microseconds);
        return has;
    }
    /// The data as it is.
    bool read(Bytes & bytes) const;
    bool read(istr & bytes) const noexcept {
        bytes = data_;
        return !data_.empty();
    }
    /// The data as UTF-8, in the system code page or wide. They raise `UTFConversionException`.
    bool read(String & text) const { return read(static_cast<std::string &>(text)); }
    bool read(std::string & text) const;
    bool read(wstring & text) const;

    /// As `read` of a number, but raises `DecodeException`, and leaves the target, when the number is empty or too
    /// wide.
    template <yon::detail::BuiltinScalar T>
    void readStrict(T & value) const {
        checkNumber(yon::detail::BinaryField<T>::width);
        read(value);
    }
    template <ScalarWrapper W>
    void readStrict(W & scalar) const {
        readStrict(scalar.value());
    }
    void readStrict(Time & time) const {
        checkNumber(sizeof(longlong));
        read(time);
    }

private:
    void checkNumber(unsigned width) const;

    istr data_;
    bool text_;
};

/// A sequence of tagged values, which it owns. Copies are deep.
class YON_API ComplexValue final : public ValueBase, public yon::detail::Pooled<ComplexValue> {
public:
    struct Item {
        unsigned char tag;
        ValueBase * value;
    };
    using Items = std::list<Item>;

    ComplexValue() noexcept = default;
    ComplexValue(ComplexValue const & o);
    ComplexValue(ComplexValue && o) noexcept { swap(o); }
    ComplexValue & operator=(ComplexValue o) noexcept {
        swap(o);
        return *this;
    }
    ~ComplexValue() override;
    void swap(ComplexValue & o) noexcept;

    bool simple() const override { return false; }
    dumper & dump(dumper & d) const override;

    /// Appends an element and takes the value; null is ignored. A value that could not be added stays the caller's.
    void add(unsigned char tag, ValueBase * value);
    /// The last element with that tag; null when there is none, and for `noTag`.
    ValueBase * get(unsigned char tag) const;
    /// Reads a simple element; false, and the target untouched, when there is none.
    template <class T>
    bool read(unsigned char tag, T & value) const {
        ValueBase const * const element = get(tag);
        return element != nullptr && element->simple() && element->simpleValue()->read(value);
    }

    /// All elements in order.
    Items const & data() const noexcept { return items_; }
    Items::const_iterator begin() const noexcept { return items_.begin(); }
    Items::const_iterator end() const noexcept { return items_.end(); }

private:
    class Index;

    void dump(dumper & d, unsigned depth) const;
    void copyFrom(ComplexValue const & o);

    Items items_;
    /// By tag, made by the first `get`; threads that only read may share the value.
    mutable std::atomic<Index *> index_{nullptr};
};

SimpleValue const * ValueBase::simpleValue() const noexcept {
    return simple() ? static_cast<SimpleValue const *>(this) : nullptr;
}
ComplexValue const * ValueBase::complexValue() const noexcept {
    return simple() ? nullptr : static_cast<ComplexValue const *>(this);
}
ComplexValue * ValueBase::complexValue() noexcept { return simple() ? nullptr : static_cast<ComplexValue *>(this); }

}  // namespace nbr
}  // namespace yon
