#include "yon/base/mem.h"

namespace yon {

Mem & Mem::copy(istr const & s) noexcept {
    MemCopy(data_, s.data(), std::min(size_, s.size()));
    return *this;
}

Mem & Mem::copyZ(istr const & s) noexcept {
    if (size_ != 0) MemCopyZ(data_, s.data(), std::min(size_ - 1, s.size()));
    return *this;
}

int Mem::cmp(istr const & s) const noexcept {
    int const r = MemCmp(data_, s.data(), std::min(size_, s.size()));
    return r != 0 ? r : static_cast<int>(size_ - s.size());
}

Mem & Mem::fill(int c) noexcept {
    MemSet(data_, c, size_);
    return *this;
}

}  // namespace yon
