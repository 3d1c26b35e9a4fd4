#include "yon/base/istr.h"

#include <ostream>

namespace yon {

std::ostream & istr::dump(std::ostream & os) const { return os << std::to_string(size()) << ", " << *this; }

std::ostream & operator<<(std::ostream & os, istr const & s) {
    if (s.empty()) return os;
    return os.write(s.data(), static_cast<std::streamsize>(s.size())).flush();
}

}  // namespace yon
