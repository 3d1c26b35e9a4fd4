#include "yon/base/bytes.h"

#include <new>
#include <stdexcept>
#include <utility>

#include "yon/base/leak_checker.h"

namespace yon {

namespace {

/// `a + b`, or `std::length_error` when that is beyond 32 bits.
ulong sum(ulong a, ulong b) {
    if (b > npos - a) throw std::length_error("yon::Bytes: longer than 32 bits can count");
    return a + b;
}

unsigned char * allocate(ulong n) {
    auto const block = new (std::nothrow) unsigned char[n];
    MemLeakChecker::push(block, "src/yon/base/base_type_bytes", 164, "yon::Bytes::alloc", n);
    return block;
}

void release(unsigned char * block) noexcept {
    MemLeakChecker::pop(block);
    delete[] block;
}

}  // namespace

void Bytes::alloc(ulong n) {
    max_size_ = n;
    buffer_ = allocate(n);
}

void Bytes::free() noexcept {
    release(buffer_);
    buffer_ = nullptr;
    max_size_ = size_ = 0;
}

void Bytes::grow(ulong n, ulong kept, istr s) {
    ulong const doubled = max_size_ > npos / 2 - 1 ? npos : 2 * max_size_ + 2;
    max_size_ = std::max(doubled, n);
    unsigned char * const old = std::exchange(buffer_, allocate(max_size_));
    if (buffer_ != nullptr) {
        MemCopy(buffer_, old, kept);
        MemCopy(buffer_ + kept, s.data(), s.size());
    }
    size_ = kept + s.size();
    // Not before now: `s` may lie in it.
    release(old);
}

Bytes & Bytes::resize(ulong n) {
    if (n > max_size_) grow(n, size_, istr());
    return *this;
}

Bytes & Bytes::assign(istr const & s) {
    if (s.size() > max_size_) {
        grow(s.size(), 0, s);
    } else {
        MemCopy(buffer_, s.data(), s.size());
        size_ = s.size();
    }
    return *this;
}

Bytes & Bytes::appendGrowing(istr s) {
    grow(sum(size_, s.size()), size_, s);
    return *this;
}

}  // namespace yon
