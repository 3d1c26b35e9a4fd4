// Whether a number fits its type word.
#pragma once

#include <string>
#include <string_view>

namespace pmltool {

/// What is wrong with a text under a type word such as "int" or "double", in words that follow the text; empty when
/// nothing is, or when the word names no kind of number.
std::string numberFault(std::string_view type, std::string_view text);

/// The rules, for the help text.
extern char const * const numberRules;

}  // namespace pmltool
