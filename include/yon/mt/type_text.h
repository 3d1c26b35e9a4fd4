// The text that stands for a type in the function text of an instantiation: "class yon::Thread".
#pragma once

#include <algorithm>
#include <array>
#include <string_view>

namespace yon {

/// The word in front of a type's name: the same on every target, whatever its compiler would say. Specialise it
/// beside a structure as "struct ".
template <class T>
inline constexpr std::string_view classWord = "class ";

namespace detail {

template <class T>
consteval std::string_view typeName() {
    // g++: "… [with T = X; …]", clang: "… [T = X]"
    std::string_view const text = __PRETTY_FUNCTION__;
    std::size_t const begin = text.find("T = ") + 4;
    return text.substr(begin, std::min(text.find(';', begin), text.rfind(']')) - begin);
}

template <std::size_t size>
consteval auto joined(std::string_view a, std::string_view b, std::string_view c, std::string_view d) {
    std::array<char, size + 1> text{};
    char * to = text.data();
    for (std::string_view part : {a, b, c, d}) to = std::copy(part.begin(), part.end(), to);
    return text;
}

/// `before`, the class word and name of `T`, `after`, as an array with a terminating NUL.
template <class T, auto const & before, auto const & after>
inline constexpr auto typeText = joined<before.size() + classWord<T>.size() + typeName<T>().size() + after.size()>(
    before, classWord<T>, typeName<T>(), after);

}  // namespace detail
}  // namespace yon
