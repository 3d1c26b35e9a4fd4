// One thin value class for every built-in scalar type: `Bit`, `Char`, `Byte`, `Short`, `Ushort`, `Long`, `Ulong`,
// `Longlong`, `Ulonglong`, `Float`, `Double`.
//
// Each holds one value, converts from and to it without a word, and so takes part in arithmetic, comparisons and
// streams as the value does. Beside that it parses and prints itself, always in the classic locale, splits into
// halves, and knows its limits. All are plain values of the size of what they hold.
#pragma once

#include <concepts>
#include <limits>
#include <ostream>
#include <type_traits>

#include "yon/base/string.h"

namespace yon {

class dumper;

namespace detail {

/// Read a number as a stream does; without one they leave what the stream leaves.
YON_API void parseScalar(istr text, short & value) noexcept;
YON_API void parseScalar(istr text, ushort & value) noexcept;
YON_API void parseScalar(istr text, slong & value) noexcept;
YON_API void parseScalar(istr text, ulong & value) noexcept;
YON_API void parseScalar(istr text, longlong & value) noexcept;
YON_API void parseScalar(istr text, ulonglong & value) noexcept;
YON_API void parseScalar(istr text, float & value) noexcept;
YON_API void parseScalar(istr text, double & value) noexcept;
/// Print a number as a stream does.
YON_API String printScalar(longlong value);
YON_API String printScalar(ulonglong value);
YON_API String printScalar(double value);

/// What all scalar classes share. `Self` is the class that derives from this one, `V` the type it wraps, `P` the type
/// through which it is parsed and printed.
template <class Self, class V, class P = V>
class scalar {
public:
    using value_type = V;
    using parsed_type = P;

    constexpr scalar() noexcept = default;
    constexpr scalar(V value) noexcept : value_(value) {}
    scalar(String const & text) noexcept { fromString(text); }
    /// Text is parsed; no pointer turns into a truth value.
    template <class C>
    requires std::convertible_to<C *, String> scalar(C * text) { fromString(text); }
    template <class C>
    scalar(C *) = delete;

    constexpr Self & operator=(V value) noexcept {
        value_ = value;
        return self();
    }
    Self & operator=(String const & text) noexcept { return self() = Self(text); }
    template <class C>
    Self & operator=(C *) = delete;

    constexpr operator V &() & noexcept { return value_; }
    constexpr operator V const &() const noexcept { return value_; }
    constexpr V & value() noexcept { return value_; }
    constexpr V const & value() const noexcept { return value_; }

    /// The negated value; the least integer stays as it is.
    constexpr Self operator-() const noexcept requires std::is_signed_v<V> {
        if constexpr (std::floating_point<V>) {
            return Self(-value_);
        } else {
            return Self(static_cast<V>(0 - static_cast<std::make_unsigned_t<V>>(value_)));
        }
    }

    /// Reads the number at the start of the text, white space skipped. A class parsed as its own type keeps its value
    /// when there is no text, gets 0 when there is no number and its limit beyond that. The others (`Bit`, `Char`,
    /// `Byte`, which read a 16-bit number) become 0 in both of the first two cases.
    Self & fromString(String const & text) noexcept {
        if constexpr (std::same_as<V, P>) {
            parseScalar(text, value_);
        } else {
            P number = 0;
            parseScalar(text, number);
            value_ = static_cast<V>(number);
        }
        return self();
    }
    /// The value as a number (a `Char` too).
    String toString() const {
        using Printed = std::conditional_t<std::floating_point<P>, double,
                                           std::conditional_t<std::is_signed_v<P>, longlong, ulonglong>>;
        return printScalar(static_cast<Printed>(value_));
    }

    /// Writes the value for diagnostics.
    std::ostream & dump(std::ostream & os) const {
        if constexpr (std::same_as<V, bool>) {
            return os << (value_ ? "true" : "false");
        } else if constexpr (sizeof(V) == 1) {
            return Print(os, static_cast<char>(value_));
        } else if constexpr (std::integral<V>) {
            // Decimal, whatever base the stream is set to.
            return os << toString();
        } else {
            return os << value_;
        }
    }
    /// Dumps as the plain value does.
    dumper & dump(dumper & d) const;

private:
    constexpr Self & self() noexcept { return static_cast<Self &>(*this); }

    V value_{};
};

/// A scalar that splits into a low and a high half. `H` is the type of a half; the halves of one byte are nibbles,
/// of which only the low four bits count.
template <class Self, class V, class H, class P = V>
class halved : public scalar<Self, V, P> {
    using base = scalar<Self, V, P>;
    using U = std::make_unsigned_t<V>;

public:
    static constexpr H HALF_BITS = sizeof(V) * 4;
    static constexpr H HALF_MASK = static_cast<H>((U{1} << HALF_BITS) - 1);
    static constexpr V LOW_MASK = static_cast<V>(HALF_MASK);
    static constexpr V HIGH_MASK = static_cast<V>(~LOW_MASK);
    static constexpr V MIN_VAL = std::numeric_limits<V>::min();
    static constexpr V MAX_VAL = std::numeric_limits<V>::max();

