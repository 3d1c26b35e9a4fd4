// `String`: the owned narrow string.
#pragma once

#include <string>

#include "yon/base/istr.h"
#include "yon/base/iwstr.h"

namespace yon {

/// A standard string with conversions to and from views, wide text and UTF-8. It is never null: a null pointer
/// constructs or assigns the empty text and appends nothing. Conversions of wide text go through the system code
/// page and may raise `UTFConversionException`. Values are independent; one object belongs to one thread at a time.
class YON_API String : public std::string {
public:
    String() noexcept = default;
    String(String const &) = default;
    String(String &&) noexcept = default;
    String(std::string const & s) : std::string(s) {}
    String(std::string && s) noexcept : std::string(std::move(s)) {}
    String(std::string_view s) : std::string(s) {}
    String(istr const & s) : std::string(std::string_view(s)) {}
    String(char const * s) : String(istr(s)) {}
    String(unsigned char const * s) : String(istr(s)) {}
    String(char const * s, unsigned int n) : String(istr(s, n)) {}
    String(unsigned char const * s, unsigned int n) : String(istr(s, n)) {}
    String(std::nullptr_t) noexcept {}
    String(wstring const & s);
    String(wchar const * s);
    ~String() = default;

    String & operator=(String const &) = default;
    String & operator=(String &&) noexcept = default;
    String & operator=(std::string const & s) { return set(s); }
    String & operator=(std::string && s) noexcept {
        std::string::operator=(std::move(s));
        return *this;
    }
    String & operator=(std::string_view s) { return set(s); }
    String & operator=(istr const & s) { return set(s); }
    String & operator=(char const * s) { return set(istr(s)); }
    String & operator=(unsigned char const * s) { return set(istr(s)); }
    String & operator=(std::nullptr_t) noexcept {
        clear();
        return *this;
    }
    String & operator=(wstring const & s);
    String & operator=(wchar const * s);

    String & operator+=(String const & s) { return add(s); }
    String & operator+=(std::string const & s) { return add(s); }
    String & operator+=(std::string_view s) { return add(s); }
    String & operator+=(istr const & s) { return add(s); }
    String & operator+=(char const * s) { return add(istr(s)); }
    String & operator+=(unsigned char const * s) { return add(istr(s)); }
    String & operator+=(std::nullptr_t) noexcept { return *this; }
    String & operator+=(char c) {
        push_back(c);
        return *this;
    }
    String & operator+=(unsigned char c) { return *this += static_cast<char>(c); }
    String & operator+=(wstring const & s);
    String & operator+=(wchar const * s);

    operator istr() const noexcept { return istr(data(), toLength(size())); }
    /// The text as UTF-16.
    operator wstring() const;

    /// Removes the first and the last character when the text has at least two and both are `c`.
    String & trimLeftRight(char c);

    /// Replace the content by `s` decoded from UTF-8 into the system code page.
    String & fromUtf8(istr const & s) { return utf8ToAnsi(s); }
    String & utf8ToAnsi(istr const & s);
    /// Replace `out` by the content encoded as UTF-8.
    void toUtf8(Bytes & out) const { ansiToUtf8(out); }
    void ansiToUtf8(Bytes & out) const;

    /// The shared empty text; safe from any thread at any time.
    static String const & null() noexcept;

private:
    String & set(std::string_view s) {
        assign(s);
        return *this;
    }
    String & add(std::string_view s) {
        append(s);
        return *this;
    }
};

}  // namespace yon

template <>
struct std::hash<yon::String> {
    std::size_t operator()(yon::String const & s) const noexcept { return std::hash<std::string_view>()(s); }
};
