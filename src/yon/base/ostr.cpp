#include "yon/base/ostr.h"

#include <ostream>

namespace yon {

ostr & ostr::clear() noexcept {
    if (!empty()) buffer_[0] = '\0';
    return *this;
}

ostr & ostr::assign(char const * s, ulong n) noexcept {
    if (empty()) return *this;
    if (s == nullptr || n == 0) return clear();
    ulong const count = std::min(max_size_, n);
    ulong const length = StrLenN(s, count);
    std::memmove(buffer_, s, length);
    std::memset(buffer_ + length, 0, count - length);
    return *this;
}

std::ostream & ostr::dump(std::ostream & os) const {
    return os << std::to_string(sizeN()) << '/' << std::to_string(max_size_) << ", " << istr(buffer_, sizeN());
}

Str & Str::copy(istr const & s) noexcept {
    StrCopy(buffer_, s.data(), s.size());
    return *this;
}

Str & Str::cat(istr const & s) noexcept {
    StrCat(buffer_, s.data(), s.size());
    return *this;
}

int Str::cmp(char const * s, ulong n, bool noCase) const noexcept { return StrCmp(buffer_, s, n, noCase); }

int Str::cmp(istr const & s, ulong n, bool noCase) const noexcept { return StrCmp(istr(*this), s, n, noCase); }

Str & Str::toUpper(ulong n) noexcept {
    StrToUpper(buffer_, n == npos ? max_size_ : n);
    return *this;
}

Str & Str::toLower(ulong n) noexcept {
    StrToLower(buffer_, n == npos ? max_size_ : n);
    return *this;
}

Str & Str::fill(int c, ulong n) noexcept {
    ulong const k = max_size_ == 0 ? 0 : std::min(n, max_size_ - 1);
    if (buffer_ == nullptr || k == 0) return *this;
    std::memset(buffer_, c, k);
    buffer_[k - 1] = '\0';
    return *this;
}

bool Str::beginWith(istr const & s, ulong n, bool noCase) const noexcept {
    return StrCmp(istr(leftstr(n)), s, n, noCase) == 0;
}

bool Str::endWith(istr const & s, ulong n, bool noCase) const noexcept {
    return StrCmp(istr(rightstr(n)), s, n, noCase) == 0;
}

}  // namespace yon
