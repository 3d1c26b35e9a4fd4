#include <cmath>
#include <sstream>

#include "nbr_commands.h"
#include "visible.h"
#include "yon/base/time.h"
#include "yon/util/binary_stream.h"

namespace nbrtool {

namespace {

using yon::longlong;
using yon::detail::BinaryField;

constexpr std::size_t mostShown = 60;

template <class T>
void addFloating(std::ostringstream & out, yon::ulonglong bits) {
    T const value = BinaryField<T>::fromBits(bits);
    if (std::isfinite(value) && std::abs(value) > T(1e-9) && std::abs(value) < T(1e12)) {
        out << (sizeof(T) == 4 ? " or float " : " or double ") << value;
    }
}

void addTime(std::ostringstream & out, longlong microseconds) {
    constexpr longlong year2000 = 946684800000000, year2100 = 4102444800000000;
    if (microseconds >= year2000 && microseconds < year2100) {
        out << " or time " << std::string(yon::Time(microseconds).toDateTime());
    }
}

std::string number(istr data) {
    std::ostringstream out;
    yon::ulonglong const bits = yon::BinaryStream::readUint(data, 8);
    bool const negative = data[data.size() - 1] < 0;
    out << "number ";
    if (negative && data.size() == 2) out << BinaryField<short>::fromBits(bits) << " or ";
    if (negative && data.size() == 4) out << BinaryField<int>::fromBits(bits) << " or ";
    if (negative && data.size() == 8) out << BinaryField<longlong>::fromBits(bits) << " or ";
    out << bits;
    if (data.size() == 1 && bits < 2) out << (bits == 0 ? " or false" : " or true");
    if (data.size() == 4) addFloating<float>(out, bits);
    if (data.size() == 8) addFloating<double>(out, bits);
    addTime(out, static_cast<longlong>(bits));
    return out.str();
}

bool isPrintable(istr data) {
    for (char const c : data) {
        if (c < ' ' || c > '~') return false;
    }
    return true;
}

}  // namespace

std::string guess(Token const & item) {
    std::string_view const data(item.data);
    if (item.head == 0) return "null";
    bool const text = item.head >= 0xF0;
    if (text) return "text \"" + pmltool::visible(data, mostShown) + '"';
    if (data.empty()) return "empty";
    if (data.size() <= 8) return number(item.data);
    return isPrintable(item.data) ? "bytes \"" + pmltool::visible(data, mostShown) + '"' : "bytes";
}

}  // namespace nbrtool
