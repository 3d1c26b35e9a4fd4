// `BinaryStream`: integers in the fewest bytes, and the byte scrambler. `detail::BinaryField`: how each built-in type
// stands in a binary item.
#pragma once

#include <algorithm>
#include <bit>
#include <concepts>
#include <cstdint>
#include <cstring>

#include "yon/base/builtin_scalar.h"
#include "yon/base/istr.h"
#include "yon/base/ostr.h"

namespace yon {

namespace detail {

/// The eight bytes at `p` as a little-endian number, and back.
inline ulonglong load64(char const * p) noexcept {
    ulonglong bits;
    std::memcpy(&bits, p, sizeof bits);
    return std::endian::native == std::endian::little ? bits : __builtin_bswap64(bits);
}
inline void store64(char * p, ulonglong bits) noexcept {
    if constexpr (std::endian::native != std::endian::little) bits = __builtin_bswap64(bits);
    std::memcpy(p, &bits, sizeof bits);
}

/// The low `n` bytes. REQUIRES: 1 to 8.
constexpr ulonglong lowBytes(ulonglong bits, unsigned n) noexcept { return bits & (~0ull >> (64 - 8 * n)); }

/// How many bytes a number takes: one bit more than it needs, so that the top bit stays clear, but at most `width`.
constexpr unsigned integerSize(ulonglong bits, unsigned width) noexcept {
    return std::min(width, static_cast<unsigned>(std::bit_width(bits)) / 8 + 1);
}

[[noreturn]] YON_API void raiseTooWide();

/// A built-in type as a field of the binary encodings. Fields have the width of the type's name, whatever the type
/// has on this target: `long` is 4 bytes.
template <BuiltinScalar T>
struct BinaryField {
    static constexpr bool isLong = std::same_as<T, long> || std::same_as<T, unsigned long>;
    static constexpr bool isSmallCharacter = std::same_as<T, char> || std::same_as<T, signed char>;
    /// In bytes.
    static constexpr unsigned width = isLong ? 4 : isSmallCharacter ? 2 : sizeof(T);

    /// The number that is written. Raises `OutOfRangeException` for a value that has no room.
    static ulonglong bits(T value) {
        if constexpr (std::same_as<T, float>) {
            return std::bit_cast<std::uint32_t>(value);
        } else if constexpr (std::same_as<T, double>) {
            return std::bit_cast<std::uint64_t>(value);
        } else if constexpr (std::same_as<T, char>) {
            return BinaryField<signed char>::bits(static_cast<signed char>(value));
        } else {
            if constexpr (sizeof(T) > width) {
                if (value != fromBits(static_cast<ulonglong>(value))) raiseTooWide();
            }
            return static_cast<ulonglong>(static_cast<longlong>(value));
        }
    }

    /// The value of a number of at most `width` bytes.
    static T fromBits(ulonglong bits) noexcept {
        if constexpr (std::same_as<T, float>) {
            return std::bit_cast<float>(static_cast<std::uint32_t>(bits));
        } else if constexpr (std::same_as<T, double>) {
            return std::bit_cast<double>(static_cast<std::uint64_t>(bits));
        } else if constexpr (std::same_as<T, bool>) {
            return bits != 0;
        } else if constexpr (width == 4) {
            using Narrow = std::conditional_t<std::is_signed_v<T>, slong, ulong>;
            return static_cast<T>(static_cast<Narrow>(static_cast<ulong>(bits)));
        } else {
            return static_cast<T>(bits);
        }
    }
};

/// A pointer that is no text.
template <class P>
concept OtherPointer = std::is_pointer_v<P> && NoneOf < std::remove_cv_t<std::remove_pointer_t<P>>,
char, unsigned char, wchar > ;

/// An integer of any type but the characters of wide text.
template <class T>
concept BinaryInteger = BuiltinScalar<T> && std::integral<T>;

/// Text that owns its bytes, so that a view of a temporary one is a mistake.
template <class S>
concept OwnedText =
    std::is_class_v<S> && std::convertible_to<S const &, istr> && NoneOf<S, istr, std::string_view, std::nullptr_t>;

}  // namespace detail

/// Static helpers of the binary encodings. Callable from any thread.
class BinaryStream {
public:
    /// Writes the low byte of the value, shifts it right by 8, and goes on while there is something left, or the top
    /// bit of the last byte was set, up to `width` bytes (at most 8). Negative numbers take the whole width. Returns
    /// how many bytes were written.
    template <detail::BinaryInteger T>
    static char writeInt(char * out, T value, unsigned long width) noexcept {
        auto bits = static_cast<ulonglong>(static_cast<longlong>(value));
        unsigned const size = detail::integerSize(bits, widthOf(width));
        for (unsigned i = 0; i < size; ++i, bits >>= 8) out[i] = static_cast<char>(bits);
        return static_cast<char>(size);
    }

    /// The smaller of `size` and `width` (at most 8) bytes as a little-endian number, with zeros above. 0 for no
    /// data.
    static ulonglong readUint(char const * data, char size, unsigned long width) noexcept {
        return size < 0 ? 0 : readUint(istr(data, static_cast<ulong>(size)), width);
    }
    static ulonglong readUint(istr data, unsigned long width) noexcept {
        ulonglong bits = 0;
        for (ulong n = std::min<ulong>(data.size(), widthOf(width)); n > 0;) {
            bits = bits << 8 | static_cast<unsigned char>(data[--n]);
        }
        return bits;
    }
    /// The same, and no more: short data is not sign-extended, since negative numbers stand at full width.
    static longlong readInt(char const * data, char size, unsigned long width) noexcept {
        return static_cast<longlong>(readUint(data, size, width));
    }
    static longlong readInt(istr data, unsigned long width) noexcept {
        return static_cast<longlong>(readUint(data, width));
    }

    /// The complement of a byte: each undoes the other. A disguise, no protection.
    static unsigned char encrypt(unsigned char c) noexcept { return static_cast<unsigned char>(~c); }
    static unsigned char decrypt(unsigned char c) noexcept { return encrypt(c); }
    /// The same for each byte of the room; nothing when its capacity is not known.
    YON_API static void encrypt(ostr room) noexcept;
    static void decrypt(ostr room) noexcept { encrypt(room); }

private:
    static constexpr unsigned widthOf(unsigned long width) noexcept {
        return static_cast<unsigned>(std::min(width, 8ul));
    }
};

}  // namespace yon
