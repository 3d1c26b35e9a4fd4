#include "yon/base/bytes.h"

#include <new>
#include <stdexcept>

#include "yon/base/leak_checker.h"

namespace yon {

namespace {

/// `a + b`, or `std::length_error` when that is beyond 32 bits.
ulong sum(ulong a, ulong b) {
    if (b > npos - a) throw std::length_error("yon::Bytes: longer than 32 bits can count");
    return a + b;
}

constexpr char const * sourceFile = "src/yon/base/base_type_bytes";

}  // namespace

void Bytes::alloc(ulong n) {
    max_size_ = n;
    buffer_ = new (std::nothrow) unsigned char[n];
    MemLeakChecker::push(buffer_, sourceFile, 164, "yon::Bytes::alloc", n);
}

void Bytes::free() noexcept {
    MemLeakChecker::pop(buffer_);
    delete[] buffer_;
    buffer_ = nullptr;
    max_size_ = size_ = 0;
}

Bytes & Bytes::resize(ulong n) {
    if (n > max_size_) {
        Bytes grown(grownTo(n));
        grown.fill(0, *this);
        swap(grown);
    }
    return *this;
}

Bytes & Bytes::assign(istr const & s) {
    if (s.size() > max_size_) {
        // The new block is filled before the old one goes: `s` may lie in it.
        Bytes grown(grownTo(s.size()));
        grown.fill(0, s);
        swap(grown);
    } else {
        fill(0, s);
    }
    return *this;
}

Bytes & Bytes::appendGrowing(istr const & s) {
    Bytes grown(grownTo(sum(size_, s.size())));
    grown.fill(0, *this);
    grown.fill(size_, s);
    swap(grown);
    return *this;
}

ulong Bytes::grownTo(ulong n) const noexcept {
    ulong const doubled = max_size_ > npos / 2 - 1 ? npos : 2 * max_size_ + 2;
    return std::max(doubled, n);
}

void Bytes::fill(ulong at, istr const & s) noexcept {
    if (buffer_ != nullptr) MemCopy(buffer_ + at, s.data(), s.size());
    size_ = at + s.size();
}

}  // namespace yon