    using base::base;
    using base::operator=;
    constexpr halved() noexcept = default;
    constexpr halved(H low, H high) noexcept : base(join(low, high)) {}

    constexpr Self & low(H half) noexcept { return *this = join(half, high()); }
    constexpr Self & high(H half) noexcept { return *this = join(low(), half); }
    constexpr H low() const noexcept { return static_cast<H>(bits() & HALF_MASK); }
    constexpr H high() const noexcept { return static_cast<H>(bits() >> HALF_BITS); }

private:
    constexpr U bits() const noexcept { return static_cast<U>(this->value()); }
    static constexpr V join(H low, H high) noexcept {
        return static_cast<V>(static_cast<U>(U{high} << HALF_BITS) | static_cast<U>(low & HALF_MASK));
    }
};

}  // namespace detail

/// One of the scalar classes.
template <class T>
concept ScalarWrapper = requires {
    typename T::value_type;
    typename T::parsed_type;
}
&&std::derived_from<T, detail::scalar<T, typename T::value_type, typename T::parsed_type>>;

/// A truth value; parsed and printed as a number. Dumps as "true" or "false".
class Bit : public detail::scalar<Bit, bool, short> {
public:
    static constexpr bool MIN_VAL = false;
    static constexpr bool MAX_VAL = true;
    using scalar::scalar;
    using scalar::operator=;
};

/// A character; parsed and printed as a number, dumped as `Print` shows it. Classification and case follow the locale
/// of the process.
class Char : public detail::halved<Char, char, unsigned char, short> {
public:
    using halved::halved;
    using halved::operator=;

    /// Becomes the upper-case hexadecimal digit of the low four bits of `d`.
    Char & fromHex(unsigned char d) noexcept { return *this = HexToChar(d); }
    /// The value of the character as a hexadecimal digit, 255 when it is none.
    unsigned char toHex() const noexcept { return HexFromChar(value()); }

    bool isSpace() const noexcept { return CharIsSpace(value()); }
    bool isPrint() const noexcept { return CharIsPrint(value()); }
    bool isCntrl() const noexcept { return CharIsCntrl(value()); }
    bool isUpper() const noexcept { return CharIsUpper(value()); }
    bool isLower() const noexcept { return CharIsLower(value()); }
    bool isAlpha() const noexcept { return CharIsAlpha(value()); }
    bool isDigit() const noexcept { return CharIsDigit(value()); }
    bool isPunct() const noexcept { return CharIsPunct(value()); }
    bool isXdigit() const noexcept { return CharIsXdigit(value()); }
    bool isAlnum() const noexcept { return CharIsAlnum(value()); }
    bool isGraph() const noexcept { return CharIsGraph(value()); }
    Char toLower() const noexcept { return CharToLower(value()); }
    Char toUpper() const noexcept { return CharToUpper(value()); }
    /// Whether the character occurs in the set, to which a NUL always belongs. False for a null set.
    bool in(istr set) const noexcept { return !set.is_null() && (value() == '\0' || set.find(value()) != npos); }
};

/// A byte; parsed and printed as a number, dumped as the character that `Print` shows.
class Byte : public detail::halved<Byte, unsigned char, unsigned char, ushort> {
public:
    using halved::halved;
    using halved::operator=;
};

class Short : public detail::halved<Short, short, unsigned char> {
public:
    using halved::halved;
    using halved::operator=;
};

class Ushort : public detail::halved<Ushort, ushort, unsigned char> {
public:
    using halved::halved;
    using halved::operator=;
};

/// 32 bits on every target.
class Long : public detail::halved<Long, slong, unsigned short> {
public:
    using halved::halved;
    using halved::operator=;
};

/// 32 bits on every target.
class Ulong : public detail::halved<Ulong, ulong, unsigned short> {
public:
    using halved::halved;
    using halved::operator=;
};

class Longlong : public detail::halved<Longlong, longlong, ulong> {
public:
    using halved::halved;
    using halved::operator=;
};

class Ulonglong : public detail::halved<Ulonglong, ulonglong, ulong> {
public:
    using halved::halved;
    using halved::operator=;
};

class Float : public detail::scalar<Float, float> {
public:
    using scalar::scalar;
    using scalar::operator=;
};

class Double : public detail::scalar<Double, double> {
public:
    using scalar::scalar;
    using scalar::operator=;
};

}  // namespace yon
