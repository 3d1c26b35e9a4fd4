#include "yon/base/net.h"

#include <charconv>
#include <optional>

namespace yon {

namespace {

/// Takes a number off the front of the text.
std::optional<ulong> takeNumber(std::string_view & s) noexcept {
    int base = 10;
    if (s.size() > 2 && s[0] == '0' && (s[1] == 'x' || s[1] == 'X')) {
        base = 16;
        s.remove_prefix(2);
    } else if (s.size() > 1 && s[0] == '0' && CharIsDigit(s[1])) {
        base = 8;
    }
    ulong value = 0;
    auto const [end, error] = std::from_chars(s.data(), s.data() + s.size(), value, base);
    if (error != std::errc()) return std::nullopt;
    s.remove_prefix(static_cast<std::size_t>(end - s.data()));
    return value;
}

/// The address as a number.
std::optional<ulong> parseAddress(std::string_view s) noexcept {
    ulong address = 0;
    for (int bits = 24;; bits -= 8) {
        std::optional<ulong> const part = takeNumber(s);
        if (!part) return std::nullopt;
        if (s.empty() || CharIsSpace(s.front())) {
            bool const fits = *part >> bits >> 8 == 0;
            return fits ? std::optional(address | *part) : std::nullopt;
        }
        if (s.front() != '.' || bits == 0 || *part > 255) return std::nullopt;
        address |= *part << bits;
        s.remove_prefix(1);
    }
}

}  // namespace

String normalizeName(istr name) {
    static constexpr auto isSeparator = [](char c) { return c == '.' || c == ':'; };
    String result;
    result.reserve(name.size());
    bool within = false;
    for (char const c : name) {
        if (!isSeparator(c)) {
            result += c;
        } else if (!within) {
            result += '.';
        }
        within = isSeparator(c);
    }
    return result;
}

ulong ip_aton(istr const & s) {
    std::optional<ulong> const address = parseAddress(istr(s.data(), StrLenN(s.data(), s.size())));
    if (!address) return npos;
    octets<4> const bytes = hton(*address);
    ulong result = 0;
    std::memcpy(&result, bytes.data(), bytes.size());
    return result;
}

String ip_ntoa(ulong addr) {
    octets<4> const bytes(&addr);
    String result;
    for (ulong i = 0; i < bytes.size(); ++i) {
        if (i != 0) result += '.';
        result += std::to_string(bytes[i]);
    }
    return result;
}

}  // namespace yon
