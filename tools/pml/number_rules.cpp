#include "number_rules.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>

namespace pmltool {

char const * const numberRules =
    "A value is compared with its type word, in any case of letters:\n"
    "  bool bit                           0 or 1\n"
    "  byte int8 uint8 short int16 ushort uint16 int long int32 uint ulong uint32\n"
    "  longlong int64 ulonglong uint64    a decimal number in the type's range\n"
    "  float double                       a number of at most 6 significant digits: a\n"
    "                                     program that stores it again keeps no more\n"
    "\"unsigned short\", \"long long\", \"int32_t\" and the like count as well. Other type\n"
    "words, and empty values, are not looked at.\n";

namespace {

struct Range {
    char const * type;
    long long least;
    unsigned long long most;
};

template <class T>
constexpr Range rangeOf(char const * type) {
    return {type, std::numeric_limits<T>::min(), std::numeric_limits<T>::max()};
}

constexpr Range ranges[] = {
    {"bool", 0, 1},
    {"bit", 0, 1},
    rangeOf<std::uint8_t>("byte"),
    rangeOf<std::int8_t>("int8"),
    rangeOf<std::uint8_t>("uint8"),
    rangeOf<std::int16_t>("short"),
    rangeOf<std::int16_t>("int16"),
    rangeOf<std::uint16_t>("ushort"),
    rangeOf<std::uint16_t>("uint16"),
    rangeOf<std::int32_t>("int"),
    rangeOf<std::int32_t>("int32"),
    rangeOf<std::int32_t>("long"),
    rangeOf<std::uint32_t>("uint"),
    rangeOf<std::uint32_t>("uint32"),
    rangeOf<std::uint32_t>("ulong"),
    rangeOf<std::uint32_t>("unsigned"),
    rangeOf<std::int64_t>("longlong"),
    rangeOf<std::int64_t>("int64"),
    rangeOf<std::uint64_t>("ulonglong"),
    rangeOf<std::uint64_t>("uint64"),
};

bool isDigit(char c) noexcept { return c >= '0' && c <= '9'; }

/// "unsigned long long" and "ULongLong" are "ulonglong", "int32_t" is "int32".
std::string plainWord(std::string_view type) {
    std::string word;
    for (char c : type.substr(0, 32)) {
        if (c != ' ') word += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    if (word.ends_with("_t")) word.resize(word.size() - 2);
    if (word.starts_with("unsigned") && word != "unsigned") word.replace(0, 8, "u");
    return word;
}

std::string_view trimmed(std::string_view text) {
    constexpr char const * blanks = " \t\n\v\f\r";
    std::size_t const from = text.find_first_not_of(blanks);
    return from == text.npos ? std::string_view() : text.substr(from, text.find_last_not_of(blanks) - from + 1);
}

std::string integerFault(Range const & range, std::string_view text) {
    bool const negative = text.starts_with('-');
    std::string_view digits = text.substr(negative || text.starts_with('+'));
    if (digits.empty() || !std::all_of(digits.begin(), digits.end(), isDigit)) {
        return std::string("is no ") + (range.most == 1 ? "0 or 1" : "decimal number");
    }
    unsigned long long size = 0;
    auto const [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), size);
    unsigned long long const most = negative ? 0 - static_cast<unsigned long long>(range.least) : range.most;
    if (error == std::errc() && size <= most) return {};
    return "is out of range: " + std::to_string(range.least) + " to " + std::to_string(range.most);
}

/// How many digits count: none before the first that is not 0, and no zeros at the end.
std::size_t significantDigits(std::string_view number) {
    std::size_t digits = 0;
    std::size_t zeros = 0;
    for (char c : number.substr(0, number.find_first_of("eE"))) {
        if (c == '0' && digits != 0) {
            ++zeros;
        } else if (isDigit(c) && c != '0') {
            digits += zeros + 1;
            zeros = 0;
        }
    }
    return digits;
}

template <class T>
std::string floatFault(std::string_view text) {
    constexpr std::size_t kept = 6;
    std::string_view const number = text.substr(text.starts_with('+'));
    T value;
    auto const [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
    if (error == std::errc::result_out_of_range) return "is out of range";
    if (error != std::errc() || end != number.data() + number.size()) return "is no number";
    std::size_t const digits = significantDigits(number);
    return digits > kept ? "has " + std::to_string(digits) + " significant digits, of which 6 are kept" : "";
}

}  // namespace

std::string numberFault(std::string_view type, std::string_view text) {
    if (type.empty() || (text = trimmed(text)).empty()) return {};
    std::string const word = plainWord(type);
    if (word == "float") return floatFault<float>(text);
    if (word == "double") return floatFault<double>(text);
    for (Range const & range : ranges) {
        if (word == range.type) return integerFault(range, text);
    }
    return {};
}

}  // namespace pmltool
