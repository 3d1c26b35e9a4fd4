// Scalars and texts into a node, and out of it.

#include "yon/base/number_text.h"
#include "yon/pml/ntv.h"
#include "yon/string/base64.h"
#include "yon/string/unicode.h"

namespace yon::pml::ntv {

namespace {

template <class T>
istr numberText(char (&room)[yon::detail::numberRoom], T value) noexcept {
    return istr(room, static_cast<ulong>(yon::detail::formatNumber(room, value) - room));
}

}  // namespace

Unit & Unit::setSigned(longlong value) {
    char room[yon::detail::numberRoom];
    return setValue(numberText(room, value));
}

Unit & Unit::setUnsigned(ulonglong value) {
    char room[yon::detail::numberRoom];
    return setValue(numberText(room, value));
}

Unit & Unit::setFloating(double value) {
    char room[yon::detail::numberRoom];
    return setValue(numberText(room, value));
}

Unit & Unit::operator<<(iwstr text) { return setValue(wstringToAnsi(text)); }

Unit & Unit::operator<<(Bytes const & bytes) {
    setValue(Base64::encode(bytes));
    return type("base64");
}

Unit & Unit::operator<<(Time const & time) { return setSigned(time.toMicroSeconds()); }

template <class T>
bool Unit::extract(T & value) const {
    StringValue const * const text = stringValue();
    return text != nullptr && yon::detail::parseNumber(istr(text->data()), value);
}

template YON_API bool Unit::extract(bool &) const;
template YON_API bool Unit::extract(char &) const;
template YON_API bool Unit::extract(signed char &) const;
template YON_API bool Unit::extract(unsigned char &) const;
template YON_API bool Unit::extract(short &) const;
template YON_API bool Unit::extract(unsigned short &) const;
template YON_API bool Unit::extract(int &) const;
template YON_API bool Unit::extract(unsigned int &) const;
template YON_API bool Unit::extract(long &) const;
template YON_API bool Unit::extract(unsigned long &) const;
template YON_API bool Unit::extract(long long &) const;
template YON_API bool Unit::extract(unsigned long long &) const;
template YON_API bool Unit::extract(float &) const;
template YON_API bool Unit::extract(double &) const;

bool Unit::operator>>(String & text) const { return *this >> static_cast<std::string &>(text); }

bool Unit::operator>>(std::string & text) const {
    StringValue const * const value = stringValue();
    if (value == nullptr) return false;
    text = value->data();
    return true;
}

bool Unit::operator>>(wstring & text) const {
    StringValue const * const value = stringValue();
    if (value == nullptr) return false;
    try {
        text = ansiToWstring(value->data());
        return true;
    } catch (UTFConversionException const &) {
        return false;
    }
}

bool Unit::operator>>(Bytes & bytes) const {
    StringValue const * const value = stringValue();
    if (value == nullptr) return false;
    bytes.size(0);
    Base64::decode(value->data(), bytes);
    return true;
}

bool Unit::operator>>(Time & time) const {
    longlong microSeconds = 0;
    bool const parsed = extract(microSeconds);
    time = Time(parsed ? microSeconds : 0);
    return parsed;
}

}  // namespace yon::pml::ntv
