#include "yon/base/scalars.h"

#include "yon/base/number_text.h"

namespace yon::detail {

namespace {

template <class T>
String print(T value) {
    char text[numberRoom];
    return String(std::string_view(text, static_cast<std::size_t>(formatNumber(text, value) - text)));
}

}  // namespace

void parseScalar(istr text, short & value) noexcept { parseNumber(text, value); }
void parseScalar(istr text, ushort & value) noexcept { parseNumber(text, value); }
void parseScalar(istr text, slong & value) noexcept { parseNumber(text, value); }
void parseScalar(istr text, ulong & value) noexcept { parseNumber(text, value); }
void parseScalar(istr text, longlong & value) noexcept { parseNumber(text, value); }
void parseScalar(istr text, ulonglong & value) noexcept { parseNumber(text, value); }
void parseScalar(istr text, float & value) noexcept { parseNumber(text, value); }
void parseScalar(istr text, double & value) noexcept { parseNumber(text, value); }

String printScalar(longlong value) { return print(value); }
String printScalar(ulonglong value) { return print(value); }
String printScalar(double value) { return print(value); }

}  // namespace yon::detail
