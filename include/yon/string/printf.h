// `Printf`: formatting with the conversions of the C library, but with the types of the arguments known.
#pragma once

#include <array>

#include "yon/base/builtin_scalar.h"
#include "yon/base/iwstr.h"
#include "yon/base/scalars.h"
#include "yon/base/string.h"

namespace yon {

namespace detail {

/// One argument of `Printf`: its value, or where its text lies, and what it is.
class PrintfArg {
public:
    enum class Kind : unsigned char { signedInteger, unsignedInteger, real, text, wideText, pointer };

    template <BuiltinScalar T>
    PrintfArg(T value) noexcept {
        if constexpr (std::is_floating_point_v<T>) {
            kind_ = Kind::real;
            real_ = value;
        } else {
            kind_ = std::is_signed_v<T> ? Kind::signedInteger : Kind::unsignedInteger;
            bytes_ = sizeof(T);
            integer_ = static_cast<ulonglong>(value);
        }
    }
    template <ScalarWrapper T>
    PrintfArg(T const & wrapper) noexcept : PrintfArg(wrapper.value()) {}
    template <class T>
    requires std::is_enum_v<T> && std::convertible_to<T, longlong> PrintfArg(T value)
    noexcept : PrintfArg(static_cast<std::underlying_type_t<T>>(value)) {}
    template <class T>
    requires std::convertible_to<T const &, istr> PrintfArg(T const & text)
    noexcept : PrintfArg(Kind::text, istr(text)) { showNull<T>(); }
    template <class T>
    requires std::convertible_to<T const &, iwstr> &&
        (!std::convertible_to<T const &, istr>)PrintfArg(T const & text) noexcept
        : PrintfArg(Kind::wideText, iwstr(text)) {
        showNull<T>();
    }
    PrintfArg(void const * p) noexcept : kind_(Kind::pointer), pointer_(p) {}

    Kind kind() const noexcept { return kind_; }
    bool isInteger() const noexcept { return kind_ <= Kind::unsignedInteger; }
    bool isNegative() const noexcept { return kind_ == Kind::signedInteger && static_cast<longlong>(integer_) < 0; }
    /// The integer in two's complement, of 64 bits and of the width of its own type.
    ulonglong integer() const noexcept { return integer_; }
    ulonglong ownBits() const noexcept { return integer_ & (~ulonglong{0} >> (64 - 8 * bytes_)); }
    double real() const noexcept { return real_; }
    void const * pointer() const noexcept { return pointer_; }
    istr text() const noexcept { return {static_cast<char const *>(pointer_), size_}; }
    iwstr wideText() const noexcept { return {static_cast<wchar const *>(pointer_), size_}; }

private:
    template <class View>
    PrintfArg(Kind kind, View const & text) noexcept : kind_(kind), size_(text.size()), pointer_(text.data()) {}

    template <class T>
    void showNull() noexcept {
        if (std::is_pointer_v<T> && pointer_ == nullptr)
            *this = PrintfArg(Kind::text, istr(SafeStr(static_cast<char const *>(nullptr))));
    }

    Kind kind_;
    unsigned char bytes_ = 0;
    ulong size_ = 0;
    union {
        ulonglong integer_;
        double real_;
        void const * pointer_;
    };
};

/// Appends to `out`.
YON_API void appendPrintf(std::string & out, istr format, PrintfArg const * args, std::size_t count);

}  // namespace detail

/// A `String` made from a format and its arguments:
///
///     String line = Printf("%-10s %5d %.2f%%", name, count, share);
///
/// Known are the conversions d i u o x X c s p e E f F g G a A and %, the flags "-+ #0", width and precision, also as
/// "*". Numbers look as in the C locale on every target. Length modifiers (h l ll L q j z t I64) may stand there and
/// change nothing, since each argument's type is known: every integer type goes with the integer conversions (for u o
/// x X as unsigned of its own width), float and double with those for reals, and everything that converts to `istr`
/// or `iwstr` with s, where wide text goes through the system code page, a precision counts bytes, and a null pointer
/// shows as "<null>". p shows a `void` pointer as "0x" and hexadecimal digits. An argument that does not go with its
/// conversion, an unknown conversion (n too), and too few or too many arguments raise `InvalidDataException` with a
/// message that quotes the conversion.
class Printf : public String {
public:
    template <class... Args>
    explicit Printf(istr format, Args const &... args) {
        std::array<detail::PrintfArg, sizeof...(Args)> const list{detail::PrintfArg(args)...};
        detail::appendPrintf(*this, format, list.data(), list.size());
    }
};

}  // namespace yon
