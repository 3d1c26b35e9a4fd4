// Which built-in types the overload families over scalars take.
#pragma once

#include <concepts>
#include <type_traits>

namespace yon::detail {

template <class T, class... Others>
concept NoneOf = (!std::same_as<T, Others> && ...);

/// The built-in numbers, `bool` and the narrow characters; neither the characters of wide text nor `long double`.
template <class T>
concept BuiltinScalar = std::is_arithmetic_v<T> && std::same_as<T, std::remove_cv_t<T>> &&
    NoneOf<T, wchar_t, char8_t, char16_t, char32_t, long double>;

/// Those that mean a character, not a number.
template <class T>
concept CharacterType = std::same_as<T, char> || std::same_as<T, signed char> || std::same_as<T, unsigned char>;

}  // namespace yon::detail
